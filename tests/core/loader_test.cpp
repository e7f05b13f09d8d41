// What a core says of the library that it finds in the module's place. A core loads once in a
// process, so each case is a process of its own, on a copy of the core in a folder of its own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/dlfcn.h"
#include "support/process.h"

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

using jex::test::Folder;

struct Answer {
  std::string first, second, error, path;
  std::string standard_error;
};

// Copies the core into a folder, with `module` beside it under the module's name (none if empty).
Answer load_with(const std::string& module) {
  const Folder folder;
  fs::copy_file(CORE_LIBRARY, folder / JEX_CORE_FILE);
  if (!module.empty()) fs::copy_file(module, folder / JEX_MODULE_FILE);
#ifdef _WIN32
  fs::copy_file(fs::path(CORE_LIBRARY).replace_filename(JEX_GMP_FILE), folder / JEX_GMP_FILE);
#endif
  const auto outcome = jex::test::run(folder, {LOAD_PROBE, folder / JEX_CORE_FILE});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  std::istringstream out(outcome.out);
  Answer answer;
  getline(out, answer.first);
  getline(out, answer.second);
  getline(out, answer.error);
  getline(out, answer.path);
  answer.standard_error = outcome.err;
  return answer;
}

TEST(Loader, TakesTheModuleBesideIt) {
  const Answer answer = load_with(MODULE_LIBRARY);
  EXPECT_EQ(answer.first, "0") << answer.error;
  EXPECT_EQ(answer.second, "0");
  EXPECT_EQ(answer.error, "");
  EXPECT_THAT(answer.path, testing::EndsWith(JEX_MODULE_FILE));
  EXPECT_THAT(answer.path, HasSubstr("jex-test-")) << "not the module of this folder";
  EXPECT_EQ(answer.standard_error, "");
}

TEST(Loader, SaysWhatIsWrong) {
  const struct {
    std::string module;
    std::vector<const char*> says;
  } cases[] = {
      {"", {"cannot be loaded", JEX_MODULE_FILE}},
      {FOREIGN_WITHOUT_VERSION, {JEX_MODULE_FILE, "not a kernel module", "no dll_cpu_version"}},
      {FOREIGN_BRANCH_2, {JEX_MODULE_FILE, "branch 2", "needs branch 3"}},
      {FOREIGN_INCOMPLETE, {JEX_MODULE_FILE, "lacks the entry jex_blas_dswap"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.module.empty() ? "no module" : c.module);
    const Answer answer = load_with(c.module);
    EXPECT_EQ(answer.first, "-1");
    EXPECT_EQ(answer.second, "-1") << "the second call must repeat the answer";
    EXPECT_EQ(answer.path, "");
    for (const char* part : c.says) EXPECT_THAT(answer.error, HasSubstr(part));
    EXPECT_EQ(answer.standard_error, answer.error + "\n") << "told once, the same";
  }
}

TEST(Loader, LooksBesideTheCoreForAProgramAtFixedAddresses) {
  const Folder folder;
  EXPECT_THAT(jex::test::run(folder, {FIXED_ADDRESS_CLIENT}).out,
              testing::AllOf(testing::StartsWith("0 "), HasSubstr(JEX_MODULE_FILE)));
}

}  // namespace
