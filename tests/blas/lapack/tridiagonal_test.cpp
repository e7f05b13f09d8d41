// gtsv and ptts2 by their residuals.

#include "blas/level3/operand.h"

namespace jex::test {
namespace {

template <class T>
struct Entries;
#define JEX_TEST_ENTRIES(t, T)                             \
  template <>                                              \
  struct Entries<T> {                                      \
    static constexpr auto gtsv = jex_blas_##t##gtsv_small; \
    static constexpr auto ptts2 = jex_blas_##t##ptts2;     \
  };
JEX_TEST_ENTRIES(s, float)
JEX_TEST_ENTRIES(d, double)
JEX_TEST_ENTRIES(c, jex_scomplex)
JEX_TEST_ENTRIES(z, jex_dcomplex)

template <class T>
class Tridiagonal : public testing::Test {};
TYPED_TEST_SUITE(Tridiagonal, Element4);

// T X - B, row by row: within n roundings of the largest terms that elimination can meet.
template <class T, class Entry>
void expect_solved(int n, Entry entry, Matrix<T>& x) {
  const double eps = std::numeric_limits<Real<T>>::epsilon();
  for (int j = 0; j < x.columns; ++j) {
    double largest = 0;
    for (int i = 0; i < n; ++i) largest = std::max(largest, std::abs(wide(x.at(i, j))));
    for (int i = 0; i < n; ++i) {
      Wide sum = -wide(x.before(i, j));
      for (int k = std::max(0, i - 1); k <= std::min(n - 1, i + 1); ++k)
        sum += entry(i, k) * wide(x.at(k, j));
      EXPECT_TRUE(std::abs(sum) <= 60 * eps * (largest * 4 + 4)) << i << " " << j << " " << sum;
    }
  }
  EXPECT_TRUE(x.unchanged(false));
}

TYPED_TEST(Tridiagonal, GtsvSolvesWithPivoting) {
  for (const unsigned seed : case_seeds(100)) {
    Random random(seed);
    const int n = random.between(0, 40), nrhs = random.between(0, 5);
    Matrix<TypeParam> dl(random, n - 1, 1), d(random, n, 1), du(random, n - 1, 1),
        b(random, n, nrhs);
    if (random.between(0, 1) && n > 1)  // every step exchanges
      for (int i = 0; i < n - 1; ++i) d.at(i, 0) = TypeParam{};
    if (n > 0) reinterpret_cast<Real<TypeParam>&>(d.at(n - 1, 0)) += 3;
    d.remember();
    int info = -7;
    Entries<TypeParam>::gtsv(&n, &nrhs, dl.data(), d.data(), du.data(), b.data(), &b.ld, &info);
    if (info != 0) continue;  // told below
    expect_solved(
        n,
        [&](int i, int k) {
          return wide(k < i ? dl.before(k, 0) : k == i ? d.before(i, 0) : du.before(i, 0));
        },
        b);
    if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed << " " << n;
  }
}

TYPED_TEST(Tridiagonal, GtsvTellsTheFirstZeroPivot) {
  const int n = 3, one = 1;
  for (int zero = 0; zero < n; ++zero) {
    TypeParam dl[2] = {}, d[3], du[2] = {}, b[3] = {};
    for (int i = 0; i < n; ++i) reinterpret_cast<Real<TypeParam>&>(d[i] = TypeParam{}) = i != zero;
    int info = -7;
    Entries<TypeParam>::gtsv(&n, &one, dl, d, du, b, &n, &info);
    EXPECT_EQ(info, zero + 1);
  }
}

// A = L D L': rows of L are (e, 1), or those of U' if the entries are the superdiagonal of U.
TYPED_TEST(Tridiagonal, Ptts2SolvesWithTheFactors) {
  using T = TypeParam;
  for (const unsigned seed : case_seeds(60))
    for (const int iuplo : {0, 1}) {
      if (!is_complex<T> && iuplo == 1) continue;
      Random random(seed);
      const int n = random.between(0, 40), nrhs = random.between(0, 5);
      Matrix<T> e(random, n - 1, 1), b(random, n, nrhs);
      e.for_elements([&](int i, int) {
        for (int k = 0; k < Parts<T>::count; ++k) reinterpret_cast<Real<T>*>(&e.at(i, 0))[k] /= 4;
      });
      e.remember();
      std::vector<Real<T>> d(n);
      for (auto& value : d) value = Real<T>(random.real(1, 2));
      if constexpr (is_complex<T>)
        Entries<T>::ptts2(&iuplo, &n, &nrhs, d.data(), e.data(), b.data(), &b.ld);
      else
        Entries<T>::ptts2(&n, &nrhs, d.data(), e.data(), b.data(), &b.ld);
      const auto below = [&](int k) {
        return iuplo == 1 ? std::conj(wide(e.before(k, 0))) : wide(e.before(k, 0));
      };
      expect_solved(
          n,
          [&](int i, int k) -> Wide {
            if (i == k) return d[i] + (i ? std::norm(below(i - 1)) * d[i - 1] : 0);
            return k < i ? below(k) * double(d[k]) : std::conj(below(i)) * double(d[i]);
          },
          b);
      EXPECT_TRUE(e.unchanged(true));
      if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed << " " << iuplo << " " << n;
    }
}

}  // namespace
}  // namespace jex::test
