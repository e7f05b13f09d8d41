// syrk, herk, syr2k, her2k, symm and hemm against sums in double precision.

#include "blas/level3/operand.h"

namespace jex::test {
namespace {

// One type's routines; the Hermitian ones are those of complex types, with real factors S.
template <class T_, class S_, bool hermitian_>
struct Kind {
  using T = T_;
  using S = S_;
  static constexpr bool hermitian = hermitian_;
};
template <class Kind>
struct Entries;
#define JEX_TEST_KIND(T, S, hermitian, rk, r2k, mm)  \
  template <>                                        \
  struct Entries<Kind<T, S, hermitian>> {            \
    static constexpr auto rank_k = jex_blas_x##rk;   \
    static constexpr auto rank_2k = jex_blas_x##r2k; \
    static constexpr auto multiply = jex_blas_x##mm; \
  };
JEX_TEST_KIND(float, float, false, ssyrk, ssyr2k, ssymm)
JEX_TEST_KIND(double, double, false, dsyrk, dsyr2k, dsymm)
JEX_TEST_KIND(jex_scomplex, jex_scomplex, false, csyrk, csyr2k, csymm)
JEX_TEST_KIND(jex_dcomplex, jex_dcomplex, false, zsyrk, zsyr2k, zsymm)
JEX_TEST_KIND(jex_scomplex, float, true, cherk, cher2k, chemm)
JEX_TEST_KIND(jex_dcomplex, double, true, zherk, zher2k, zhemm)
using Kinds =
    testing::Types<Kind<float, float, false>, Kind<double, double, false>,
                   Kind<jex_scomplex, jex_scomplex, false>, Kind<jex_dcomplex, jex_dcomplex, false>,
                   Kind<jex_scomplex, float, true>, Kind<jex_dcomplex, double, true>>;

template <class K>
class Symmetric : public testing::Test {};
TYPED_TEST_SUITE(Symmetric, Kinds);

// op(A) whole, and its mirror image.
template <class T>
Dense whole(const Matrix<T>& a, char trans, int rows, int columns) {
  return {rows, columns, [&](int i, int j) { return element(a, trans, i, j); }};
}
Dense mirrored(const Dense& a, bool hermitian) {
  return {a.columns, a.rows,
          [&](int i, int j) { return hermitian ? std::conj(a(j, i)) : a(j, i); }};
}

// C before the call: beta times it, but nothing where beta is 0; then C itself is NaN.
template <class T, class S>
void start(Sums& sums, Matrix<T>& c, S beta, bool hermitian) {
  if (is_zero(beta)) {
    c.fill_with_nan();
    c.remember();
    return;
  }
  c.for_elements([&](int i, int j) {
    sums.add(i, j, wide(beta) * (hermitian && i == j ? wide(c.at(i, j)).real() : wide(c.at(i, j))));
  });
}

template <class K>
void expect_triangle(Matrix<typename K::T>& c, const Sums& sums, int terms, bool stays) {
  if (stays) {
    EXPECT_TRUE(c.unchanged(true));
    return;
  }
  expect_sums(c, sums, terms);
  if constexpr (K::hermitian) {
    for (int i = 0; i < c.rows; ++i) EXPECT_EQ(c.at(i, i).im, 0);
  }
}

// Where there is nothing to add and beta is 1, a Hermitian diagonal keeps its imaginary parts.
template <class T, class S>
bool stays(T alpha, int k, S beta) {
  return (is_zero(alpha) || k == 0) && wide(beta) == Wide(1);
}

template <class K>
void check_rank_k(Random& random, char uplo, char trans, int n, int k) {
  using T = typename K::T;
  const bool plain = toupper(trans) == 'N';
  Matrix<T> a(random, plain ? n : k, plain ? k : n), c(random, n, n, triangle_of(uplo));
  const auto alpha = factor<typename K::S>(random), beta = factor<typename K::S>(random);
  Sums sums(n, n);
  start(sums, c, beta, K::hermitian);
  const Dense op = whole(a, trans, n, k);
  sums.add_product(wide(alpha), op, mirrored(op, K::hermitian));
  Entries<K>::rank_k(&uplo, &trans, &n, &k, &alpha, a.data(), &a.ld, &beta, c.data(), &c.ld);
  EXPECT_TRUE(a.unchanged(true));
  expect_triangle<K>(c, sums, k, stays(alpha, k, beta));
}

template <class K>
void check_rank_2k(Random& random, char uplo, char trans, int n, int k) {
  using T = typename K::T;
  const bool plain = toupper(trans) == 'N';
  Matrix<T> a(random, plain ? n : k, plain ? k : n), b(random, a.rows, a.columns);
  Matrix<T> c(random, n, n, triangle_of(uplo));
  const auto alpha = factor<T>(random);
  const auto beta = factor<typename K::S>(random);
  Sums sums(n, n);
  start(sums, c, beta, K::hermitian);
  const Dense pa = whole(a, trans, n, k), pb = whole(b, trans, n, k);
  sums.add_product(wide(alpha), pa, mirrored(pb, K::hermitian));
  sums.add_product(K::hermitian ? std::conj(wide(alpha)) : wide(alpha), pb,
                   mirrored(pa, K::hermitian));
  Entries<K>::rank_2k(&uplo, &trans, &n, &k, &alpha, a.data(), &a.ld, b.data(), &b.ld, &beta,
                      c.data(), &c.ld);
  EXPECT_TRUE(a.unchanged(true) && b.unchanged(true));
  expect_triangle<K>(c, sums, 2 * k, stays(alpha, k, beta));
}

template <class K>
void check_multiply(Random& random, char side, char uplo, int m, int n) {
  using T = typename K::T;
  const int order = toupper(side) == 'L' ? m : n;
  Matrix<T> a(random, order, order, triangle_of(uplo)), b(random, m, n), c(random, m, n);
  if constexpr (K::hermitian) {
    for (int i = 0; i < order; ++i) a.at(i, i).im = std::numeric_limits<Real<T>>::quiet_NaN();
    a.remember();
  }
  const auto alpha = factor<T>(random), beta = factor<T>(random);
  Sums sums(m, n);
  start(sums, c, beta, false);
  const Dense pa(order, order,
                 [&](int i, int j) { return symmetric_element(a, K::hermitian, i, j); });
  const Dense pb = whole(b, 'N', m, n);
  toupper(side) == 'L' ? sums.add_product(wide(alpha), pa, pb)
                       : sums.add_product(wide(alpha), pb, pa);
  Entries<K>::multiply(&side, &uplo, &m, &n, &alpha, a.data(), &a.ld, b.data(), &b.ld, &beta,
                       c.data(), &c.ld);
  EXPECT_TRUE(a.unchanged(true) && b.unchanged(true));
  expect_sums(c, sums, order);
}

// check(random, first flag, second flag, sizes) for every combination of the flags.
template <class Check>
void for_flags(const char* first, const char* second, unsigned cases, Check check) {
  for (const unsigned seed : case_seeds(cases))
    for (const char* f = first; *f; ++f)
      for (const char* s = second; *s; ++s) {
        Random random(seed);
        const Sizes sizes(random);
        check(random, either(random, *f), either(random, *s), sizes.n);
        if (testing::Test::HasFailure())
          FAIL() << "JEX_CASE=" << seed << " " << *f << *s << sizes.text();
      }
}

TYPED_TEST(Symmetric, RankKWithinBounds) {
  for_flags("UL", TypeParam::hermitian ? "NC" : "NT", 40,
            [](Random& random, char uplo, char trans, const int* n) {
              check_rank_k<TypeParam>(random, uplo, trans, n[0], n[1]);
            });
}

TYPED_TEST(Symmetric, Rank2kWithinBounds) {
  for_flags("UL", TypeParam::hermitian ? "NC" : "NT", 40,
            [](Random& random, char uplo, char trans, const int* n) {
              check_rank_2k<TypeParam>(random, uplo, trans, n[0], n[1]);
            });
}

TYPED_TEST(Symmetric, MultiplyWithinBounds) {
  for_flags("LR", "UL", 40, [](Random& random, char side, char uplo, const int* n) {
    const bool left = toupper(side) == 'L';
    check_multiply<TypeParam>(random, side, uplo, n[left ? 0 : 1], n[left ? 1 : 0]);
  });
}

// Nothing is read or written: the addresses are null.
TYPED_TEST(Symmetric, ReadsNothingInVain) {
  using T = typename TypeParam::T;
  using S = typename TypeParam::S;
  using E = Entries<TypeParam>;
  T* const nowhere = nullptr;
  const int zero = 0, nine = 9;
  T none{}, unity{};
  reinterpret_cast<Real<T>&>(unity) = 1;
  S no{}, one{};
  reinterpret_cast<Real<S>&>(one) = 1;
  for (const char* uplo : {"U", "L"}) {
    E::rank_k(uplo, "N", &zero, &nine, &one, nowhere, &nine, &no, nowhere, &nine);
    E::rank_k(uplo, "N", &nine, &zero, &one, nowhere, &nine, &one, nowhere, &nine);
    E::rank_k(uplo, "N", &nine, &nine, &no, nowhere, &nine, &one, nowhere, &nine);
    E::rank_2k(uplo, "N", &zero, &nine, &unity, nowhere, &nine, nowhere, &nine, &no, nowhere,
               &nine);
    E::rank_2k(uplo, "N", &nine, &nine, &none, nowhere, &nine, nowhere, &nine, &one, nowhere,
               &nine);
    E::multiply("L", uplo, &nine, &zero, &unity, nowhere, &nine, nowhere, &nine, &none, nowhere,
                &nine);
    E::multiply("R", uplo, &nine, &nine, &none, nowhere, &nine, nowhere, &nine, &unity, nowhere,
                &nine);
  }
}

// Any letter but U is the lower triangle, and any but N the transpose.
TYPED_TEST(Symmetric, OtherLetters) {
  Random random(1);
  check_rank_k<TypeParam>(random, 'x', TypeParam::hermitian ? 'C' : 'T', 9, 5);
  if (!TypeParam::hermitian && !is_complex<typename TypeParam::T>)
    check_rank_k<TypeParam>(random, 'U', 'c', 9, 5);
}

}  // namespace
}  // namespace jex::test
