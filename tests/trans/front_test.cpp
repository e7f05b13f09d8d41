// The core's matrix copies: right calls reach the module, wrong ones answer with the position of
// their first wrong argument and touch nothing; the views of C++ do both.

#include "support/cases.h"

#include <jex/jex.hpp>
#include <jex/trans.h>

#include <gtest/gtest.h>

#include <complex>
#include <vector>

namespace {

const int most = INT32_MAX;

TEST(TransFront, AnswersWithTheFirstWrongArgument) {
  double a[64] = {}, b[64];
  std::fill(b, b + 64, 7);
  double* const none = nullptr;
  const auto o = [&](char ord, char tr, int m, int n, const double* x, int lda, double* y,
                     int ldb) { return jex_domatcopy(ord, tr, m, n, 1, x, lda, y, ldb); };
  EXPECT_EQ(o('X', 'N', 2, 3, a, 3, b, 3), 1);
  EXPECT_EQ(o('R', 'Q', 2, 3, a, 3, b, 3), 2);
  EXPECT_EQ(o('R', 'N', -1, 3, a, 3, b, 3), 3);
  EXPECT_EQ(o('R', 'N', 2, -3, a, 3, b, 3), 4);
  EXPECT_EQ(o('R', 'N', 2, 3, none, 3, b, 3), 6);
  EXPECT_EQ(o('R', 'N', 2, 3, a, 2, b, 3), 7);
  EXPECT_EQ(o('C', 'N', 2, 3, a, 1, b, 3), 7);
  EXPECT_EQ(o('R', 'N', 2, 3, a, 3, none, 3), 8);
  EXPECT_EQ(o('R', 'N', 2, 3, a, 3, b, 2), 9);
  EXPECT_EQ(o('R', 'T', 2, 3, a, 3, b, 1), 9);
  EXPECT_EQ(jex_domatcopy2('R', 'N', 2, 3, 1, a, 4, 2, b, 9, 1), 7);
  EXPECT_EQ(jex_domatcopy2('R', 'N', 2, 3, 1, a, 9, 0, b, 9, 1), 8);
  EXPECT_EQ(jex_domatcopy2('R', 'N', 2, 3, 1, a, 9, 2, none, 9, 1), 9);
  EXPECT_EQ(jex_domatcopy2('R', 'N', 2, 3, 1, a, 9, 2, b, 6, 3), 10);
  EXPECT_EQ(jex_domatcopy2('R', 'N', 2, 3, 1, a, 9, 2, b, 9, -1), 11);
  EXPECT_EQ(jex_dimatcopy('R', 'T', 2, 3, 1, none, 3, 2), 6);
  EXPECT_EQ(jex_dimatcopy('R', 'T', 2, 3, 1, a, 2, 2), 7);
  EXPECT_EQ(jex_dimatcopy('R', 'T', 2, 3, 1, a, 3, 1), 8);
  const auto add = [&](char ord, char ta, char tb, int m, int n, const double* x, int lda,
                       const double* y, int ldb, double* z, int ldc) {
    return jex_domatadd(ord, ta, tb, m, n, 1, x, lda, 1, y, ldb, z, ldc);
  };
  EXPECT_EQ(add('X', 'N', 'N', 2, 3, a, 3, a, 3, b, 3), 1);
  EXPECT_EQ(add('R', 'Q', 'N', 2, 3, a, 3, a, 3, b, 3), 2);
  EXPECT_EQ(add('R', 'N', 'Q', 2, 3, a, 3, a, 3, b, 3), 3);
  EXPECT_EQ(add('R', 'N', 'N', -2, 3, a, 3, a, 3, b, 3), 4);
  EXPECT_EQ(add('R', 'N', 'N', 2, -3, a, 3, a, 3, b, 3), 5);
  EXPECT_EQ(add('R', 'N', 'N', 2, 3, none, 3, a, 3, b, 3), 7);
  EXPECT_EQ(add('R', 'T', 'N', 2, 3, a, 1, a, 3, b, 3), 8);
  EXPECT_EQ(add('R', 'N', 'N', 2, 3, a, 3, none, 3, b, 3), 10);
  EXPECT_EQ(add('R', 'N', 'T', 2, 3, a, 3, a, 1, b, 3), 11);
  EXPECT_EQ(add('R', 'N', 'N', 2, 3, a, 3, a, 3, none, 3), 12);
  EXPECT_EQ(add('R', 'T', 'T', 2, 3, a, 2, a, 2, b, 2), 13);
  for (const double value : b) ASSERT_EQ(value, 7);
}

// Shapes whose last element lies beyond 2^31 bytes, or beyond 2^32, are refused before any access.
TEST(TransFront, RefusesHugeShapes) {
  double x = 0;
  jex_dcomplex z{};
  EXPECT_EQ(jex_domatcopy('R', 'N', 65536, 65536, 1, &x, 65536, &x, 65536), 7);
  EXPECT_EQ(jex_domatcopy('R', 'N', most, most, 1, &x, most, &x, most), 7);
  EXPECT_EQ(jex_domatcopy('R', 'T', 2, 3, 1, &x, most, &x, most), 7);
  EXPECT_EQ(jex_zomatcopy('C', 'C', 46341, 46341, {1, 0}, &z, 46341, &z, 46341), 7);
  EXPECT_EQ(jex_domatcopy('R', 'T', 3, 1, 1, &x, 1, &x, 3), 0);  // small ones are not
}

TEST(TransFront, EmptyMatricesNeedNoMemory) {
  double* const none = nullptr;
  EXPECT_EQ(jex_domatcopy('R', 'T', 0, 5, 1, none, 5, none, 1), 0);
  EXPECT_EQ(jex_dimatcopy('C', 'N', 5, 0, 1, none, 5, 5), 0);
  EXPECT_EQ(jex_domatadd('R', 'T', 'N', 0, 5, 1, none, 1, 1, none, 5, none, 5), 0);
}

// Both forms of rows x columns, on rectangular operands and every pair of operations.
TEST(TransViews, AddTakesTheShapeOfTheResult) {
  using jex::Op;
  using Number = std::complex<double>;
  const Op ops[] = {Op::none, Op::transpose, Op::conj_transpose, Op::conj};
  for (const jex::Layout layout : {jex::Layout::row_major, jex::Layout::column_major})
    for (const Op opa : ops)
      for (const Op opb : ops) {
        std::vector<Number> storage[3] = {std::vector<Number>(35), std::vector<Number>(35),
                                          std::vector<Number>(35)};
        const auto view = [&](int which, Op op) {
          const bool turned = op == Op::transpose || op == Op::conj_transpose;
          return jex::matrix(storage[which].data(), turned ? 3 : 4, turned ? 4 : 3, layout, 5);
        };
        const auto a = view(0, opa), b = view(1, opb), c = view(2, Op::none);
        for (int i = 0; i < 35; ++i) storage[0][i] = {i + 1., 2. - i}, storage[1][i] = {i * 3., 5.};
        const Number alpha{2, 1}, beta{-1, 3};
        jex::add(alpha, opa, a, beta, opb, b, c);
        const auto element = [](const auto& x, Op op, int i, int j) {
          const bool turned = op == Op::transpose || op == Op::conj_transpose;
          const Number e = turned ? x(j, i) : x(i, j);
          return op == Op::conj || op == Op::conj_transpose ? std::conj(e) : e;
        };
        for (int i = 0; i < 4; ++i)
          for (int j = 0; j < 3; ++j)
            ASSERT_EQ(c(i, j), alpha * element(a, opa, i, j) + beta * element(b, opb, i, j));
      }
}

TEST(TransViews, CopyTransposeAndRefuse) {
  std::vector<float> a = {1, 2, 3, 4, 5, 6}, b(6);
  const auto from = jex::matrix(a.data(), 2, 3, jex::Layout::row_major);
  jex::transpose(2.f, from, jex::matrix(b.data(), 3, 2, jex::Layout::row_major));
  EXPECT_EQ(b, (std::vector<float>{2, 8, 4, 10, 6, 12}));
  jex::copy(1.f, from, jex::matrix(b.data(), 2, 3, jex::Layout::row_major));
  EXPECT_EQ(b, a);
  const auto turned = jex::transpose_in_place(1.f, from);
  EXPECT_EQ(a, (std::vector<float>{1, 4, 2, 5, 3, 6}));
  EXPECT_EQ(turned.rows, 3);
  EXPECT_EQ(turned(2, 1), 6);
  // Shapes or layouts that do not fit, and matrices whose leading dimension is too small.
  const auto other = jex::matrix(b.data(), 2, 3, jex::Layout::column_major);
  EXPECT_THROW(jex::transpose(1.f, from, jex::matrix(b.data(), 2, 3, jex::Layout::row_major)),
               std::invalid_argument);
  EXPECT_THROW(jex::copy(1.f, from, other), std::invalid_argument);
  EXPECT_THROW(jex::copy(1.f, jex::matrix(a.data(), 2, 3, jex::Layout::row_major, 2),
                         jex::matrix(b.data(), 2, 3, jex::Layout::row_major)),
               std::invalid_argument);
}

}  // namespace
