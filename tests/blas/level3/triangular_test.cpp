// trmm against sums in double precision, trsm by its residual.

#include "blas/level3/operand.h"

namespace jex::test {
namespace {

template <class T>
struct Entries;
#define JEX_TEST_TRIANGULAR(t, T)                     \
  template <>                                         \
  struct Entries<T> {                                 \
    static constexpr auto trmm = jex_blas_x##t##trmm; \
    static constexpr auto trsm = jex_blas_x##t##trsm; \
  };
JEX_TEST_TRIANGULAR(s, float)
JEX_TEST_TRIANGULAR(d, double)
JEX_TEST_TRIANGULAR(c, jex_scomplex)
JEX_TEST_TRIANGULAR(z, jex_dcomplex)

template <class T>
class Level3Triangular : public testing::Test {};
TYPED_TEST_SUITE(Level3Triangular, Element4);

// A call with its flags: op(A) beside B, m x n, from the left or the right.
template <class T>
struct Call {
  char side, uplo, trans, diag;
  int m, n, order;
  Matrix<T> a, b;
  T alpha;

  Call(Random& random, const char* flags, int m, int n)
      : side(either(random, flags[0])),
        uplo(either(random, flags[1])),
        trans(either(random, flags[2])),
        diag(either(random, flags[3])),
        m(m),
        n(n),
        order(flags[0] == 'L' ? m : n),
        a(random, order, order, triangle_of(uplo, diag)),
        b(random, m, n),
        alpha(factor<T>(random)) {
    // The diagonal dominates, so that no solution grows.
    a.for_elements([&](int i, int j) {
      Real<T>* const parts = reinterpret_cast<Real<T>*>(&a.at(i, j));
      for (int k = 0; k < Parts<T>::count; ++k)
        if (i == j)
          parts[k] += parts[k] < 0 ? -1 : 1;
        else
          parts[k] *= Real<T>(2) / std::max(4, order);
    });
    a.remember();
    if (is_zero(alpha)) {
      b.fill_with_nan();
      b.remember();
    }
  }
  bool left() const { return toupper(side) == 'L'; }
  bool unit() const { return toupper(diag) == 'U'; }
  template <class Entry>
  void run(Entry entry) {
    entry(&side, &uplo, &trans, &diag, &m, &n, &alpha, a.data(), &a.ld, b.data(), &b.ld);
    EXPECT_TRUE(a.unchanged(true)) << "A has changed";
  }
  // op(A) as a whole matrix.
  Dense op() const {
    return {order, order, [&](int i, int j) -> Wide {
              if (i == j && unit()) return 1;
              const bool stored = toupper(trans) == 'N' ? a.has(i, j) : a.has(j, i);
              return stored ? element(a, trans, i, j) : 0;
            }};
  }
  void add_product(Sums& sums, Wide alpha, const Dense& x) const {
    left() ? sums.add_product(alpha, op(), x) : sums.add_product(alpha, x, op());
  }
};

template <class T>
void check_product(Call<T> call) {
  Sums sums(call.m, call.n);
  if (!is_zero(call.alpha))
    call.add_product(sums, wide(call.alpha),
                     {call.m, call.n, [&](int i, int j) { return wide(call.b.before(i, j)); }});
  call.run(Entries<T>::trmm);
  expect_sums(call.b, sums, call.order);
}

// Errors of op(A) X - alpha B in units of eps, the sums of magnitudes and the number of terms.
template <class T>
double residual(const Call<T>& call, const Dense& x) {
  Sums sums(call.m, call.n);
  call.add_product(sums, 1, x);
  double worst = 0;
  for (int j = 0; j < call.n; ++j)
    for (int i = 0; i < call.m; ++i) {
      if (!is_zero(call.alpha)) sums.add(i, j, -wide(call.alpha) * wide(call.b.before(i, j)));
      const double error = std::abs(sums.value[i + j * call.m]);
      const double unit = std::numeric_limits<Real<T>>::epsilon() * (is_complex<T> ? 3 : 1) *
                          (call.order + 8) * sums.size[i + j * call.m];
      if (!(error <= worst * unit)) worst = error / unit;
      if (std::isnan(worst)) return std::numeric_limits<double>::infinity();
    }
  return worst;
}

template <class T>
void check_solve(Call<T> call) {
  call.run(Entries<T>::trsm);
  const Dense x(call.m, call.n, [&](int i, int j) { return wide(call.b.at(i, j)); });
  EXPECT_TRUE(residual(call, x) <= 1) << residual(call, x);
  EXPECT_TRUE(call.b.unchanged(false)) << "beside the elements of B";
  if (is_zero(call.alpha))
    call.b.for_elements([&](int i, int j) { EXPECT_TRUE(same_bits(call.b.at(i, j), T{})); });
}

template <class T, class Check>
void for_flags(unsigned cases, Check check) {
  for (const unsigned seed : case_seeds(cases))
    for (const char side : {'L', 'R'})
      for (const char uplo : {'U', 'L'})
        for (const char trans : {'N', 'T', 'C'})
          for (const char diag : {'N', 'U'}) {
            Random random(seed);
            const char flags[] = {side, uplo, trans, diag, 0};
            const Sizes sizes(random);
            const bool left = side == 'L';
            check(Call<T>(random, flags, sizes.n[left ? 0 : 1], sizes.n[left ? 1 : 0]));
            if (testing::Test::HasFailure())
              FAIL() << "JEX_CASE=" << seed << " " << flags << sizes.text();
          }
}

TYPED_TEST(Level3Triangular, ProductsWithinBounds) {
  for_flags<TypeParam>(24, check_product<TypeParam>);
}
TYPED_TEST(Level3Triangular, SolvesWithinBounds) {
  for_flags<TypeParam>(24, check_solve<TypeParam>);
}

// More than one block of the triangle beside more than a handful of vectors.
TYPED_TEST(Level3Triangular, SeveralBlocks) {
  for (const char* flags : {"LLNN", "LUNN", "RUCN", "RLTU"}) {
    Random random(7);
    const bool left = flags[0] == 'L';
    const int m = left ? 515 : 37, n = left ? 37 : 515;
    check_product(Call<TypeParam>(random, flags, m, n));
    check_solve(Call<TypeParam>(random, flags, m, n));
  }
}

// A wrong unknown, a NaN: the residual tells.
TYPED_TEST(Level3Triangular, ResidualRefusesWrongResults) {
  for (const bool nan : {false, true}) {
    Random random(3);
    Call<TypeParam> call(random, "LLNN", 9, 9);
    call.run(Entries<TypeParam>::trsm);
    const Dense x(9, 9, [&](int i, int j) {
      return i == 4 && j == 5 ? (nan ? std::nan("") : wide(call.b.at(i, j)) + 0.01)
                              : wide(call.b.at(i, j));
    });
    EXPECT_FALSE(residual(call, x) <= 1);
  }
}

TYPED_TEST(Level3Triangular, EmptyProblemsReadNothing) {
  const int zero = 0, nine = 9;
  TypeParam one{};
  reinterpret_cast<Real<TypeParam>&>(one) = 1;
  TypeParam* const nowhere = nullptr;
  for (const auto entry : {Entries<TypeParam>::trmm, Entries<TypeParam>::trsm}) {
    entry("L", "U", "N", "N", &zero, &nine, &one, nowhere, &nine, nowhere, &nine);
    entry("R", "U", "N", "N", &nine, &zero, &one, nowhere, &nine, nowhere, &nine);
  }
}

}  // namespace
}  // namespace jex::test
