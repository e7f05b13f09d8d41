// The sparse entries, one template for each, for all formats: checks, beta, and the format's work.
//
// A format is a SparseCall with
//   prepare(op, alpha, matrix, descriptor, solve)   checks all but the dense operands
//   multiply(x, y), multiply(n, b, ldb, c, ldc)     adds alpha op(A) x, alpha op(A) B
//   solve(y), solve(n, c, ldc)                      solves in place, if it is one that solves
#pragma once

#include "front/spblas/call.h"

namespace jex::front {

// Lines of a dense matrix of rows x columns: the columns, or the rows.
struct Lines {
  jex_int count, length;
  Lines(bool by_columns, jex_int rows, jex_int columns)
      : count(by_columns ? columns : rows), length(by_columns ? rows : columns) {}
  bool fit(jex_int ld) const { return ld >= std::max<jex_int>(1, length); }
};

template <class Format, class T, class Matrix>
jex_int prepare(Format& call, char op, const T* alpha, const Matrix* a,
                const jex_sparse_descriptor* d, bool solve) {
  if (!call.module) return JEX_SPARSE_NO_MODULE;
  if (!alpha || !a || !d) return JEX_SPARSE_NULL_ARGUMENT;
  return call.prepare(op, alpha, a, *d, solve);
}

template <class Format, class T, class Matrix>
jex_int sparse_mv(char op, const T* alpha, const Matrix* a, const jex_sparse_descriptor* descriptor,
                  const T* x, const T* beta, T* y) {
  Format call;
  if (const jex_int status = prepare(call, op, alpha, a, descriptor, false)) return status;
  if (!beta || (call.x_rows() > 0 && !x) || (call.y_rows() > 0 && !y))
    return JEX_SPARSE_NULL_ARGUMENT;
  if (!is_one(*beta)) call.scale(*beta, call.y_rows(), y);
  if (a->m == 0 || a->n == 0 || call.is_zero(call.alpha)) return JEX_SPARSE_OK;
  call.multiply(x, y);
  return JEX_SPARSE_OK;
}

template <class Format, class T, class Matrix>
jex_int sparse_mm(char op, jex_int n, const T* alpha, const Matrix* a,
                  const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, const T* beta,
                  T* c, jex_int ldc) {
  Format call;
  if (const jex_int status = prepare(call, op, alpha, a, descriptor, false)) return status;
  if (n < 0) return JEX_SPARSE_WRONG_SIZE;
  const bool by_columns = call.by_columns();
  const Lines from(by_columns, call.x_rows(), n), to(by_columns, call.y_rows(), n);
  if (!from.fit(ldb) || !to.fit(ldc)) return JEX_SPARSE_WRONG_LEADING_DIMENSION;
  if (n == 0) return JEX_SPARSE_OK;
  if (!beta || (call.x_rows() > 0 && !b) || (call.y_rows() > 0 && !c))
    return JEX_SPARSE_NULL_ARGUMENT;
  if (!is_one(*beta))
    for (jex_int line = 0; line < to.count; ++line)
      call.scale(*beta, to.length, c + size_t(line) * ldc);
  if (a->m == 0 || a->n == 0 || call.is_zero(call.alpha)) return JEX_SPARSE_OK;
  call.multiply(n, b, ldb, c, ldc);
  return JEX_SPARSE_OK;
}

// C := alpha B, line by line.
template <class T>
void start_solve(const SparseCall<T>& call, const Lines& lines, const T* b, jex_int ldb, T* c,
                 jex_int ldc) {
  for (jex_int line = 0; line < lines.count; ++line) {
    T* const to = c + size_t(line) * ldc;
    if (b != c) std::copy_n(b + size_t(line) * ldb, lines.length, to);
    if (!is_one(call.alpha)) call.scale(call.alpha, lines.length, to);
  }
}

template <class Format, class T, class Matrix>
jex_int sparse_sv(char op, const T* alpha, const Matrix* a, const jex_sparse_descriptor* descriptor,
                  const T* x, T* y) {
  Format call;
  if (const jex_int status = prepare(call, op, alpha, a, descriptor, true)) return status;
  if (a->m == 0) return JEX_SPARSE_OK;
  if (!x || !y) return JEX_SPARSE_NULL_ARGUMENT;
  start_solve(call, Lines(true, a->m, 1), x, a->m, y, a->m);
  call.solve(y);
  return JEX_SPARSE_OK;
}

template <class Format, class T, class Matrix>
jex_int sparse_sm(char op, jex_int n, const T* alpha, const Matrix* a,
                  const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, T* c,
                  jex_int ldc) {
  Format call;
  if (const jex_int status = prepare(call, op, alpha, a, descriptor, true)) return status;
  if (n < 0) return JEX_SPARSE_WRONG_SIZE;
  const Lines lines(call.by_columns(), a->m, n);
  if (!lines.fit(ldb) || !lines.fit(ldc) || (b == c && ldb != ldc))
    return JEX_SPARSE_WRONG_LEADING_DIMENSION;
  if (a->m == 0 || n == 0) return JEX_SPARSE_OK;
  if (!b || !c) return JEX_SPARSE_NULL_ARGUMENT;
  start_solve(call, lines, b, ldb, c, ldc);
  call.solve(n, c, ldc);
  return JEX_SPARSE_OK;
}

// The entries of one format and element type.
#define SPARSE_PRODUCTS(E, T, FORMAT, Call)                                                       \
  jex_int jex_##E##FORMAT##mv(char op, const T* alpha, const jex_##FORMAT* a,                     \
                              const jex_sparse_descriptor* descriptor, const T* x, const T* beta, \
                              T* y) {                                                             \
    return sparse_mv<Call<T>>(op, alpha, a, descriptor, x, beta, y);                              \
  }                                                                                               \
  jex_int jex_##E##FORMAT##mm(char op, jex_int columns, const T* alpha, const jex_##FORMAT* a,    \
                              const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb,   \
                              const T* beta, T* c, jex_int ldc) {                                 \
    return sparse_mm<Call<T>>(op, columns, alpha, a, descriptor, b, ldb, beta, c, ldc);           \
  }
#define SPARSE_ENTRIES(E, T, FORMAT, Call)                                                      \
  SPARSE_PRODUCTS(E, T, FORMAT, Call)                                                           \
  jex_int jex_##E##FORMAT##sv(char op, const T* alpha, const jex_##FORMAT* a,                   \
                              const jex_sparse_descriptor* descriptor, const T* x, T* y) {      \
    return sparse_sv<Call<T>>(op, alpha, a, descriptor, x, y);                                  \
  }                                                                                             \
  jex_int jex_##E##FORMAT##sm(char op, jex_int columns, const T* alpha, const jex_##FORMAT* a,  \
                              const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, \
                              T* c, jex_int ldc) {                                              \
    return sparse_sm<Call<T>>(op, columns, alpha, a, descriptor, b, ldb, c, ldc);               \
  }

}  // namespace jex::front
