// C entries of level 2, one template for each signature: options to letters, checks, and the
// module's entry with the arguments of the column-major call on the same array.
//
// A row-major A, seen by columns, is A^T: dimensions, band widths, and the vectors of an update
// change places, upper is lower, and transposed is not. For a Hermitian A that is conj(A);
// conjugate.h has what follows from it.
//
// Threads will come here and into the Fortran rows: behind the checks, where a call is known to be
// right and its work is known.
#pragma once

#include "front/blas/checks.h"
#include "front/blas/conjugate.h"
#include "front/blas/request.h"

#include <utility>

namespace jex::front {

template <class T, class Kernel>
void c_gemv(Kernel kernel, Request request, jex_cblas_transpose trans, jex_int m, jex_int n,
            const T* alpha, const T* a, jex_int lda, const T* x, jex_int incx, const T* beta, T* y,
            jex_int incy) {
  const char op = request.trans(2, trans);
  if (request.row()) std::swap(m, n);
  if (request.refused(wrong::gemv(&op, m, n, lda, incx, incy))) return;
  if constexpr (is_complex<T>)
    if (request.conjugates() && !is_zero(*alpha))
      return gemv_conjugate(kernel, m, n, *alpha, a, lda, x, incx, *beta, y, incy);
  kernel(&op, &m, &n, alpha, a, &lda, x, &incx, beta, y, &incy);
}

template <class T, class Kernel>
void c_gbmv(Kernel kernel, Request request, jex_cblas_transpose trans, jex_int m, jex_int n,
            jex_int kl, jex_int ku, const T* alpha, const T* a, jex_int lda, const T* x,
            jex_int incx, const T* beta, T* y, jex_int incy) {
  const char op = request.trans(2, trans);
  if (request.row()) {
    std::swap(m, n);
    std::swap(kl, ku);
  }
  if (request.refused(wrong::gbmv(&op, m, n, kl, ku, lda, incx, incy))) return;
  if constexpr (is_complex<T>)
    if (request.conjugates() && !is_zero(*alpha))
      return gbmv_conjugate(kernel, m, n, kl, ku, *alpha, a, lda, x, incx, *beta, y, incy);
  kernel(&op, &m, &n, &kl, &ku, alpha, a, &lda, x, &incx, beta, y, &incy);
}

// A row-major gerc is a geru with the first vector conjugated; other kernels stand for themselves.
template <bool conjugates, class T, class Kernel>
void c_ger(Kernel kernel, Kernel geru, Request request, jex_int m, jex_int n, const T* alpha,
           const T* x, jex_int incx, const T* y, jex_int incy, T* a, jex_int lda) {
  if (request.row()) {
    std::swap(m, n);
    std::swap(x, y);
    std::swap(incx, incy);
  }
  if (request.refused(wrong::ger(m, n, incx, incy, lda))) return;
  if constexpr (conjugates)
    if (request.row() && !is_zero(*alpha))
      return geru_conjugate(geru, m, n, *alpha, x, incx, y, incy, a, lda);
  kernel(&m, &n, alpha, x, &incx, y, &incy, a, &lda);
}

// The three products with a symmetric or Hermitian matrix: full, band and packed.
template <class T, class Kernel>
void c_symv(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_int n, const T* alpha,
            const T* a, jex_int lda, const T* x, jex_int incx, const T* beta, T* y, jex_int incy) {
  const char up = request.uplo(2, uplo);
  if (request.refused(wrong::symv(&up, n, lda, incx, incy))) return;
  if constexpr (is_complex<T>)
    if (request.row() && !is_zero(*alpha))
      return product_conjugate(Hermitian<const T>{a, Storage::full, up == 'U', n, n, lda}, *alpha,
                               x, incx, *beta, y, incy,
                               [&](T alpha, const T* x, jex_int incx, T beta) {
                                 kernel(&up, &n, &alpha, a, &lda, x, &incx, &beta, y, &incy);
                               });
  kernel(&up, &n, alpha, a, &lda, x, &incx, beta, y, &incy);
}

template <class T, class Kernel>
void c_sbmv(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_int n, jex_int k,
            const T* alpha, const T* a, jex_int lda, const T* x, jex_int incx, const T* beta, T* y,
            jex_int incy) {
  const char up = request.uplo(2, uplo);
  if (request.refused(wrong::sbmv(&up, n, k, lda, incx, incy))) return;
  if constexpr (is_complex<T>)
    if (request.row() && !is_zero(*alpha))
      return product_conjugate(Hermitian<const T>{a, Storage::band, up == 'U', n, k, lda}, *alpha,
                               x, incx, *beta, y, incy,
                               [&](T alpha, const T* x, jex_int incx, T beta) {
                                 kernel(&up, &n, &k, &alpha, a, &lda, x, &incx, &beta, y, &incy);
                               });
  kernel(&up, &n, &k, alpha, a, &lda, x, &incx, beta, y, &incy);
}

template <class T, class Kernel>
void c_spmv(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_int n, const T* alpha,
            const T* ap, const T* x, jex_int incx, const T* beta, T* y, jex_int incy) {
  const char up = request.uplo(2, uplo);
  if (request.refused(wrong::spmv(&up, n, incx, incy))) return;
  if constexpr (is_complex<T>)
    if (request.row() && !is_zero(*alpha))
      return product_conjugate(Hermitian<const T>{ap, Storage::packed, up == 'U', n, n, 0}, *alpha,
                               x, incx, *beta, y, incy,
                               [&](T alpha, const T* x, jex_int incx, T beta) {
                                 kernel(&up, &n, &alpha, ap, x, &incx, &beta, y, &incy);
                               });
  kernel(&up, &n, alpha, ap, x, &incx, beta, y, &incy);
}

// Updates of a symmetric or Hermitian matrix; alpha is real for both.
template <class T, class R, class Kernel>
void c_syr(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_int n, R alpha, const T* x,
           jex_int incx, T* a, jex_int lda) {
  const char up = request.uplo(2, uplo);
  if (request.refused(wrong::syr(&up, n, incx, lda))) return;
  if constexpr (is_complex<T>)
    if (request.row() && alpha != 0)
      return update_conjugate(Hermitian<T>{a, Storage::full, up == 'U', n, n, lda}, alpha, x, incx,
                              [&](const T* x) {
                                const jex_int one = 1;
                                kernel(&up, &n, &alpha, x, &one, a, &lda);
                              });
  kernel(&up, &n, &alpha, x, &incx, a, &lda);
}

template <class T, class R, class Kernel>
void c_spr(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_int n, R alpha, const T* x,
           jex_int incx, T* ap) {
  const char up = request.uplo(2, uplo);
  if (request.refused(wrong::spr(&up, n, incx))) return;
  if constexpr (is_complex<T>)
    if (request.row() && alpha != 0)
      return update_conjugate(Hermitian<T>{ap, Storage::packed, up == 'U', n, n, 0}, alpha, x, incx,
                              [&](const T* x) {
                                const jex_int one = 1;
                                kernel(&up, &n, &alpha, x, &one, ap);
                              });
  kernel(&up, &n, &alpha, x, &incx, ap);
}

// alpha x y^H + conj(alpha) y x^H seen by columns begins with y: the increments are checked so.
template <class T, class Kernel>
void c_syr2(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_int n, const T* alpha,
            const T* x, jex_int incx, const T* y, jex_int incy, T* a, jex_int lda) {
  const char up = request.uplo(2, uplo);
  const bool exchanged = is_complex<T> && request.row();
  if (request.refused(exchanged ? wrong::syr2(&up, n, incy, incx, lda)
                                : wrong::syr2(&up, n, incx, incy, lda)))
    return;
  if constexpr (is_complex<T>)
    if (exchanged && !is_zero(*alpha))
      return update2_conjugate(Hermitian<T>{a, Storage::full, up == 'U', n, n, lda}, *alpha, x,
                               incx, y, incy, [&](const T* y, const T* x) {
                                 const jex_int one = 1;
                                 kernel(&up, &n, alpha, y, &one, x, &one, a, &lda);
                               });
  kernel(&up, &n, alpha, x, &incx, y, &incy, a, &lda);
}

template <class T, class Kernel>
void c_spr2(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_int n, const T* alpha,
            const T* x, jex_int incx, const T* y, jex_int incy, T* ap) {
  const char up = request.uplo(2, uplo);
  const bool exchanged = is_complex<T> && request.row();
  if (request.refused(exchanged ? wrong::spr2(&up, n, incy, incx)
                                : wrong::spr2(&up, n, incx, incy)))
    return;
  if constexpr (is_complex<T>)
    if (exchanged && !is_zero(*alpha))
      return update2_conjugate(Hermitian<T>{ap, Storage::packed, up == 'U', n, n, 0}, *alpha, x,
                               incx, y, incy, [&](const T* y, const T* x) {
                                 const jex_int one = 1;
                                 kernel(&up, &n, alpha, y, &one, x, &one, ap);
                               });
  kernel(&up, &n, alpha, x, &incx, y, &incy, ap);
}

// A triangular product or solve with conj(B) is one with B on the conjugated vector.
template <class T, class Call>
void triangular(const Request& request, jex_int n, T* x, jex_int incx, Call call) {
  if constexpr (is_complex<T>)
    if (request.conjugates()) {
      const Conjugated<T> conjugated(n, x, incx);
      return call();
    }
  call();
}

template <class T, class Kernel>
void c_trmv(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_cblas_transpose trans,
            jex_cblas_diag diag, jex_int n, const T* a, jex_int lda, T* x, jex_int incx) {
  const char up = request.uplo(2, uplo), op = request.trans(3, trans), unit = request.diag(4, diag);
  if (request.refused(wrong::trmv(&up, &op, &unit, n, lda, incx))) return;
  triangular(request, n, x, incx, [&] { kernel(&up, &op, &unit, &n, a, &lda, x, &incx); });
}

template <class T, class Kernel>
void c_tbmv(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_cblas_transpose trans,
            jex_cblas_diag diag, jex_int n, jex_int k, const T* a, jex_int lda, T* x,
            jex_int incx) {
  const char up = request.uplo(2, uplo), op = request.trans(3, trans), unit = request.diag(4, diag);
  if (request.refused(wrong::tbmv(&up, &op, &unit, n, k, lda, incx))) return;
  triangular(request, n, x, incx, [&] { kernel(&up, &op, &unit, &n, &k, a, &lda, x, &incx); });
}

template <class T, class Kernel>
void c_tpmv(Kernel kernel, Request request, jex_cblas_uplo uplo, jex_cblas_transpose trans,
            jex_cblas_diag diag, jex_int n, const T* ap, T* x, jex_int incx) {
  const char up = request.uplo(2, uplo), op = request.trans(3, trans), unit = request.diag(4, diag);
  if (request.refused(wrong::tpmv(&up, &op, &unit, n, incx))) return;
  triangular(request, n, x, incx, [&] { kernel(&up, &op, &unit, &n, ap, x, &incx); });
}

}  // namespace jex::front
