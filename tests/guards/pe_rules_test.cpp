// The built DLL keeps every rule, and one made to break them all is caught by each.

#include "guards/instruction_rule.h"
#include "guards/pe_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

using namespace jex::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

namespace {

// Strings made by an initializer list of this length take the compiler minutes.
constexpr const char* names[] = {
#define JEX_ENTRY(name) #name,
#include <jex/export_names.inc>
#undef JEX_ENTRY
};
const std::vector<std::string> listed(std::begin(names), std::end(names));

const std::map<std::string, std::string> forwarded = {
#define JEX_EXPORT(result, name, params, call)
#define JEX_EMPTY(name)
#define JEX_FORWARD(result, name, params) {#name, "jex_core." #name},
#define JEX_JUMP(result, name, params, target) {#name, "libgmp-10." #target},
#include "gmp/exports.inc"
#include "serv/exports.inc"
#undef JEX_EMPTY
#undef JEX_FORWARD
};

const std::vector<std::string> empty_entries = {
#define JEX_EMPTY(name) #name,
#define JEX_FORWARD(result, name, params)
#include "serv/exports.inc"
};

const PeFile& module() {
  static const PeFile file = read_pe(MODULE_LIBRARY);
  return file;
}
const PeFile& bad() {
  static const PeFile file = read_pe(BAD_LIBRARY);
  return file;
}

TEST(Dll, ExportsItsListAndNothingElse) {
  EXPECT_EQ(module().name, "jex_q7t.dll");
  EXPECT_GT(forwarded.size(), 7u + 200);
  EXPECT_THAT(exports_differ(module(), listed, forwarded), IsEmpty());
}
TEST(Dll, ImportsOnlyWhatItMay) {
  EXPECT_THAT(foreign_imports(module()), IsEmpty());
  EXPECT_THAT(module().imports.at("jex_core.dll"),
              IsSupersetOf({"jex_serv_lock", "jex_serv_unlock"}));
}
TEST(Dll, CallsTheSystemAsItIsMeantTo) {
  EXPECT_THAT(module().imports.at("KERNEL32.dll"),
              IsSupersetOf({"DisableThreadLibraryCalls", "FreeLibrary", "GetEnvironmentVariableA",
                            "GetProcAddress", "LoadLibraryA", "TlsAlloc", "TlsFree", "TlsGetValue",
                            "TlsSetValue"}));
}
TEST(Dll, IsSafe) { EXPECT_THAT(unsafe_file(module()), IsEmpty()); }
TEST(Dll, ThirtyEmptyEntriesAreOneRoutine) {
  EXPECT_EQ(empty_entries.size(), 30u);
  EXPECT_THAT(not_one_address(module(), empty_entries), IsEmpty());
}

// Made of the DLL by the build, whose tools do not run here. Behind the code lie two lists of
// addresses, of what runs at load and at unload, each with a word before and one behind: nothing
// would run the module's.
TEST(Dll, UsesNothingBeyondSse3AndRunsNothingAtLoad) {
  std::ifstream file(MODULE_DISASSEMBLY);
  Disassembly disassembly;
  unsigned constructors = 0, destructors = 0;
  for (std::string line; getline(file, line);) {
    if (line.find("<__CTOR_LIST__>:") != std::string::npos)
      constructors = std::stoul(line, nullptr, 16);
    if (line.find("<__DTOR_LIST__>:") != std::string::npos)
      destructors = std::stoul(line, nullptr, 16);
    if (!constructors) disassembly.read(line);
  }
  EXPECT_EQ(destructors - constructors, 8u);
  EXPECT_GT(disassembly.instructions, 100000);
  EXPECT_THAT(disassembly.newer, IsEmpty());
}

TEST(BadDll, Exports) {
  EXPECT_THAT(exports_differ(bad(), listed, forwarded),
              IsSupersetOf({"exported, not listed: jex_extra",
                            "listed, not exported: dll_cpu_version", "no code: jex_serv_lsame",
                            "jex_gmp___gmpz_add forwarded to '', not 'libgmp-10.__gmpz_add'",
                            "jex_blas_dcopy forwarded to 'kernel32.Sleep', not ''"}));
}
TEST(BadDll, Imports) {
  EXPECT_THAT(foreign_imports(bad()), UnorderedElementsAre("needs USER32.dll", "jex_core_load"));
}
TEST(BadDll, EmptyEntries) {
  EXPECT_THAT(
      not_one_address(bad(), {"jex_extra", "jex_gmp___gmpz_add", "absent", "jex_blas_dcopy"}),
      ElementsAre("at another address: jex_gmp___gmpz_add", "not exported: absent",
                  "at another address: jex_blas_dcopy"));
}
TEST(BadDll, Safety) {
  EXPECT_THAT(unsafe_file(bad()),
              UnorderedElementsAre("writable and executable: .wx", "cannot be loaded anywhere",
                                   "asks for executable data", "has storage for each thread"));
}
TEST(BadDll, NoDllAtAll) {
  EXPECT_THROW(read_pe("nowhere.dll"), std::runtime_error);
  EXPECT_THROW(read_pe(MODULE_DISASSEMBLY), std::runtime_error);
}

}  // namespace
