// The built module keeps every rule, and a library made to break them all is caught by each.

#include "guards/binary_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace jex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

namespace {

const std::string module = MODULE_LIBRARY, bad = BAD_LIBRARY,
                  one_constructor = ONE_CONSTRUCTOR_LIBRARY;

// Strings made by an initializer list of this length take the compiler minutes.
constexpr const char* names[] = {
#define JEX_ENTRY(name) #name,
#include <jex/export_names.inc>
#undef JEX_ENTRY
};
const std::vector<std::string> listed(std::begin(names), std::end(names));

const std::vector<std::string> empty_entries = {
#define JEX_EXPORT(result, name, params, call)
#define JEX_EMPTY(name) #name,
#define JEX_FORWARD(result, name, params)
#include "serv/exports.inc"
};

TEST(Module, ExportsItsListAndNothingElse) {
  EXPECT_THAT(exports_differ(module, listed), IsEmpty());
}
TEST(Module, ImportsOnlyWhatACoreHas) { EXPECT_THAT(foreign_imports(module), IsEmpty()); }
TEST(Module, NeedsFourLibrariesAtMost) { EXPECT_THAT(needed_libraries(module), IsEmpty()); }
TEST(Module, HasSafeSegments) { EXPECT_THAT(unsafe_segments(module), IsEmpty()); }
TEST(Module, RunsNothingAtLoad) { EXPECT_THAT(static_constructors(module), IsEmpty()); }
TEST(Module, UsesNothingBeyondSse3) { EXPECT_THAT(newer_instructions(module), IsEmpty()); }

TEST(Module, ThirtyEmptyEntriesAreOneRoutine) {
  EXPECT_EQ(empty_entries.size(), 30u);
  EXPECT_THAT(not_one_address(module, empty_entries), IsEmpty());
}
TEST(Module, NothingElseIsEmpty) {
  const Breaches empty = exports_without_code(module);
  ASSERT_EQ(empty.size(), 1u);
  EXPECT_THAT(empty_entries, testing::Contains(empty[0]));
}

TEST(BadLibrary, Exports) {
  const Breaches breaches = exports_differ(bad, listed);
  EXPECT_THAT(breaches, IsSupersetOf({"exported, not listed: jex_extra",
                                      "listed, not exported: dll_cpu_version"}));
  std::vector<std::string> longer = listed;
  longer.push_back("jex_blas_not_there");
  EXPECT_THAT(exports_differ(module, longer),
              ElementsAre("listed, not exported: jex_blas_not_there"));
  longer.resize(listed.size() - 1);
  EXPECT_THAT(exports_differ(module, longer),
              ElementsAre("exported, not listed: " + listed.back()));
}

TEST(BadLibrary, Imports) {
  EXPECT_THAT(foreign_imports(bad),
              IsSupersetOf({"jex_serv_unheard_of", "jex_dft_dfti_compute_forward"}));
}

TEST(BadLibrary, NeededLibraries) {
  EXPECT_THAT(needed_libraries(bad),
              IsSupersetOf({"needs libstdc++.so.6", "does not need libjex_core.so"}));
}

TEST(BadLibrary, EmptyEntries) {
  EXPECT_THAT(not_one_address(bad, {"jex_blas_dgemm_blk_info", "jex_blas_dgemm_mscale", "absent"}),
              ElementsAre("at another address: jex_blas_dgemm_mscale", "not exported: absent"));
}

TEST(BadLibrary, ExportsWithoutCode) {
  EXPECT_THAT(exports_without_code(bad), ElementsAre("jex_silent"));
}

TEST(BadLibrary, Segments) {
  const Breaches breaches = unsafe_segments(bad);
  EXPECT_THAT(breaches, IsSupersetOf({"writable and executable: LOAD",
                                      "writable and executable: GNU_STACK", "relocates its code"}));
}

TEST(BadLibrary, Constructors) {
  EXPECT_THAT(static_constructors(bad), UnorderedElementsAre(HasSubstr(".init_array holds 2 words"),
                                                             HasSubstr("constructor: ")));
  // One word, as every library has, but not that of the start files.
  EXPECT_THAT(static_constructors(one_constructor),
              ElementsAre(testing::ContainsRegex("holds [0-9a-f]+, frame_dummy is at $")));
}

TEST(BadLibrary, Instructions) {
  const Breaches breaches = newer_instructions(bad);
  for (const char* instruction :
       {"SSSE3: .*pshufb", "SSE4.1: .*pmulld", "SSE4.2: .*pcmpgtq", "SSE4a: .*extrq",
        "bit counts: .*popcnt", "bit counts: .*lzcnt", "bit counts: .*tzcnt", "BMI: .*blsr",
        "ADX: .*adcx", "MOVBE: .*movbe", "AES, SHA, GF: .*aesenc", "random numbers: .*rdrand",
        "XSAVE, TSX: .*xgetbv", "3DNow!: .*pfadd", "AVX, FMA: .*vaddps", "AVX, FMA: .*vfmadd231pd"})
    EXPECT_THAT(breaches, Contains(testing::ContainsRegex(instruction)));
  EXPECT_EQ(breaches.size(), 16u) << "an old instruction was taken for a newer one";
}

TEST(Tools, AMissingLibraryIsNoCleanOne) {
  EXPECT_THROW(exports_differ("/nowhere.so", {}), std::runtime_error);
  EXPECT_THROW(unsafe_segments("/nowhere.so"), std::runtime_error);
  EXPECT_THROW(newer_instructions("/nowhere.so"), std::runtime_error);
}

}  // namespace
