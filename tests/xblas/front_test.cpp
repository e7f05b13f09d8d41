// The core's extended-precision products: wrong arguments, and the views with a precision.

#include <jex/jex.hpp>
#include <jex/xblas.h>

#include <gtest/gtest.h>

#include <complex>
#include <vector>

namespace {

const double a[16] = {1, 2, 3, 4, 5, 6, 7, 8};
const double* const none = nullptr;

TEST(XblasFront, AnswersWithTheFirstWrongArgument) {
  double y[4] = {7, 7, 7, 7};
  const auto gemv = [&](int tr, int m, int n, const double* A, int lda, const double* x, int incx,
                        double* Y, int incy, int prec) {
    return jex_dgemv_x(tr, m, n, 1, A, lda, x, incx, 0, Y, incy, prec);
  };
  EXPECT_EQ(gemv(110, 2, 3, a, 2, a, 1, y, 1, 214), 1);
  EXPECT_EQ(gemv(111, -2, 3, a, 2, a, 1, y, 1, 214), 2);
  EXPECT_EQ(gemv(111, 2, -3, a, 2, a, 1, y, 1, 214), 3);
  EXPECT_EQ(gemv(111, 2, 3, none, 2, a, 1, y, 1, 214), 5);
  EXPECT_EQ(gemv(111, 2, 3, a, 1, a, 1, y, 1, 214), 6);
  EXPECT_EQ(gemv(111, 2, 3, a, INT32_MAX, a, 1, y, 1, 214), 6);
  EXPECT_EQ(gemv(111, 2, 3, a, 2, none, 1, y, 1, 214), 7);
  EXPECT_EQ(gemv(111, 2, 3, a, 2, a, 0, y, 1, 214), 8);
  EXPECT_EQ(gemv(111, 2, 3, a, 2, a, INT32_MIN, y, 1, 214), 8);
  EXPECT_EQ(gemv(111, 2, 3, a, 2, a, 1, nullptr, 1, 214), 10);
  EXPECT_EQ(gemv(111, 2, 3, a, 2, a, 1, y, 0, 214), 11);
  EXPECT_EQ(gemv(111, 2, 3, a, 2, a, 1, y, 1, 215), 12);
  EXPECT_EQ(jex_dgemv2_x(111, 2, 3, 1, a, 2, a, none, 1, 0, y, 1, 214), 8);
  EXPECT_EQ(jex_dgemv2_x(111, 2, 3, 1, a, 2, a, a, 1, 0, y, 1, 210), 13);
  const auto gbmv = [&](int m, int n, int kl, int ku, int lda) {
    return jex_dgbmv_x(112, m, n, kl, ku, 1, a, lda, a, 1, 0, y, 1, 214);
  };
  EXPECT_EQ(gbmv(-1, 3, 1, 0, 2), 2);
  EXPECT_EQ(gbmv(2, -3, 1, 0, 2), 3);
  EXPECT_EQ(gbmv(2, 3, -1, 0, 2), 4);
  EXPECT_EQ(gbmv(2, 3, 1, -1, 2), 5);
  EXPECT_EQ(gbmv(2, 3, 1, 0, 1), 8);
  EXPECT_EQ(gbmv(2, 3, INT32_MAX, INT32_MAX, INT32_MAX), 8);
  EXPECT_EQ(jex_dsymv_x(111, 2, 1, a, 2, a, 1, 0, y, 1, 214), 1);
  EXPECT_EQ(jex_dsymv_x(121, -2, 1, a, 2, a, 1, 0, y, 1, 214), 2);
  EXPECT_EQ(jex_dsymv_x(121, 2, 1, a, 1, a, 1, 0, y, 1, 214), 5);
  EXPECT_EQ(jex_dsymv2_x(122, 2, 1, a, 2, a, a, 1, 0, y, 0, 214), 11);
  for (const double e : y) EXPECT_EQ(e, 7);
  const jex_scomplex z[4] = {};
  jex_scomplex w[2];
  EXPECT_EQ(jex_chemv_x(123, 2, {1, 0}, z, 2, z, 1, {0, 0}, w, 1, 214), 1);
  EXPECT_EQ(jex_chemv_x(121, 2, {1, 0}, z, 2, z, 1, {0, 0}, w, 1, 214), 0);
}

TEST(XblasViews, PrecisionIsAPolicy) {
  const double rows[] = {1e16, 1, -1e16, 2, 3, 4}, ones[] = {1, 1, 1}, tails[] = {0, 0.5, 0};
  double y[2];
  const auto matrix = jex::matrix(rows, 2, 3, jex::Layout::row_major);
  const auto x = jex::vector(ones, 3);
  jex::multiply(jex::extra, 1., jex::Op::none, matrix, x, 0., jex::vector(y, 2));
  EXPECT_EQ(y[0], 1);
  EXPECT_EQ(y[1], 9);
  jex::multiply(jex::native, 1., jex::Op::none, matrix, x, 0., jex::vector(y, 2));
  EXPECT_EQ(y[0], 0);
  jex::multiply(jex::extra, 1., jex::Op::none, matrix, x, jex::vector(tails, 3), 0.,
                jex::vector(y, 2));
  EXPECT_EQ(y[0], 1.5);
  double z[3];
  jex::multiply(jex::extra, 1., jex::Op::transpose, matrix, jex::vector(ones, 2), 0.,
                jex::vector(z, 3, -1));
  EXPECT_EQ(z[0], 4 - 1e16);
  EXPECT_EQ(z[1], 4);
}

TEST(XblasViews, RefusesWhatDoesNotFit) {
  using Number = std::complex<double>;
  const std::vector<Number> b(6, Number(1, 2)), x(3);
  std::vector<Number> y(3);
  const auto row = jex::matrix(b.data(), 2, 3, jex::Layout::row_major);
  const auto column = jex::matrix(b.data(), 2, 3, jex::Layout::column_major);
  const auto product = [&](jex::Op op, auto matrix, int lenx, int leny) {
    jex::multiply(jex::extra, Number(1), op, matrix, jex::vector(x.data(), lenx), Number(0),
                  jex::vector(y.data(), leny));
  };
  EXPECT_THROW(product(jex::Op::none, row, 2, 3), std::invalid_argument);
  EXPECT_THROW(product(jex::Op::conj, column, 3, 2), std::invalid_argument);
  EXPECT_THROW(product(jex::Op::conj_transpose, row, 2, 3), std::invalid_argument);
  EXPECT_NO_THROW(product(jex::Op::conj_transpose, column, 2, 3));
  EXPECT_NO_THROW(product(jex::Op::transpose, row, 2, 3));
}

}  // namespace
