// Inverses of diagonal blocks, and sweeps by rows and by columns, against scalar models.

#include "blas/level1/arithmetic.h"
#include "spblas/bsr_matrix.h"

namespace jex::test {
namespace {

template <class T>
class BsrGauss : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(BsrGauss, Element4);

template <class T>
struct Sweeps;
#define JEX_TEST_GAUSS(E, T)                                                           \
  template <>                                                                          \
  struct Sweeps<T> {                                                                   \
    static constexpr auto invdiag(int base) {                                          \
      return base ? jex_spblas_##E##bsr_invdiag : jex_spblas_##E##bsr_cspblas_invdiag; \
    }                                                                                  \
    static constexpr auto rows(int base) {                                             \
      return base ? jex_spblas_##E##bsr_gauss : jex_spblas_##E##bsr_cspblas_gauss;     \
    }                                                                                  \
    static constexpr auto columns(int base) {                                          \
      return base ? jex_spblas_##E##bsc_gauss : jex_spblas_##E##bsc_cspblas_gauss;     \
    }                                                                                  \
  };
JEX_TEST_GAUSS(s, float)
JEX_TEST_GAUSS(d, double)
JEX_TEST_GAUSS(c, jex_scomplex)
JEX_TEST_GAUSS(z, jex_dcomplex)

// Blocks on the diagonal away from singular, at any place of their row.
template <class T>
BsrMatrix<T> diagonal_matrix(Random& random, int lb, int base, int m) {
  BsrMatrix<T> a(random, lb, base, m, m);
  for (int i = 0; i < m; ++i) {
    std::erase_if(a.rows[i], [&](auto& block) { return block.column == i; });
    for (auto& block : a.rows[i])
      for (T& value : block.values) value = multiply(value, Real<T>(0.25) / lb);
    a.add(random, a.rows[i], i);
    auto& d = a.rows[i].back().values;
    // Large elements off the block's own diagonal want pivots.
    for (int c = 0; c < lb; ++c) {
      T& large = d[c * lb + (c + 1) % lb];
      large = add(large, multiply(large, Real<T>(4 * lb / magnitude(large))));
    }
    std::swap(a.rows[i][random.between(0, a.rows[i].size() - 1)], a.rows[i].back());
  }
  return a;
}

template <class T>
const Block<T>* diagonal_block(const BsrMatrix<T>& a, int i) {
  for (const auto& block : a.rows[i])
    if (block.column == i) return &block;
  return nullptr;
}

TYPED_TEST(BsrGauss, InvertsDiagonalBlocks) {
  using T = TypeParam;
  for (int lb = 1; lb <= 12; ++lb)
    for (const int base : {0, 1})
      for (const unsigned seed : case_seeds(4)) {
        Random random(seed);
        const int m = random.between(1, 5), spoiled = random.between(1, m);
        auto a = diagonal_matrix<T>(random, lb, base, m);
        const int how = random.between(0, 2);  // sound, missing, singular
        auto& row = a.rows[spoiled - 1];
        for (auto& block : row)
          if (how && block.column == spoiled - 1)
            std::fill_n(block.values.begin(), lb, T{});  // its first column
        if (how == 1) std::erase_if(row, [&](auto& b) { return b.column == spoiled - 1; });
        a.store(random, true);
        const std::vector<T> unset(m * lb * lb, not_a_number<T>());
        Operand<T> inverse(random, unset);
        jex_int info = -7;
        Sweeps<T>::invdiag(base)(&m, &lb, a.values().data(), a.numbers(), a.begin(), a.end(),
                                 inverse.data(), &info);
        EXPECT_EQ(info, how ? spoiled : 0);
        const auto got = inverse.values();
        for (int i = 0; i < m; ++i) {
          const T* x = &got[i * lb * lb];
          if (how && i == spoiled - 1) {
            for (int k = 0; k < lb * lb; ++k) EXPECT_TRUE(same_bits(x[k], T{}));
            continue;
          }
          const auto& d = diagonal_block(a, i)->values;
          for (int r = 0; r < lb; ++r)
            for (int c = 0; c < lb; ++c) {
              Exact sum = r == c ? -1 : 0;
              long double size = 1;
              for (int k = 0; k < lb; ++k) {
                const Exact term = exact(d[k * lb + r]) * exact(x[c * lb + k]);
                sum += term, size += size_of(term);
              }
              EXPECT_TRUE(size_of(sum) <=
                          64 * lb * (long double)(std::numeric_limits<Real<T>>::epsilon()) * size);
            }
        }
        if (testing::Test::HasFailure())
          FAIL() << "JEX_CASE=" << seed << " lb=" << lb << " base " << base << " how " << how;
      }
}

// The sweep in long double, with the inverses that the routines get.
template <class T>
std::vector<Exact> swept(const BsrMatrix<T>& a, const std::vector<T>& inverse, char sweep,
                         DenseMatrix<T>& b, DenseMatrix<T>& start) {
  const int lb = a.lb, m = a.rows.size();
  std::vector<Exact> x(m * lb);
  for (int i = 0; i < m * lb; ++i) x[i] = exact(start.at(i, 0));
  for (int step = sweep == 'B' ? m : 0; step < (sweep == 'F' ? m : 2 * m); ++step) {
    const int i = step < m ? step : 2 * m - 1 - step;
    std::vector<Exact> rest(lb);
    for (int r = 0; r < lb; ++r) rest[r] = exact(b.at(i * lb + r, 0));
    for (const auto& block : a.rows[i])
      for (int k = 0; k < lb * lb && block.column != i; ++k)
        rest[k % lb] -= exact(block.values[k]) * x[block.column * lb + k / lb];
    for (int r = 0; r < lb; ++r) {
      x[i * lb + r] = 0;
      for (int c = 0; c < lb; ++c)
        x[i * lb + r] += exact(inverse[i * lb * lb + c * lb + r]) * rest[c];
    }
  }
  return x;
}

// The blocks of a matrix by columns: those of the rows, exchanged.
template <class T>
BsrMatrix<T> by_columns(Random& random, const BsrMatrix<T>& a) {
  BsrMatrix<T> t(random, a.lb, a.base, a.rows.size(), a.columns);
  for (auto& row : t.rows) row.clear();
  for (int i = 0; i < int(a.rows.size()); ++i)
    for (const auto& block : a.rows[i]) t.rows[block.column].push_back({i, block.values});
  t.store(random, true);
  return t;
}

TYPED_TEST(BsrGauss, SweepsByRowsAndByColumns) {
  using T = TypeParam;
  for (int lb = 1; lb <= 12; ++lb)
    for (const int base : {0, 1})
      for (const char sweep : {'F', 'B', 'S'})
        for (const unsigned seed : case_seeds(3)) {
          Random random(seed);
          const int m = random.between(1, 7);
          auto a = diagonal_matrix<T>(random, lb, base, m);
          a.store(random, true);
          Operand<T> inverse(random, std::vector<T>(m * lb * lb));
          jex_int info;
          Sweeps<T>::invdiag(base)(&m, &lb, a.values().data(), a.numbers(), a.begin(), a.end(),
                                   inverse.data(), &info);
          DenseMatrix<T> b(random, m * lb, 1, false, 0), x(random, m * lb, 1, false, 0);
          const auto expected = swept(a, inverse.values(), sweep, b, x);
          const char word[] = {char(random.between(0, 1) ? sweep : tolower(sweep)), 0};
          const long double bound =
              2000 * lb * (long double)(std::numeric_limits<Real<T>>::epsilon());

          Operand<T> by_rows(random, x.model);
          Sweeps<T>::rows(base)(word, &m, &lb, a.values().data(), a.numbers(), a.begin(), a.end(),
                                inverse.data(), b.operand.data(), by_rows.data());

          auto t = by_columns(random, a);
          std::vector<T> residual = b.model;
          const auto residual_of = [&](const std::vector<T>& x, int i) {
            Exact sum = exact(b.at(i, 0));
            for (const auto& block : a.rows[i / lb])
              for (int c = 0; c < lb; ++c)
                sum -= exact(block.values[c * lb + i % lb]) * exact(x[block.column * lb + c]);
            return sum;
          };
          for (int i = 0; i < m * lb; ++i) {
            const Exact r = residual_of(x.model, i);
            const Real<T> parts[] = {Real<T>(r.real()), Real<T>(r.imag())};
            memcpy(&residual[i], parts, sizeof(T));
          }
          Operand<T> r(random, residual), columns_x(random, x.model);
          Sweeps<T>::columns(base)(word, &m, &lb, t.values().data(), t.numbers(), t.begin(),
                                   t.end(), inverse.data(), r.data(), columns_x.data());
          const auto rows_got = by_rows.values(), columns_got = columns_x.values(),
                     r_got = r.values();
          for (int i = 0; i < m * lb; ++i) {
            const long double size = 20 + size_of(expected[i]);
            EXPECT_TRUE(size_of(exact(rows_got[i]) - expected[i]) <= bound * size) << i;
            EXPECT_TRUE(size_of(exact(columns_got[i]) - expected[i]) <= bound * size) << i;
            EXPECT_TRUE(size_of(exact(r_got[i]) - residual_of(columns_got, i)) <= bound * 20 * lb)
                << i;
          }
          if (testing::Test::HasFailure())
            FAIL() << "JEX_CASE=" << seed << " lb=" << lb << " base " << base << " " << sweep;
        }
}

}  // namespace
}  // namespace jex::test
