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
  // The first n elements of x := inverse of op(U) x.
  void trsv(const char* trans, jex_int n, const Vector& u, jex_int ldu, double* x) const {
    module.jex_blas_dtrsv("U", trans, "N", &n, u.data(), &ldu, x, &one);
  }
};

}  // namespace jex::tour
