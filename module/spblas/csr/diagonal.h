// Solves with diagonal matrices in CSR storage. Stored entries beside the diagonal are ignored;
// several on it add up.
#pragma once

#include "blas/level1/scalar.h"
#include "spblas/csr/matrix.h"

namespace jex::spblas::csr {

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
  return blas::conjugate_if<conj>(d);
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
