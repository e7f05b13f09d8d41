// Sorted rows, skyline matrices, and the solves and products on one stored triangle.

#include "blas/level1/arithmetic.h"
#include "spblas/csr_matrix.h"
#include "spblas/kernel_name.h"
#include "support/exact.h"

#include <gtest/gtest.h>

#include <jex/exports.h>

namespace jex::test {
namespace {

template <class T>
class SparseUtility : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(SparseUtility, Element4);

template <class T>
struct Utilities;
#define JEX_TEST_UTILITIES(E, T)                             \
  template <>                                                \
  struct Utilities<T> {                                      \
    static constexpr auto sortrow = jex_spblas_##E##sortrow; \
    static constexpr auto gk = jex_spblas_##E##skymmgk;      \
    static constexpr auto kk = jex_spblas_##E##skymmkk;      \
    static constexpr auto sk = jex_spblas_##E##skymmsk;      \
    static constexpr auto solve = jex_spblas_##E##skysvk;    \
  };
JEX_TEST_UTILITIES(s, float)
JEX_TEST_UTILITIES(d, double)
JEX_TEST_UTILITIES(c, jex_scomplex)
JEX_TEST_UTILITIES(z, jex_dcomplex)

// Rows outside the range stay; equal columns keep their order.
TYPED_TEST(SparseUtility, SortrowIsStable) {
  using T = TypeParam;
  for (const unsigned seed : case_seeds(40)) {
    Random random(seed);
    const int m = random.between(1, 12);
    std::vector<std::vector<Entry<T>>> rows(m);
    std::vector<jex_int> pointers{1}, columns;
    std::vector<T> values;
    for (auto& row : rows) {
      for (int count = random.pick({0, 1, 2, 5, 40}); count > 0; --count)
        row.push_back({random.between(-3, 9), random_value<T>(random, Values::plain)});
      for (const auto& entry : row) columns.push_back(entry.column), values.push_back(entry.value);
      pointers.push_back(columns.size() + 1);
    }
    Operand<jex_int> p(random, pointers), j(random, columns);
    Operand<T> a(random, values);
    const jex_int first = random.between(1, m), last = random.between(first - 1, m);
    Utilities<T>::sortrow(&first, &last, p.data(), j.data(), a.data());
    for (int i = first - 1; i < last; ++i)
      std::stable_sort(rows[i].begin(), rows[i].end(),
                       [](auto& a, auto& b) { return a.column < b.column; });
    size_t k = 0;
    const auto got_columns = j.values();
    const auto got = a.values();
    for (const auto& row : rows)
      for (const auto& entry : row) {
        EXPECT_EQ(got_columns[k], entry.column) << "JEX_CASE=" << seed;
        EXPECT_TRUE(same_bits(got[k], entry.value)) << "JEX_CASE=" << seed;
        ++k;
      }
  }
}

// A random triangle in lines, and the dense matrices that it stands for.
template <class T>
struct Sky {
  int m;
  bool upper;
  std::vector<int> length;  // of the lines
  std::vector<T> values;
  std::vector<jex_int> pointers;

  Sky(Random& random, int m, bool upper) : m(m), upper(upper) {
    pointers.push_back(random.pick({0, 1, 7}));
    for (int i = 0; i < m; ++i) {
      length.push_back(random.between(1, i + 1));
      for (int k = 1; k < length[i]; ++k)
        values.push_back(multiply(random_value<T>(random, Values::plain), Real<T>(0.25)));
      const T d = random_value<T>(random, Values::plain);
      values.push_back(add(d, multiply(d, Real<T>(2 / magnitude(d)))));
      pointers.push_back(pointers.back() + length[i]);
    }
  }
  // g the triangle, s symmetric, a skew-symmetric.
  std::vector<Exact> dense(char kind, bool transposed, bool unit) const {
    std::vector<Exact> a(m * m);
    const T* p = values.data();
    for (int i = 0; i < m; ++i)
      for (int j = i - length[i] + 1; j <= i; ++j) {
        const Exact value = i == j ? (kind == 'a' ? 0 : unit ? 1 : exact(*p)) : exact(*p);
        ++p;
        const bool turned = kind != 's' && upper != transposed;
        const Exact mirror = kind == 'g' ? 0 : kind == 's' ? value : -value;
        a[turned ? j * m + i : i * m + j] = value;
        if (i != j) a[turned ? i * m + j : j * m + i] = mirror;
      }
    return a;
  }
};

TYPED_TEST(SparseUtility, Skyline) {
  using T = TypeParam;
  const long double eps = std::numeric_limits<Real<T>>::epsilon();
  for (const char kind : {'g', 's', 'a', 'v'})
    for (const bool upper : {false, true})
      for (const bool transposed : {false, true})
        for (const bool unit : {false, true})
          for (const unsigned seed : case_seeds(6)) {
            Random random(seed);
            const int m = random.between(1, 20), n = random.between(1, 4);
            Sky<T> sky(random, m, upper);
            Operand<T> values(random, sky.values);
            Operand<jex_int> pointers(random, sky.pointers);
            DenseMatrix<T> b(random, m, n, false, random.between(0, 2));
            DenseMatrix<T> c(random, m, n, false, random.between(0, 2));
            const T alpha = random_value<T>(random, Values::plain);
            const char *uplo = upper ? "U" : "l", *trans = transposed ? "T" : "n";
            const char* diag = unit ? "u" : "N";
            if (kind == 'v') {
              Utilities<T>::solve(uplo, trans, diag, &m, &n, values.data(), pointers.data(),
                                  c.operand.data(), &c.ld);
            } else {
              (kind == 'g'   ? Utilities<T>::gk
               : kind == 's' ? Utilities<T>::sk
                             : Utilities<T>::kk)(uplo, trans, diag, &m, &n, &alpha, values.data(),
                                                 pointers.data(), b.operand.data(), &b.ld,
                                                 c.operand.data(), &c.ld);
            }
            const auto a = sky.dense(kind == 'v' ? 'g' : kind, transposed, unit);
            const auto after = c.operand.values();
            for (int j = 0; j < n; ++j)
              for (int i = 0; i < m; ++i) {
                // Product: C' - C - alpha A B. Solve: A C' - C.
                Exact sum = -exact(c.at(i, j));
                if (kind != 'v') sum += exact(after[c.place(i, j)]);
                long double size = size_of(sum) + size_of(exact(c.at(i, j)));
                for (int k = 0; k < m; ++k) {
                  const Exact term = kind == 'v' ? a[i * m + k] * exact(after[c.place(k, j)])
                                                 : -exact(alpha) * a[i * m + k] * exact(b.at(k, j));
                  sum += term, size += size_of(term);
                }
                EXPECT_TRUE(size_of(sum) <= 8 * (m + 4) * eps * size) << i << "," << j;
              }
            for (int j = 0; j < n; ++j)
              for (int i = 0; i < m; ++i) c.at(i, j) = after[c.place(i, j)];
            EXPECT_EQ(first_difference(after, c.model), "") << "beside the result";
            if (testing::Test::HasFailure())
              FAIL() << "JEX_CASE=" << seed << " " << kind << upper << transposed << unit;
          }
}

// The symmetric product has the bits of the kernel that adds, begun with zeros.
TEST(SymmetricProduct, OverwritesWithTheToldOrder) {
  for (const char* uplo : {"L", "u"})
    for (const unsigned seed : case_seeds(20)) {
      Random random(seed);
      const KernelName name(std::string("jex_spblas_dcsr1ns") + (*uplo == 'L' ? "l" : "u") +
                            "nf__mvout_par");
      const int m = random.between(1, 25), one = 1;
      auto a = product_matrix<double>(random, name, m, m);
      a.store(random, false);
      DenseMatrix<double> x(random, m, 1, false, 0), y(random, m, 1, false, 0);
      y.operand.data()[0] = NAN;
      jex_spblas_dcsrsymmvs(uplo, &m, a.values().data(), a.columns(), a.begin(), x.operand.data(),
                            y.operand.data());
      const double alpha = 1;
      std::vector<double> expected(m);
      (*uplo == 'L' ? jex_spblas_dcsr1nslnf__mvout_par : jex_spblas_dcsr1nsunf__mvout_par)(
          &one, &m, &m, &alpha, a.values().data(), a.columns(), a.begin(), a.begin() + 1,
          x.operand.data(), expected.data());
      EXPECT_EQ(first_difference(y.operand.values(), expected), "") << "JEX_CASE=" << seed;
    }
}

// |L D L' x - b| within rounding.
TEST(IncompleteFactor, Solves) {
  for (const unsigned seed : case_seeds(40)) {
    Random random(seed);
    const int m = random.between(1, 30);
    CsrMatrix<double> a;
    a.base = 1;
    a.rows.resize(m);
    std::vector<long double> l(m * m), d(m);
    for (int i = 0; i < m; ++i) {
      for (int j = 0; j < i; ++j)
        if (random.between(0, 3) == 0)
          a.rows[i].push_back({j, random.real(-0.5, 0.5)}), l[i * m + j] = a.rows[i].back().value;
      a.rows[i].push_back({i, random.real(0.5, 2) * random.pick({-1, 1})});
      l[i * m + i] = 1, d[i] = a.rows[i].back().value;
    }
    a.store(random, false);
    DenseMatrix<double> b(random, m, 1, false, 0);
    jex_spblas_jex_ildlt_sv(&m, a.values().data(), a.columns(), a.begin(), b.operand.data());
    const auto x = b.operand.values();
    for (int i = 0; i < m; ++i) {
      long double sum = -b.at(i, 0), size = fabsl(sum);
      for (int k = 0; k < m; ++k)
        for (int j = 0; j < m; ++j) {
          const long double term = l[i * m + k] * d[k] * l[j * m + k] * x[j];
          sum += term, size += fabsl(term);
        }
      EXPECT_TRUE(fabsl(sum) <= 8 * (m + 4) * 2.3e-16L * size) << "JEX_CASE=" << seed;
    }
  }
}

}  // namespace
}  // namespace jex::test
