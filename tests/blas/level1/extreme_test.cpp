// First index of the largest and smallest magnitude, against the walk that defines it.

#include "blas/level1/level1.h"

namespace jex::test {
namespace {

template <class T>
struct Level1Extreme : testing::Test {};
TYPED_TEST_SUITE(Level1Extreme, All4);

template <class T>
int told_index(int n, Vector<T>& x, bool largest) {
  if (n < 1 || x.inc() < 1) return 0;
  Real<T> running = magnitude(x.at(0));
  int index = 1;
  for (int i = 1; i < n; ++i) {
    const Real<T> m = magnitude(x.at(i));
    if (largest ? !(running >= m) : !(m >= running)) running = m, index = i + 1;
  }
  return index;
}

TYPED_TEST(Level1Extreme, RandomAndSpecial) {
  using T = TypeParam;
  for_cases([](Case& c) {
    auto x = c.vector<T>();
    EXPECT_EQ(Entries<T>::amax(&c.n, x.data(), x.inc_address()), told_index(c.n, x, true));
    EXPECT_EQ(Entries<T>::amin(&c.n, x.data(), x.inc_address()), told_index(c.n, x, false));
  });
}

// Few distinct values and few NaN: ties across blocks, NaN in the first, in the last, in any block.
TYPED_TEST(Level1Extreme, TiesAndNaN) {
  using T = TypeParam;
  using R = Real<T>;
  for_cases([](Case& c) {
    c.n = c.random.between(1, longest);
    const int inc = c.random.between(0, 3) ? 1 : 2;
    auto x = c.vector<T>(inc);
    const int rarity = c.random.pick({5, 50, 1000});
    for (int i = 0; i < c.n; ++i) {
      R values[Parts<T>::count] = {R(c.random.between(-3, 3))};
      if (c.random.between(0, rarity) == 0) values[0] = std::numeric_limits<R>::quiet_NaN();
      memcpy(&x.at(i), values, sizeof values);
      x.data()[i * inc] = x.at(i);
    }
    EXPECT_EQ(Entries<T>::amax(&c.n, x.data(), &inc), told_index(c.n, x, true));
    EXPECT_EQ(Entries<T>::amin(&c.n, x.data(), &inc), told_index(c.n, x, false));
  });
}

TEST(Level1Extreme, WorkedSamples) {
  const int three = 3, two = 2, one = 1, back = -1;
  const double ties[] = {1, -3, 3}, nan_first[] = {NAN, 5, 2}, nan_last[] = {1, 5, NAN};
  const jex_scomplex parts[] = {{3, 0}, {2, 2}};
  EXPECT_EQ(jex_blas_idamax(&three, ties, &one), 2);
  EXPECT_EQ(jex_blas_idamax(&three, ties, &back), 0);
  EXPECT_EQ(jex_blas_idamax(&one, ties, &back), 0);
  EXPECT_EQ(jex_blas_idamax(&three, nan_first, &one), 2);
  EXPECT_EQ(jex_blas_idamax(&three, nan_last, &one), 3);
  EXPECT_EQ(jex_blas_idamin(&three, nan_first, &one), 3);
  EXPECT_EQ(jex_blas_icamax(&two, parts, &one), 2);
}

}  // namespace
}  // namespace jex::test
