// How lengths are taken apart.
#include "dft/engine/factor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace jex::dft;

namespace {

std::vector<int> factors_of(int n) {
  Factor factors[most_factors] = {};
  const int count = factorise(n, factors);
  std::vector<int> radices;
  int before = 1;
  for (int i = 0; i < count; ++i) {
    radices.push_back(factors[i].radix);
    EXPECT_EQ(factors[i].before, before) << n;
    before *= factors[i].radix;
    EXPECT_EQ(factors[i].rest, n / before) << n;
  }
  return radices;
}

TEST(Factor, StagesInTheirOrder) {
  const std::vector<int> none;
  EXPECT_EQ(factors_of(12), (std::vector<int>{3, 4}));
  EXPECT_EQ(factors_of(240), (std::vector<int>{5, 4, 3, 4}));
  EXPECT_EQ(factors_of(8 * 27), (std::vector<int>{6, 3, 3, 4})) << "no 2 beside a 4";
  EXPECT_EQ(factors_of(18), (std::vector<int>{3, 3, 2}));
  EXPECT_EQ(factors_of(2 * 67), (std::vector<int>{67, 2}));
  EXPECT_EQ(factors_of(49), (std::vector<int>{7, 7}));
  EXPECT_EQ(factors_of(14), (std::vector<int>{7, 2}));
  EXPECT_EQ(factors_of(17), none);
  EXPECT_EQ(factors_of(149), none);
  EXPECT_EQ(factors_of(302), none) << "151 is above 150";
  EXPECT_EQ(factors_of(149 * 149), (std::vector<int>{149, 149}));
}

TEST(Factor, PassesMultiplyToTheLength) {
  for (int n = 2; n <= 5000; ++n)
    for (const Use use : {Use::alone, Use::columns, Use::rows}) {
      const Radices r = choose_radices(n, use);
      int product = 1, rest = n, largest = 1;
      for (int i = 0; i < r.count; ++i) {
        product *= r.radix[i];
        if (i && (use == Use::rows || (use == Use::columns && n > 256))) {
          EXPECT_LE(r.radix[i], std::max(32, r.radix[i - 1])) << n;
        } else if (i) {
          EXPECT_GE(r.radix[i] % 2, r.radix[i - 1] % 2) << n;
        }
      }
      for (int p = 2; rest > 1; ++p)
        while (rest % p == 0) rest /= p, largest = p;
      ASSERT_EQ(product, largest < 150 ? n : 1) << n;
    }
}

TEST(Factor, SmallestRadixOnTheSideOfTheUser) {
  const auto list = [](int n, Use use) {
    const Radices r = choose_radices(n, use);
    return std::vector<int>(r.radix, r.radix + r.count);
  };
  EXPECT_EQ(list(128, Use::columns), (std::vector<int>{8, 16}));
  EXPECT_EQ(list(128, Use::rows), (std::vector<int>{16, 8}));
  EXPECT_EQ(list(512, Use::rows), (std::vector<int>{8, 8, 8}));
  EXPECT_EQ(list(17 * 64, Use::rows), (std::vector<int>{17, 8, 8}));
}

TEST(Factor, SplitNearTheRoot) {
  EXPECT_EQ(split_length(4096), 64);
  EXPECT_EQ(split_length(8192), 64);
  EXPECT_EQ(split_length(10000), 100);
  EXPECT_EQ(split_length(2 * 4099), 2);
  EXPECT_EQ(split_length(4099), 1);
}

}  // namespace
