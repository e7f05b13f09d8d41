// potrf and sytrf: the factors multiplied together again, info, and the half that is not theirs.

#include "blas/level3/operand.h"

namespace jex::test {
namespace {

template <class T>
struct Entries;
#define JEX_TEST_ENTRIES(t, T)                                                  \
  template <>                                                                   \
  struct Entries<T> {                                                           \
    static auto potrf(bool upper) {                                             \
      return upper ? jex_blas_##t##potrf_u_small : jex_blas_##t##potrf_l_small; \
    }                                                                           \
    static auto sytrf(bool upper) {                                             \
      return upper ? jex_blas_##t##sytrf_u_small : jex_blas_##t##sytrf_l_small; \
    }                                                                           \
  };
JEX_TEST_ENTRIES(s, float)
JEX_TEST_ENTRIES(d, double)
JEX_TEST_ENTRIES(c, jex_scomplex)
JEX_TEST_ENTRIES(z, jex_dcomplex)

template <class T>
class Factors : public testing::Test {};
TYPED_TEST_SUITE(Factors, Element4);

template <class T>
void add_to_diagonal(Matrix<T>& a, double shift) {
  for (int i = 0; i < a.rows; ++i) {
    if constexpr (is_complex<T>) a.at(i, i).im = 0;
    reinterpret_cast<Real<T>&>(a.at(i, i)) += Real<T>(shift);
  }
  a.remember();
}

int order(Random& random) {
  return random.between(0, 2) ? random.between(0, 34) : random.pick({63, 64, 65, 100, 129});
}

// The factor as a whole lower triangle L with A = L L', and the sums of the product.
template <class T>
Sums square(Matrix<T>& a, int n, bool upper) {
  const Dense l(n, n, [&](int i, int j) -> Wide {
    if (i < j) return 0;
    return upper ? std::conj(wide(a.at(j, i))) : wide(a.at(i, j));
  });
  const Dense adjoint(n, n, [&](int i, int j) { return std::conj(l(j, i)); });
  Sums sums(n, n);
  sums.add_product(1, l, adjoint);
  return sums;
}

TYPED_TEST(Factors, CholeskyGivesTheMatrixBack) {
  for (const unsigned seed : case_seeds(60))
    for (const bool upper : {true, false}) {
      Random random(seed);
      const int n = order(random);
      Matrix<TypeParam> a(random, n, n, upper ? Shape::upper : Shape::lower);
      add_to_diagonal(a, 3 * n);
      int info = -7;
      Entries<TypeParam>::potrf(upper)(&n, a.data(), &a.ld, &info);
      EXPECT_EQ(info, 0);
      EXPECT_TRUE(a.unchanged(false)) << "beside the triangle";
      const Sums sums = square(a, n, upper);
      const double eps = std::numeric_limits<Real<TypeParam>>::epsilon();
      a.for_elements([&](int i, int j) {
        const int r = std::max(i, j), c = std::min(i, j), at = r + c * n;
        const Wide mine = upper ? std::conj(sums.value[at]) : sums.value[at];
        EXPECT_LE(std::abs(mine - wide(a.before(i, j))), 4 * (n + 8) * eps * sums.size[at]);
      });
      if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed << " " << upper << " " << n;
    }
}

// The first minor that is not positive: its pivot is negative, zero or NaN.
TYPED_TEST(Factors, CholeskyTellsTheMinorThatIsNotPositive) {
  for (const bool upper : {true, false})
    for (const int n : {1, 9, 40, 70})
      for (const int k : {0, n / 2, n - 1})
        for (const double pivot : {-1.0, 0.0, std::nan("")}) {
          Random random(1);
          Matrix<TypeParam> a(random, n, n, upper ? Shape::upper : Shape::lower);
          a.for_elements([&](int i, int j) { a.at(i, j) = TypeParam{}; });
          add_to_diagonal(a, 2);
          reinterpret_cast<Real<TypeParam>&>(a.at(k, k)) = Real<TypeParam>(pivot);
          int info = -7;
          Entries<TypeParam>::potrf(upper)(&n, a.data(), &a.ld, &info);
          EXPECT_EQ(info, k + 1) << n << " " << pivot;
          EXPECT_TRUE(a.unchanged(false));
        }
}

// Lower: A = P1 L1 P2 L2 ... D ... L2^T P2^T L1^T P1^T, put together from the last step to the
// first; upper: the same from the other end, which this reads by turning A round.
template <class T>
std::vector<Wide> from_factors(Matrix<T>& a, const std::vector<int>& ipiv, bool upper) {
  const int n = a.rows;
  const auto turned = [&](int i) { return upper ? n - 1 - i : i; };
  const auto at = [&](int i, int j) { return wide(a.at(turned(i), turned(j))); };
  const auto pivot = [&](int k) { return ipiv[turned(k)]; };
  std::vector<Wide> m(n * n);
  std::vector<int> steps;
  for (int k = 0; k < n; ++k) {
    steps.push_back(k);
    m[k + k * n] = at(k, k);
    if (pivot(k) < 0) {
      m[k + 1 + (k + 1) * n] = at(k + 1, k + 1);
      m[k + 1 + k * n] = m[k + (k + 1) * n] = at(k + 1, k);
      ++k;
    }
  }
  while (!steps.empty()) {
    const int k = steps.back(), width = pivot(k) < 0 ? 2 : 1;
    steps.pop_back();
    for (int i = k + width; i < n; ++i)
      for (int w = 0; w < width; ++w)
        for (int j = 0; j < n; ++j) m[i + j * n] += at(i, k + w) * m[k + w + j * n];
    for (int i = k + width; i < n; ++i)
      for (int w = 0; w < width; ++w)
        for (int j = 0; j < n; ++j) m[j + i * n] += at(i, k + w) * m[j + (k + w) * n];
    const int p = k + width - 1, q = turned(std::abs(pivot(k)) - 1);
    for (int j = 0; j < n; ++j) std::swap(m[p + j * n], m[q + j * n]);
    for (int j = 0; j < n; ++j) std::swap(m[j + p * n], m[j + q * n]);
  }
  return m;
}

TYPED_TEST(Factors, PivotedFactorsGiveTheMatrixBack) {
  bool blocks_of_two = false;
  for (const unsigned seed : case_seeds(60))
    for (const bool upper : {true, false}) {
      Random random(seed);
      const int n = order(random);
      Matrix<TypeParam> a(random, n, n, upper ? Shape::upper : Shape::lower);
      if (random.between(0, 1))  // nothing on the diagonal
        for (int i = 0; i < n; ++i) a.at(i, i) = TypeParam{};
      a.remember();
      std::vector<int> ipiv(n);
      int info = -7;
      Entries<TypeParam>::sytrf(upper)(&n, a.data(), &a.ld, ipiv.data(), &info);
      EXPECT_TRUE(info == 0 || n == 1) << info;
      EXPECT_TRUE(a.unchanged(false)) << "beside the triangle";
      for (const int p : ipiv) blocks_of_two = blocks_of_two || p < 0;
      const auto m = from_factors(a, ipiv, upper);
      const double tolerance =
          200 * std::max(n, 1) * std::numeric_limits<Real<TypeParam>>::epsilon();
      a.for_elements([&](int i, int j) {
        const int r = upper ? n - 1 - i : i, c = upper ? n - 1 - j : j;
        EXPECT_LE(std::abs(m[r + c * n] - wide(a.before(i, j))), tolerance) << i << " " << j;
      });
      if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed << " " << upper << " " << n;
    }
  EXPECT_TRUE(blocks_of_two || getenv("JEX_CASE"));
}

// Of a zero matrix every D(k,k) is zero: info names the first one that the walk meets.
TYPED_TEST(Factors, PivotedFactorsTellTheFirstZero) {
  for (const bool upper : {true, false}) {
    Random random(1);
    const int n = 5;
    Matrix<TypeParam> a(random, n, n, upper ? Shape::upper : Shape::lower);
    a.for_elements([&](int i, int j) { a.at(i, j) = TypeParam{}; });
    std::vector<int> ipiv(n);
    int info = -7;
    Entries<TypeParam>::sytrf(upper)(&n, a.data(), &a.ld, ipiv.data(), &info);
    EXPECT_EQ(info, upper ? n : 1);
    for (int k = 0; k < n; ++k) EXPECT_EQ(ipiv[k], k + 1);
  }
}

}  // namespace
}  // namespace jex::test
