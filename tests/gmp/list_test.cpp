// Every integer and low-level function of the installed GNU MP has its entry, and each entry jumps
// to the function of its own name. The header is read by its naming macros, not by its
// declarations, from which the list was made.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <jex/module_entries.hpp>

#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <string_view>

#ifdef _WIN32
#include "guards/pe_file.h"
#endif
#include "support/dlfcn.h"

namespace {

using Names = std::set<std::string>;

// "#define mpz_add __gmpz_add", "#define mpn_add __MPN(add)", "#define _mpz_cmp_ui __gmpz_cmp_ui".
Names defined_in_header() {
  static const std::regex macro(
      "#define _?(mp[zn]?|gmp)_[a-z0-9_]+ +(__gmp[zn]?_|__MPN\\()([a-z0-9_]+)\\)?");
  std::ifstream header(GMP_HEADER);
  Names names;
  std::smatch match;
  for (std::string line; getline(header, line);)
    if (std::regex_match(line, match, macro))
      names.insert((match[2] == "__MPN(" ? "__gmpn_" : match[2].str()) + match[3].str());
  return names;
}

// Functions, not variables, of the library.
Names functions_of_library() {
  Names names;
#ifdef _WIN32
  for (const auto& [name, entry] : jex::test::read_pe(GMP_LIBRARY).exports)
    if (entry.code) names.insert(name);
#else
  FILE* pipe = popen("LC_ALL=C nm -D --defined-only '" GMP_LIBRARY "'", "r");
  char kind, name[256];
  while (pipe && fscanf(pipe, "%*s %c %255s", &kind, name) == 2)
    if (kind == 'T' || kind == 'W' || kind == 'i') names.insert(name);
  EXPECT_TRUE(pipe && pclose(pipe) == 0);
#endif
  return names;
}

constexpr std::string_view prefix = "jex_gmp_";

Names entries() {
  Names names;
  for (const jex::ModuleEntry& entry : jex::module_entries)
    if (const std::string_view name = entry.name; name.starts_with(prefix))
      names.emplace(name.substr(prefix.size()));
  return names;
}

const Names in_core = {"__gmp_fprintf", "__gmpz_inp_raw", "__gmpz_inp_str", "__gmpz_out_raw",
                       "__gmpz_out_str"};

TEST(GmpList, HasEveryFunctionOfHeaderAndLibrary) {
  const Names exported = functions_of_library();
  Names expected;
  for (const std::string& name : defined_in_header())
    if (exported.count(name)) expected.insert(name);
  // With obstacks, which the C library keeps apart, there would be two more.
  expected.erase("__gmp_obstack_printf");
  expected.erase("__gmp_obstack_vprintf");
  EXPECT_GT(expected.size(), 250u) << "gmp.h was not understood";
  EXPECT_THAT(entries(), testing::ContainerEq(expected));
  EXPECT_THAT(entries(), testing::IsSupersetOf(in_core));
}

#ifdef _WIN32
// A forwarder is the function.
const void* target_of(const unsigned char* entry) { return entry; }
#else
// call, addl of a distance to EAX, jmp through a slot beside EAX.
const void* target_of(const unsigned char* entry) {
  int32_t to_table, to_slot;
  if (entry[0] != 0xe8 || entry[5] != 0x05 || entry[10] != 0xff || entry[11] != 0xa0)
    return nullptr;
  memcpy(&to_table, entry + 6, 4);
  memcpy(&to_slot, entry + 12, 4);
  return *reinterpret_cast<void* const*>(entry + 5 + to_table + to_slot);
}
#endif

TEST(GmpList, EveryEntryJumpsToItsFunction) {
  const jex::Module* module = jex::module();
  ASSERT_NE(module, nullptr) << jex_core_error();
  void* gmp = dlopen(JEX_GMP_FILE, RTLD_NOW);
  ASSERT_NE(gmp, nullptr) << dlerror();
  int jumps = 0;
  for (const jex::ModuleEntry& entry : jex::module_entries) {
    if (!std::string_view(entry.name).starts_with(prefix)) continue;
    const char* const name = entry.name + prefix.size();
    if (in_core.count(name)) continue;
    void* const own = dlsym(gmp, name);
    ASSERT_NE(own, nullptr) << name;
    EXPECT_EQ(target_of(static_cast<const unsigned char*>(entry.address(*module))), own) << name;
    ++jumps;
  }
  EXPECT_EQ(jumps, int(entries().size() - in_core.size()));
  dlclose(gmp);
}

}  // namespace
