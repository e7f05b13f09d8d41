// The services of the sparse family: scalars, and sums of partial vectors.

#include "spblas/csr_matrix.h"

#include <gtest/gtest.h>

namespace jex::test {
namespace {

template <class T>
struct Services;
#define JEX_TEST_SERVICES(E, T)                                          \
  template <>                                                            \
  struct Services<T> {                                                   \
    static constexpr auto zeros = jex_spblas_##E##zeros;                 \
    static constexpr auto ones = jex_spblas_##E##ones;                   \
    static constexpr auto neones = jex_spblas_##E##neones;               \
    static constexpr auto zerocheck = jex_spblas_##E##zerocheck;         \
    static constexpr auto split_par = jex_spblas_##E##split_par;         \
    static constexpr auto split_sym_par = jex_spblas_##E##split_sym_par; \
  };
JEX_TEST_SERVICES(s, float)
JEX_TEST_SERVICES(d, double)
JEX_TEST_SERVICES(c, jex_scomplex)
JEX_TEST_SERVICES(z, jex_dcomplex)

template <class T>
class Service : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(Service, Element4);

template <class T>
T from_parts(double re, double im) {
  if constexpr (is_complex<T>)
    return {Real<T>(re), Real<T>(im)};
  else
    return T(re);
}

TYPED_TEST(Service, Scalars) {
  using T = TypeParam;
  using S = Services<T>;
  T x = from_parts<T>(NAN, NAN);
  S::ones(&x);
  EXPECT_TRUE(same_bits(x, from_parts<T>(1, 0)));
  x = from_parts<T>(0, -3);
  S::neones(&x);
  EXPECT_TRUE(same_bits(x, from_parts<T>(-0.0, 3)));

  const auto flag = [](double re, double im) {
    const T x = from_parts<T>(re, im);
    jex_int flag = 7;
    S::zerocheck(&x, &flag);
    return flag;
  };
  EXPECT_EQ(flag(0, 0), 0);
  EXPECT_EQ(flag(-0.0, -0.0), 0);
  EXPECT_EQ(flag(NAN, 0), 1);
  EXPECT_EQ(flag(1e-40, 0), 1);
  EXPECT_EQ(flag(0, NAN), is_complex<T>);
  EXPECT_EQ(flag(0, 1), is_complex<T>);
}

TYPED_TEST(Service, ZerosSetsItsElementsAndNoOther) {
  using T = TypeParam;
  for (const int n : {-1, 0, 1, 5}) {
    std::vector<T> x(7, from_parts<T>(3, 4));
    Services<T>::zeros(x.data(), &n);
    for (int i = 0; i < 7; ++i)
      EXPECT_TRUE(same_bits(x[i], i < n ? T{} : from_parts<T>(3, 4))) << n << " " << i;
  }
}

// Pairs first, then onto y; an odd one by itself. No parts, no rows: nothing.
TYPED_TEST(Service, SplitAddsInPairs) {
  using T = TypeParam;
  for (const bool staggered : {false, true})
    for (const unsigned seed : case_seeds(60)) {
      Random random(seed);
      const int rows = random.between(1, 40), parts = random.between(-1, 7);
      const int ld = rows + random.between(0, 5), step = ld + (staggered ? 8 : 0);
      const int first = random.between(1, rows), last = random.between(first - 1, rows);
      DenseMatrix<T> p(random, rows, std::max(parts, 0), false, step - rows);
      DenseMatrix<T> y(random, rows, 1, false, 0);
      (staggered ? Services<T>::split_sym_par : Services<T>::split_par)(
          &first, &last, &parts, &ld, p.operand.data(), y.operand.data());
      for (int i = first - 1; i < last; ++i)
        for (int q = 0; q < parts; q += 2)
          y.at(i, 0) =
              add(y.at(i, 0), q + 1 < parts ? add(p.at(i, q), p.at(i, q + 1)) : p.at(i, q));
      EXPECT_EQ(first_difference(y.operand.values(), y.model), "")
          << "JEX_CASE=" << seed << " staggered=" << staggered << " parts=" << parts;
    }
}

}  // namespace
}  // namespace jex::test
