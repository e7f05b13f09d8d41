// Entries of level 3: the shares of the threads, and the C forms.
#pragma once

#include "front/blas/checks.h"
#include "front/blas/conjugate.h"
#include "front/blas/request.h"
#include "threads/threads.h"

#include <algorithm>
#include <cmath>
#include <stddef.h>
#include <stdint.h>
#include <utility>

namespace jex::front {

// Cuts 0 .. n into shares for threads, each a multiple of unit but the last.
struct Shares {
  // Real operations below which another thread costs more than it saves.
  static constexpr double worthwhile = 2e6;

  Shares(jex_int n, jex_int unit, double operations, int threads = thread_limit())
      : n_(n), unit_(unit), parts_(1) {
    const double most = std::min<double>(threads, operations / worthwhile);
    parts_ = std::clamp(jex_int(most), 1, std::max(1, n / unit));
  }
  jex_int parts() const { return parts_; }
  jex_int begin(jex_int part) const { return jex_int(int64_t(n_ / unit_) * part / parts_) * unit_; }
  // The last share takes what is left: none is smaller than a unit.
  jex_int count(jex_int part) const {
    return (part + 1 == parts_ ? n_ : begin(part + 1)) - begin(part);
  }

 private:
  jex_int n_, unit_, parts_;
};

// The shares are cut where the kernel's own groups of rows and columns end, and none is so small
// that the kernel would add in another order.
template <class T, class Kernel>
void gemm(Kernel kernel, char transa, char transb, jex_int m, jex_int n, jex_int k, const T* alpha,
          const T* a, jex_int lda, const T* b, jex_int ldb, const T* beta, T* c, jex_int ldc) {
  const bool columns = n >= m;
  constexpr jex_int unit = 48;
  const Shares shares(columns ? n : m, unit, 2.0 * m * n * k * sizeof(T) / sizeof(double));
  in_parallel(shares.parts(), [&](jex_int part) {
    const ptrdiff_t begin = shares.begin(part);
    const jex_int count = shares.count(part);
    if (columns) {
      const T* const own = b + begin * (option(&transb) == 'N' ? ldb : 1);
      kernel(&transa, &transb, &m, &count, &k, alpha, a, &lda, own, &ldb, beta, c + begin * ldc,
             &ldc);
    } else {
      const T* const own = a + begin * (option(&transa) == 'N' ? 1 : lda);
      kernel(&transa, &transb, &count, &n, &k, alpha, own, &lda, b, &ldb, beta, c + begin, &ldc);
    }
  });
}

template <class T, class Kernel>
void c_gemm(Kernel kernel, Request request, jex_cblas_transpose transa, jex_cblas_transpose transb,
            jex_int m, jex_int n, jex_int k, const T* alpha, const T* a, jex_int lda, const T* b,
            jex_int ldb, const T* beta, T* c, jex_int ldc) {
  char op_a = request.trans_of_factor(2, "TransA", transa),
       op_b = request.trans_of_factor(3, "TransB", transb);
  if (request.row()) {
    std::swap(op_a, op_b);
    std::swap(m, n);
    std::swap(a, b);
    std::swap(lda, ldb);
  }
  if (request.refused(wrong::gemm(&op_a, &op_b, m, n, k, lda, ldb, ldc))) return;
  gemm(kernel, op_a, op_b, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

// symm and hemm. Shares are cut across what A multiplies: columns of B from the left, rows from the
// right.
template <class T, class Kernel>
void symm(Kernel kernel, char side, char uplo, jex_int m, jex_int n, const T* alpha, const T* a,
          jex_int lda, const T* b, jex_int ldb, const T* beta, T* c, jex_int ldc) {
  const bool left = option(&side) == 'L';
  const Shares shares(left ? n : m, 48, 2.0 * m * n * (left ? m : n) * sizeof(T) / sizeof(double));
  in_parallel(shares.parts(), [&](jex_int part) {
    const jex_int begin = shares.begin(part), count = shares.count(part);
    const T* const own_b = b + begin * ptrdiff_t(left ? ldb : 1);
    T* const own_c = c + begin * ptrdiff_t(left ? ldc : 1);
    kernel(&side, &uplo, left ? &m : &count, left ? &count : &n, alpha, a, &lda, own_b, &ldb, beta,
           own_c, &ldc);
  });
}

template <class T, class Kernel>
void c_symm(Kernel kernel, Request request, jex_cblas_side side, jex_cblas_uplo uplo, jex_int m,
            jex_int n, const T* alpha, const T* a, jex_int lda, const T* b, jex_int ldb,
            const T* beta, T* c, jex_int ldc) {
  const char from = request.side(2, side), up = request.uplo(3, uplo);
  if (request.row()) std::swap(m, n);
  if (request.refused(wrong::symm(&from, &up, m, n, lda, ldb, ldc))) return;
  symm(kernel, from, up, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

// trmm and trsm: the right-hand sides are shared.
template <class T, class Kernel>
void trmm(Kernel kernel, char side, char uplo, char transa, char diag, jex_int m, jex_int n,
          const T* alpha, const T* a, jex_int lda, T* b, jex_int ldb) {
  const bool left = option(&side) == 'L';
  const Shares shares(left ? n : m, 48, 1.0 * m * n * (left ? m : n) * sizeof(T) / sizeof(double));
  in_parallel(shares.parts(), [&](jex_int part) {
    const jex_int begin = shares.begin(part), count = shares.count(part);
    kernel(&side, &uplo, &transa, &diag, left ? &m : &count, left ? &count : &n, alpha, a, &lda,
           b + begin * ptrdiff_t(left ? ldb : 1), &ldb);
  });
}

template <class T, class Kernel>
void c_trmm(Kernel kernel, Request request, jex_cblas_side side, jex_cblas_uplo uplo,
            jex_cblas_transpose trans, jex_cblas_diag diag, jex_int m, jex_int n, const T* alpha,
            const T* a, jex_int lda, T* b, jex_int ldb) {
  const char from = request.side(2, side), up = request.uplo(3, uplo),
             op = request.trans_of_factor(4, "TransA", trans), unit = request.diag(5, diag);
  if (request.row()) std::swap(m, n);
  if (request.refused(wrong::trmm(&from, &up, &op, &unit, m, n, lda, ldb))) return;
  trmm(kernel, from, up, op, unit, m, n, alpha, a, lda, b, ldb);
}

// Rows and columns of the kernel's blocks.
inline constexpr jex_int strip_block = 64;

// A rank-k or rank-2k update in strips of C from one edge to the diagonal. A strip is an update of
// its own, update(first, count, beta), and a rectangle, rectangle(rows from, rows, columns from,
// columns), the only part of C that the kernel would cut in another way: strips end where its
// blocks do, and the last one holds the last whole block, so that every element is summed alike.
// Strips of equal area end at the square roots of equal shares.
template <class Update, class Rectangle>
void in_strips(bool upper, jex_int n, jex_int parts, Update update, Rectangle rectangle) {
  constexpr jex_int block = strip_block;
  const auto edge = [&](jex_int part) {
    if (part == parts) return n;
    const double share = double(part) / parts;
    const double width = n * (upper ? std::sqrt(share) : 1 - std::sqrt(1 - share));
    return std::clamp(jex_int(width / block) * block, 0, n / block * block - block);
  };
  in_parallel(parts, [&](jex_int part) {
    const jex_int from = edge(part), to = edge(part + 1), count = to - from;
    if (count == 0) return;
    update(from, count);
    if (upper && from > 0) rectangle(0, from, from, count);
    if (!upper && to < n) rectangle(to, n - to, from, count);
  });
}

// Row i of op(A) where A is n x k, or the transpose of that.
template <class T>
const T* row_of(const T* a, jex_int lda, char trans, jex_int i) {
  return a + (option(&trans) == 'N' ? ptrdiff_t(i) : ptrdiff_t(i) * lda);
}

// syrk and herk (mirror C). With several strips, C is scaled first.
template <class T, class S, class Kernel, class Gemm>
void syrk(Kernel kernel, Gemm multiply, char mirror, char uplo, char trans, jex_int n, jex_int k,
          const S* alpha, const T* a, jex_int lda, const S* beta, T* c, jex_int ldc) {
  const bool upper = option(&uplo) == 'U', plain = option(&trans) == 'N';
  const double operations = 1.0 * n * n * k * sizeof(T) / sizeof(double);
  const jex_int parts = Shares(n, strip_block, operations).parts();
  if (parts == 1) return kernel(&uplo, &trans, &n, &k, alpha, a, &lda, beta, c, &ldc);
  const S none{}, one = as_element<S>(1);
  kernel(&uplo, &trans, &n, &k, &none, a, &lda, beta, c, &ldc);
  if (is_zero(*alpha)) return;
  const char transpose = mirror == 'C' ? 'C' : 'T', first = plain ? 'N' : transpose,
             second = plain ? transpose : 'N';
  const T factor = as_element<T>(*alpha), unit = as_element<T>(1);
  in_strips(
      upper, n, parts,
      [&](jex_int i, jex_int count) {
        kernel(&uplo, &trans, &count, &k, alpha, row_of(a, lda, trans, i), &lda, &one,
               c + i + ptrdiff_t(i) * ldc, &ldc);
      },
      [&](jex_int i, jex_int rows, jex_int j, jex_int columns) {
        multiply(&first, &second, &rows, &columns, &k, &factor, row_of(a, lda, trans, i), &lda,
                 row_of(a, lda, trans, j), &lda, &unit, c + i + ptrdiff_t(j) * ldc, &ldc);
      });
}

template <class T, class S, class Kernel, class Gemm>
void c_syrk(Kernel kernel, Gemm multiply, char mirror, Request request, jex_cblas_uplo uplo,
            jex_cblas_transpose trans, jex_int n, jex_int k, const S* alpha, const T* a,
            jex_int lda, const S* beta, T* c, jex_int ldc) {
  const char up = request.uplo(2, uplo), op = request.trans_of_update(3, trans, mirror);
  if (request.refused(wrong::syrk(mirror, &up, &op, n, k, lda, ldc))) return;
  syrk(kernel, multiply, mirror, up, op, n, k, alpha, a, lda, beta, c, ldc);
}

// syr2k and her2k.
template <class T, class S, class Kernel, class Gemm>
void syr2k(Kernel kernel, Gemm multiply, char mirror, char uplo, char trans, jex_int n, jex_int k,
           const T* alpha, const T* a, jex_int lda, const T* b, jex_int ldb, const S* beta, T* c,
           jex_int ldc) {
  const bool upper = option(&uplo) == 'U', plain = option(&trans) == 'N';
  const double operations = 2.0 * n * n * k * sizeof(T) / sizeof(double);
  const jex_int parts = Shares(n, strip_block, operations).parts();
  if (parts == 1) return kernel(&uplo, &trans, &n, &k, alpha, a, &lda, b, &ldb, beta, c, &ldc);
  const T none{}, unit = as_element<T>(1);
  const S one = as_element<S>(1);
  kernel(&uplo, &trans, &n, &k, &none, a, &lda, b, &ldb, beta, c, &ldc);
  if (is_zero(*alpha)) return;
  const char transpose = mirror == 'C' ? 'C' : 'T', first = plain ? 'N' : transpose,
             second = plain ? transpose : 'N';
  T mirrored = *alpha;
  if constexpr (is_complex<T>)
    if (mirror == 'C') mirrored = conj(mirrored);
  in_strips(
      upper, n, parts,
      [&](jex_int i, jex_int count) {
        kernel(&uplo, &trans, &count, &k, alpha, row_of(a, lda, trans, i), &lda,
               row_of(b, ldb, trans, i), &ldb, &one, c + i + ptrdiff_t(i) * ldc, &ldc);
      },
      [&](jex_int i, jex_int rows, jex_int j, jex_int columns) {
        T* const to = c + i + ptrdiff_t(j) * ldc;
        multiply(&first, &second, &rows, &columns, &k, alpha, row_of(a, lda, trans, i), &lda,
                 row_of(b, ldb, trans, j), &ldb, &unit, to, &ldc);
        multiply(&first, &second, &rows, &columns, &k, &mirrored, row_of(b, ldb, trans, i), &ldb,
                 row_of(a, lda, trans, j), &lda, &unit, to, &ldc);
      });
}

// Seen by columns, the terms of a row-major Hermitian update change places: so does the conjugate.
template <class T, class S, class Kernel, class Gemm>
void c_syr2k(Kernel kernel, Gemm multiply, char mirror, Request request, jex_cblas_uplo uplo,
             jex_cblas_transpose trans, jex_int n, jex_int k, const T* alpha, const T* a,
             jex_int lda, const T* b, jex_int ldb, const S* beta, T* c, jex_int ldc) {
  const char up = request.uplo(2, uplo), op = request.trans_of_update(3, trans, mirror);
  if (request.refused(wrong::syr2k(mirror, &up, &op, n, k, lda, ldb, ldc))) return;
  T factor = *alpha;
  if constexpr (is_complex<T>)
    if (mirror == 'C' && request.row()) factor = conj(factor);
  syr2k(kernel, multiply, mirror, up, op, n, k, &factor, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace jex::front
