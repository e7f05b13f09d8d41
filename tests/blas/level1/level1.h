// The frame of the level-1 tests: one body for all element types, over random cases.
#pragma once

#include "blas/level1/arithmetic.h"
#include "blas/level1/entries.h"
#include "support/vectors.h"

#include <gtest/gtest.h>

namespace jex::test {

using Real2 = testing::Types<float, double>;
using Complex2 = testing::Types<jex_scomplex, jex_dcomplex>;
using All4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;

inline constexpr int longest = 300;
inline constexpr unsigned cases = 3000;

template <class Body>
void for_cases(Body body) {
  for (const unsigned seed : case_seeds(cases)) {
    Case c(seed, longest);
    body(c);
    if (testing::Test::HasFailure()) FAIL() << c.text;
  }
}

template <class... V>
void expect_model(const V&... vector) {
  int k = 0;
  for (const std::string& difference : {vector.difference()...})
    EXPECT_EQ(difference, "") << "vector " << k++;
}

// A scalar factor: often one of the special ones.
template <class T>
T factor(Case& c) {
  using R = Real<T>;
  const auto part = [&] {
    return c.random.between(0, 2) ? random_real<R>(c.random, c.values)
                                  : c.random.pick({R(0), R(-0.0), R(1), R(-1)});
  };
  if constexpr (is_complex<T>)
    return {part(), part()};
  else
    return part();
}

}  // namespace jex::test
