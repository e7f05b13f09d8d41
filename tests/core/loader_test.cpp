// What a core says of the library that it finds in the module's place. A core loads once in a
// process, so each case is a process of its own, on a copy of the core in a folder of its own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

class Folder {
 public:
  Folder() {
    std::string name = (fs::temp_directory_path() / "jex_loader_XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~Folder() { fs::remove_all(path_); }
  fs::path operator/(const char* name) const { return path_ / name; }

 private:
  fs::path path_;
};

std::string output_of(const std::string& command) {
  std::string text;
  FILE* pipe = popen(command.c_str(), "r");
  for (int c; (c = fgetc(pipe)) != EOF;) text += char(c);
  EXPECT_EQ(pclose(pipe), 0) << command << "\n" << text;
  return text;
}

struct Answer {
  std::string first, second, error, path;
  std::string standard_error;
};

// Copies the core into a folder, with `module` beside it under the module's name (none if empty).
Answer load_with(const std::string& module) {
  const Folder folder;
  fs::copy_file(CORE_LIBRARY, folder / "libjex_core.so");
  if (!module.empty()) fs::copy_file(module, folder / "libjex_q7t.so");
  const std::string standard_error = folder / "stderr";
  std::istringstream out(
      output_of(LOAD_PROBE " " + (folder / "libjex_core.so").string() + " 2>" + standard_error));
  Answer answer;
  getline(out, answer.first);
  getline(out, answer.second);
  getline(out, answer.error);
  getline(out, answer.path);
  std::ostringstream text;
  text << std::ifstream(standard_error).rdbuf();
  answer.standard_error = text.str();
  return answer;
}

TEST(Loader, TakesTheModuleBesideIt) {
  const Answer answer = load_with(MODULE_LIBRARY);
  EXPECT_EQ(answer.first, "0") << answer.error;
  EXPECT_EQ(answer.second, "0");
  EXPECT_EQ(answer.error, "");
  EXPECT_THAT(answer.path, testing::EndsWith("/libjex_q7t.so"));
  EXPECT_THAT(answer.path, HasSubstr("jex_loader_")) << "not the module of this folder";
  EXPECT_EQ(answer.standard_error, "");
}

TEST(Loader, SaysWhatIsWrong) {
  const struct {
    std::string module;
    std::vector<const char*> says;
  } cases[] = {
      {"", {"cannot be loaded", "libjex_q7t.so"}},
      {FOREIGN_WITHOUT_VERSION, {"libjex_q7t.so", "not a kernel module", "no dll_cpu_version"}},
      {FOREIGN_BRANCH_2, {"libjex_q7t.so", "branch 2", "needs branch 3"}},
      {FOREIGN_INCOMPLETE, {"libjex_q7t.so", "lacks the entry jex_blas_dswap"}},
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
  EXPECT_THAT(output_of(FIXED_ADDRESS_CLIENT),
              testing::AllOf(testing::StartsWith("0 "), HasSubstr("/libjex_q7t.so")));
}

}  // namespace
