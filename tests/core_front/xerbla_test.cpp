// The core's own reports: of a program that has none, and no drop-in library either.

#include <jex/blas.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

template <class Call>
std::string printed_by_c(Call call) {
  CaptureStderr();
  call();
  return GetCapturedStderr();
}

const double alpha = 1, beta = 2, a[16] = {}, x[4] = {};
double y[4] = {1, 2, 3, 4};

TEST(Xerbla, FortranReportGoesToTheOutput) {
  const jex_int m = 2, n = 2, lda = 1, inc = 1;
  CaptureStdout();
  jex_dgemv_("N", &m, &n, &alpha, a, &lda, x, &inc, &beta, y, &inc);
  EXPECT_EQ(GetCapturedStdout(),
            " ** On entry to DGEMV parameter number  6 had an illegal value\n");
  CaptureStdout();
  jex_dger_(&m, &n, &alpha, x, &inc, x, &inc, y, &lda);
  EXPECT_EQ(GetCapturedStdout(), " ** On entry to DGER parameter number  9 had an illegal value\n");
  EXPECT_EQ(y[0], 1);
}

// Positions are those of the caller's arguments, by rows and by columns.
TEST(Xerbla, CReportGoesToTheErrors) {
  for (const jex_cblas_order order : {JEX_CBLAS_COL_MAJOR, JEX_CBLAS_ROW_MAJOR}) {
    const auto gemv = [&](jex_int m, jex_int n, jex_int lda) {
      return printed_by_c([&] {
        jex_cblas_dgemv(order, JEX_CBLAS_NO_TRANS, m, n, alpha, a, lda, x, 1, beta, y, 1);
      });
    };
    EXPECT_EQ(gemv(-1, 2, 4), "Parameter 3 to routine cblas_dgemv was incorrect\n");
    EXPECT_EQ(gemv(2, -1, 4), "Parameter 4 to routine cblas_dgemv was incorrect\n");
    EXPECT_EQ(gemv(2, 2, 1), "Parameter 7 to routine cblas_dgemv was incorrect\n");
    const auto gbmv = [&](jex_int kl, jex_int ku) {
      return printed_by_c([&] {
        jex_cblas_dgbmv(order, JEX_CBLAS_TRANS, 2, 2, kl, ku, alpha, a, 4, x, 1, beta, y, 1);
      });
    };
    EXPECT_EQ(gbmv(-1, 1), "Parameter 5 to routine cblas_dgbmv was incorrect\n");
    EXPECT_EQ(gbmv(1, -1), "Parameter 6 to routine cblas_dgbmv was incorrect\n");
    const auto update = [&](auto entry, jex_int incx, jex_int incy) {
      return printed_by_c([&] { entry(order, 2, 2, alpha, x, incx, x, incy, y, 2); });
    };
    EXPECT_EQ(update(jex_cblas_dger, 0, 1), "Parameter 6 to routine cblas_dger was incorrect\n");
    EXPECT_EQ(update(jex_cblas_dger, 1, 0), "Parameter 8 to routine cblas_dger was incorrect\n");
    const jex_dcomplex one{1, 0}, u[2] = {};
    jex_dcomplex v[4] = {};
    const auto her2 = [&](jex_int incx, jex_int incy) {
      return printed_by_c(
          [&] { jex_cblas_zher2(order, JEX_CBLAS_UPPER, 2, &one, u, incx, u, incy, v, 2); });
    };
    EXPECT_EQ(her2(0, 1), "Parameter 6 to routine cblas_zher2 was incorrect\n");
    EXPECT_EQ(her2(1, 0), "Parameter 8 to routine cblas_zher2 was incorrect\n");
    const auto hpr2 = [&](jex_int incx, jex_int incy) {
      return printed_by_c(
          [&] { jex_cblas_zhpr2(order, JEX_CBLAS_UPPER, 2, &one, u, incx, u, incy, v); });
    };
    EXPECT_EQ(hpr2(0, 1), "Parameter 6 to routine cblas_zhpr2 was incorrect\n");
    EXPECT_EQ(hpr2(1, 0), "Parameter 8 to routine cblas_zhpr2 was incorrect\n");
    const auto syr2 = [&](jex_int incx, jex_int incy) {
      return printed_by_c(
          [&] { jex_cblas_dsyr2(order, JEX_CBLAS_UPPER, 2, alpha, x, incx, x, incy, y, 2); });
    };
    EXPECT_EQ(syr2(0, 1), "Parameter 6 to routine cblas_dsyr2 was incorrect\n");
  }
  EXPECT_EQ(y[0], 1);
}

TEST(Xerbla, CReportTellsBadOptions) {
  EXPECT_EQ(printed_by_c([] { jex_cblas_dsyr(99, JEX_CBLAS_UPPER, 2, alpha, x, 1, y, 2); }),
            "Parameter 1 to routine cblas_dsyr was incorrect\nIllegal Order setting, 99\n");
  EXPECT_EQ(printed_by_c([] { jex_cblas_dsyr(JEX_CBLAS_ROW_MAJOR, 7, 2, alpha, x, 1, y, 2); }),
            "Parameter 2 to routine cblas_dsyr was incorrect\nIllegal Uplo setting, 7\n");
  EXPECT_EQ(printed_by_c([] { jex_cblas_xerbla(0, "cblas_dsyr", "text %d\n", 5); }), "text 5\n");
}

TEST(Lsame, FirstCharactersWithoutRegardToCase) {
  EXPECT_EQ(jex_lsame_("Trans", "t"), 1);
  EXPECT_EQ(jex_lsame_("N", "Trans"), 0);
  EXPECT_EQ(jex_lsame_("@", "`"), 0);
}

}  // namespace
