// Kernels of diagonal matrices in CSR storage that are not products by the entry rule: a diagonal
// of ones, which is not read, and solves. Stored entries beside the diagonal are ignored; several
// on it add up.
#pragma once

#include "blas/level1/scalar.h"
#include "blas/level1/update.h"
#include "spblas/csr/matrix.h"
#include "spblas/csr/product.h"

namespace jex::spblas::csr {

// C := C + alpha B, m rows and n columns.
template <Layout layout, class T>
inline void add_scaled(int m, int n, const T& alpha, Dense<const T> b, Dense<T> c) {
  const bool by_rows = layout == Layout::row_major;
  const int lines = by_rows ? m : n, length = by_rows ? n : m;
  for (int i = 0; i < lines; ++i) blas::axpy(length, alpha, b.p + i * b.ld, 1, c.p + i * c.ld, 1);
}

// The diagonal element of row number i, 0 if there is none.
template <bool conj, class T>
inline T diagonal(const Rows<T>& a, int i) {
  T d = {};
  bool found = false;
  for (Entry k = a.first(i); k < a.last(i); ++k)
    if (*k == i) {
      d = found ? blas::add(d, a.value(k)) : a.value(k);
      found = true;
    }
  if constexpr (conj && is_complex<T>) d.im = -d.im;
  return d;
}

// Columns 0 .. count - 1; c is the element of number 0.
template <class T, bool conj, Layout layout>
[[gnu::noinline]] void divide_columns(const Matrix<T>& matrix, int m, int count, T* c,
                                      ptrdiff_t ld) {
  const Rows<T> a(matrix);
  for (int i = a.base; i < m + a.base; ++i) {
    const T d = diagonal<conj>(a, i);
    T* const ci = at_row<layout>(c, i, ld);
    for (int j = 0; j < count; ++j) {
      T& y = *at_column<layout>(ci, j, ld);
      y = blas::quotient(y, d);
    }
  }
}

}  // namespace jex::spblas::csr
