// The names of the sparse family, all in all.

#include "spblas/kernel_name.h"

#include <gtest/gtest.h>

#include <jex/exports.h>

#include <map>

namespace jex::test {
namespace {

// Regular kernels by format, as the table of combinations has them; other names by kind.
TEST(SparseNames, AreTheFamily) {
  std::map<std::string, int> count;
  int all = 0;
#define JEX_ENTRY(name) #name,
  static const char* const names[] = {
#include <jex/export_names.inc>
  };
#undef JEX_ENTRY
  for (const std::string name : names) {
    if (name.rfind("jex_spblas_", 0) != 0) continue;
    ++all;
    const bool regular = name.find("out_par") != name.npos || name.find("out_seq") != name.npos;
    ++count[regular                               ? name.substr(12, 3)
            : name.find("find_diag") != name.npos ? "find_diag"
                                                  : "other"];
  }
  EXPECT_EQ(count["csr"], 705);
  EXPECT_EQ(count["bsr"], 20);
  EXPECT_EQ(count["other"], 132);
  EXPECT_EQ(count["coo"], 472);
  EXPECT_EQ(count["dia"], 316);
  EXPECT_EQ(count["find_diag"], 4);
  EXPECT_EQ(all, 1649);
}

}  // namespace
}  // namespace jex::test
