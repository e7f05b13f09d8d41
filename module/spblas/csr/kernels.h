// The CSR kernels as their exports call them: quick returns, the places that the pointers stand
// for, and the algorithm of the variant. Ranges are inclusive and count from 1.
#pragma once

#include "spblas/csr/diagonal.h"
#include "spblas/csr/product.h"
#include "spblas/csr/solve.h"
#include "spblas/csr/two_pass.h"

namespace jex::spblas::csr {

consteval bool goes_twice(Variant v) {
  return v.kind == Kind::skew ||
         ((v.kind == Kind::symmetric || v.kind == Kind::hermitian) && v.diag == Diag::unit);
}

// Rows first .. last. x and y begin at row 1; those of symmetric and Hermitian kernels at the first
// row of the range.
template <Variant v, class T>
[[gnu::always_inline]] inline void mv(int first, int last, int m, const T& alpha,
                                      const Matrix<T>& a, const T* x, T* y) {
  if (m < 1 || last < first) return;
  constexpr EntryRule rule = entry_rule(v);
  constexpr bool unit = v.diag == Diag::unit;
  if constexpr (v.kind == Kind::diagonal && unit) {
    blas::axpy(m, alpha, x, 1, y, 1);
  } else {
    constexpr bool from_first = v.kind == Kind::symmetric || v.kind == Kind::hermitian;
    const int origin = a.base + (from_first ? first - 1 : 0);
    x -= origin;
    y -= origin;
    const T scale = signed_alpha(negates(v), alpha);
    if constexpr (goes_twice(v))
      multiply_vector_twice<T, rule>(a, first - 1, last, unit, scale, x, y);
    else
      multiply_vector<T, vector_method(rule)>(a, first - 1, last, is_strict(v), unit, scale, x, y);
  }
}

// Columns c1 .. c2 of B and C.
template <Variant v, Layout layout, class T>
[[gnu::always_inline]] inline void mm(int c1, int c2, int m, int n, const T& alpha,
                                      const Matrix<T>& a, const T* b, int ldb, T* c, int ldc) {
  if (m < 1 || n < 1 || c2 < c1) return;
  constexpr bool unit = v.diag == Diag::unit;
  if constexpr (v.kind == Kind::diagonal && unit) {
    add_scaled<layout, T>(m, n, alpha, {b, ldb}, {c, ldc});
  } else {
    multiply_matrix<T, matrix_method(entry_rule(v), layout), layout>(
        a, c1 - 1, c2, m, is_strict(v), unit, signed_alpha(negates(v), alpha),
        {from_number_0<layout>(b, a.base, ldb), ldb}, {from_number_0<layout>(c, a.base, ldc), ldc});
  }
}

template <Variant v, Layout layout, class T>
[[gnu::always_inline]] inline void sv(int m, const Matrix<T>& a, T* y) {
  if (m < 1) return;
  if constexpr (v.kind == Kind::diagonal)
    divide_columns<T, is_conjugated(v.op), layout>(a, m, 1, y - a.base, 1);
  else
    solve_vector<T, v.uplo, is_transposed(v.op), is_conjugated(v.op), Layout::column_major>(
        a, m, v.diag == Diag::unit, y - a.base, 1);
}

// Columns c1 .. c2 of C. Without scratch they are solved one by one, with the same bits.
template <Variant v, Layout layout, class T>
[[gnu::always_inline]] inline void sm(int c1, int c2, int m, int n, const Matrix<T>& a, T* c,
                                      int ldc) {
  if (m < 1 || n < 1 || c2 < c1) return;
  constexpr bool conj = is_conjugated(v.op);
  const int count = c2 - c1 + 1;
  c = at_column<layout>(from_number_0<layout>(c, a.base, ldc), c1 - 1, ldc);
  if constexpr (v.kind == Kind::diagonal) {
    divide_columns<T, conj, layout>(a, m, count, c, ldc);
  } else {
    constexpr bool unit = v.diag == Diag::unit;
    solve_all<T, v.uplo, is_transposed(v.op), conj, layout>(a, m, n, count, unit, c, ldc);
  }
}

// y(i) := the row sum, in one chain, for the rows first .. last; alpha is 1 and y is overwritten.
template <class T>
void gemv(int first, int last, int m, const Matrix<T>& matrix, const T* x, T* y) {
  if (m < 1) return;
  const Rows<T> a(matrix);
  for (int i = first - 1; i < last; ++i)
    y[i] = row_sum<Order::chain>(a.first(i + a.base), a.last(i + a.base), T(0),
                                 [&](Entry k, T& sum) { sum = sum + a.value(k) * x[*k - a.base]; });
}

}  // namespace jex::spblas::csr
