// The module's entries as the families call them: whole vectors of increment 1, scalars by value.
#pragma once

#include <vector>

#include <jex/core.h>

namespace jex::tour {

using Vector = std::vector<double>;

struct Kernels {
  const Module& module;
  static constexpr jex_int one = 1;

  double dot(jex_int n, const double* x, const double* y) const {
    return module.jex_blas_ddot(&n, x, &one, y, &one);
  }
  double nrm2(const Vector& x) const {
    const jex_int n = x.size();
    return module.jex_blas_dnrm2(&n, x.data(), &one);
  }
  double asum(const Vector& x) const {
    const jex_int n = x.size();
    return module.jex_blas_dasum(&n, x.data(), &one);
  }
  void axpy(double alpha, const Vector& x, Vector& y) const {
    const jex_int n = x.size();
    module.jex_blas_daxpy(&n, &alpha, x.data(), &one, y.data(), &one);
  }
  void scal(double alpha, Vector& x) const {
    const jex_int n = x.size();
    module.jex_blas_dscal(&n, &alpha, x.data(), &one);
  }
  int first_largest(const Vector& x) const {
    const jex_int n = x.size();
    return module.jex_blas_idamax(&n, x.data(), &one) - 1;
  }

  // y := A x, A symmetric, its upper triangle stored with leading dimension x.size().
  void symv(const Vector& a, const Vector& x, Vector& y) const {
    const jex_int n = x.size();
    const double unit = 1, zero = 0;
    module.jex_blas_dsymv("U", &n, &unit, a.data(), &n, x.data(), &one, &zero, y.data(), &one);
  }
  // The first n elements of x := inverse of op(A) x, A the upper or lower triangle.
  void trsv(const char* uplo, const char* trans, jex_int n, const Vector& a, jex_int lda,
            double* x) const {
    module.jex_blas_dtrsv(uplo, trans, "N", &n, a.data(), &lda, x, &one);
  }

  // C := alpha A A' + beta C ("N", A is n x k) or alpha A'A + beta C, in the lower triangle.
  void syrk(const char* trans, jex_int n, jex_int k, double alpha, const double* a, jex_int lda,
            double beta, double* c, jex_int ldc) const {
    module.jex_blas_xdsyrk("L", trans, &n, &k, &alpha, a, &lda, &beta, c, &ldc);
  }
  // B := B inverse(L'), B m x n, L and B with one leading dimension.
  void trsm(jex_int m, jex_int n, const double* l, double* b, jex_int ld) const {
    const double unit = 1;
    module.jex_blas_xdtrsm("R", "L", "T", "N", &m, &n, &unit, l, &ld, b, &ld);
  }
  // The lower triangle becomes L; the number of the minor that is not positive definite, or 0.
  jex_int potrf(jex_int n, double* a, jex_int lda) const {
    jex_int info;
    module.jex_blas_dpotrf_l_small(&n, a, &lda, &info);
    return info;
  }
};

}  // namespace jex::tour
