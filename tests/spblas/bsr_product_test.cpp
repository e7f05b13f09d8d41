// Products of block sparse rows by name: bits of the plain one, dense models of all others.

#include "blas/level1/arithmetic.h"
#include "spblas/bsr_matrix.h"
#include "spblas/kernel_name.h"

namespace jex::test {
namespace {

template <class T>
class BsrProduct : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(BsrProduct, Element4);

template <class T>
struct Routines;
#define JEX_TEST_BSR(E, T)                                                                         \
  template <>                                                                                      \
  struct Routines<T> {                                                                             \
    static constexpr auto gemv = jex_spblas_##E##bsr1ng__f__gemvout_par;                           \
    static constexpr auto mv(int base, char uplo) {                                                \
      if (uplo == 'L')                                                                             \
        return base ? jex_spblas_##E##bsr1nslnf__mvout_par : jex_spblas_##E##bsr0nslnf__mvout_par; \
      return base ? jex_spblas_##E##bsr1nsunf__mvout_par : jex_spblas_##E##bsr0nsunf__mvout_par;   \
    }                                                                                              \
    static constexpr auto mm(int base, char kind) {                                                \
      switch (kind) {                                                                              \
        case 'g':                                                                                  \
          return base ? jex_spblas_##E##bsrmmgen : jex_spblas_cspblas_##E##bsrmmgen;               \
        case 's':                                                                                  \
          return base ? jex_spblas_##E##bsrmmsym : jex_spblas_cspblas_##E##bsrmmsym;               \
        case 'a':                                                                                  \
          return base ? jex_spblas_##E##bsrmmskew : jex_spblas_cspblas_##E##bsrmmskew;             \
        case 't':                                                                                  \
          return base ? jex_spblas_##E##bsrmmtr : jex_spblas_cspblas_##E##bsrmmtr;                 \
        default:                                                                                   \
          return base ? jex_spblas_##E##bsrmmdiag : jex_spblas_cspblas_##E##bsrmmdiag;             \
      }                                                                                            \
    }                                                                                              \
  };
JEX_TEST_BSR(s, float)
JEX_TEST_BSR(d, double)
JEX_TEST_BSR(c, jex_scomplex)
JEX_TEST_BSR(z, jex_dcomplex)

// y := A x: each element one chain from zero, blocks in order, column by column; y is not read.
TYPED_TEST(BsrProduct, HasTheBitsOfTheToldOrder) {
  using T = TypeParam;
  for (int lb = 1; lb <= 12; ++lb)
    for (const unsigned seed : case_seeds(16)) {
      Random random(seed);
      const int m = random.between(1, 9), columns = random.between(1, 9);
      const bool classic = lb >= 2 && lb <= 6;  // these sides do not read the row ends
      BsrMatrix<T> a(random, lb, 1, m, columns);
      a.store(random, !classic);
      DenseMatrix<T> x(random, a.width(), 1, false, 0), y(random, a.height(), 1, false, 0);
      const int first = random.between(1, m), last = random.between(first - 1, m);
      std::fill_n(y.operand.data() + (first - 1) * lb, (last - first + 1) * lb, not_a_number<T>());
      Routines<T>::gemv(&first, &last, &m, &lb, nullptr, a.values().data(), a.numbers(), a.begin(),
                        classic ? nullptr : a.end(), x.operand.data(), y.operand.data());
      for (int i = first - 1; i < last; ++i)
        for (int r = 0; r < lb; ++r) {
          T sum = {};
          for (const auto& block : a.rows[i])
            for (int c = 0; c < lb; ++c)
              sum = add(sum, multiply(block.values[c * lb + r], x.at(block.column * lb + c, 0)));
          y.at(i * lb + r, 0) = sum;
        }
      ASSERT_EQ(first_difference(y.operand.values(), y.model), "")
          << "JEX_CASE=" << seed << " lb=" << lb << " " << first << ".." << last << " of " << m;
    }
}

// One triangle of blocks, the rest NaN: the dense product, as a whole and in ranges.
TYPED_TEST(BsrProduct, Symmetric) {
  using T = TypeParam;
  for (int lb = 1; lb <= 12; ++lb)
    for (const char uplo : {'L', 'U'})
      for (const int base : {0, 1})
        for (const unsigned seed : case_seeds(4)) {
          Random random(seed);
          const int m = random.between(1, 7), cut = random.between(0, m), one = 1, next = cut + 1;
          BsrMatrix<T> a(random, lb, base, m, m);
          for (int i = 0; i < m; ++i) {
            if (random.between(0, 1)) a.add(random, a.rows[i], i);
            for (auto& block : a.rows[i])
              if (uplo == 'L' ? block.column > i : block.column < i)
                std::fill(block.values.begin(), block.values.end(), not_a_number<T>());
          }
          a.store(random, true);
          DenseMatrix<T> x(random, a.width(), 1, false, 0), y(random, a.height(), 1, false, 0);
          const T alpha = random_value<T>(random, Values::plain);
          for (const auto& [first, last] : {std::pair(next, m), std::pair(one, cut)})
            Routines<T>::mv(base, uplo)(&first, &last, &m, &lb, &alpha, a.values().data(),
                                        a.numbers(), a.begin(), a.end(), x.operand.data(),
                                        y.operand.data());
          expect_sum(a.dense('s', uplo, false, 'N', false), a.dense('s', uplo, false, 'N', true),
                     exact(alpha), x, y);
          if (testing::Test::HasFailure())
            FAIL() << "JEX_CASE=" << seed << " lb=" << lb << uplo << base;
        }
}

TYPED_TEST(BsrProduct, Matrices) {
  using T = TypeParam;
  for (const char kind : {'g', 's', 'a', 't', 'd'})
    for (const char uplo : {'L', 'U'})
      for (const char diag : {'N', 'u'})
        for (const int base : {0, 1})
          for (const int mode : {1, 2, 3, 0})
            for (const unsigned seed : case_seeds(3)) {
              Random random(seed);
              const int lb = random.between(1, 12), n = random.between(1, 5);
              const int m = random.between(1, 6), k = kind == 'g' ? random.between(1, 6) : m;
              const char op = mode == 1 ? 'N' : mode == 3 ? 'C' : 'T';
              const bool unit = diag == 'u';
              BsrMatrix<T> a(random, lb, base, m, k);
              for (int i = 0; i < m && kind != 'g'; ++i)
                if (random.between(0, 3)) a.add(random, a.rows[i], i);
              a.store(random, true);
              const char word[] = {char(random.between(0, 1) ? uplo : tolower(uplo)), 0};
              DenseMatrix<T> b(random, op == 'N' ? a.width() : a.height(), n, false,
                               random.between(0, 3));
              DenseMatrix<T> c(random, op == 'N' ? a.height() : a.width(), n, false,
                               random.between(0, 3));
              const T alpha = random_value<T>(random, Values::plain);
              Routines<T>::mm(base, kind)(&mode, word, &diag, &m, &n, &k, &lb, &alpha,
                                          a.values().data(), a.numbers(), a.begin(), a.end(),
                                          b.operand.data(), &b.ld, c.operand.data(), &c.ld);
              expect_sum(a.dense(kind, uplo, unit, op, false), a.dense(kind, uplo, unit, op, true),
                         exact(alpha), b, c);
              if (testing::Test::HasFailure())
                FAIL() << "JEX_CASE=" << seed << " " << kind << uplo << diag << " base " << base
                       << " mode " << mode << " lb=" << lb;
            }
}

// Sizes below 1 and empty ranges: no operand need exist.
TYPED_TEST(BsrProduct, EmptyTouchesNothing) {
  using T = TypeParam;
  const T alpha = {};
  for (const auto& [first, last, m, lb] :
       {std::array{1, 0, 3, 2}, {3, 2, 3, 9}, {1, 1, 0, 2}, {1, 1, 1, 0}}) {
    Routines<T>::gemv(&first, &last, &m, &lb, 0, 0, 0, 0, 0, 0, 0);
    for (const char uplo : {'L', 'U'})
      Routines<T>::mv(1, uplo)(&first, &last, &m, &lb, &alpha, 0, 0, 0, 0, 0, 0);
  }
  const jex_int one = 1, none = 0;
  for (const char kind : {'g', 's', 'a', 't', 'd'})
    for (const int which : {0, 1, 2, 3})
      Routines<T>::mm(0, kind)(&one, "L", "N", which == 0 ? &none : &one, which == 1 ? &none : &one,
                               which == 2 ? &none : &one, which == 3 ? &none : &one, &alpha, 0, 0,
                               0, 0, 0, &one, 0, &one);
}

// Every kernel of the grammar is one that the tests above have called.
TEST(BsrNames, AreTwentyKernels) {
  size_t count = 0;
  for (const char type : {'s', 'd', 'c', 'z'})
    count +=
        kernels_of("bsr", type, "mvout_par").size() + kernels_of("bsr", type, "gemvout_par").size();
  EXPECT_EQ(count, 20u);
}

}  // namespace
}  // namespace jex::test
