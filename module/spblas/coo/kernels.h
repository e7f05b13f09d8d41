// The COO kernels as their exports call them: quick returns, the places that the pointers stand
// for, and the algorithm of the variant. Ranges are inclusive and count from 1.
#pragma once

#include "spblas/coo/product.h"
#include "spblas/coo/solve.h"

namespace jex::spblas::coo {

// Entries first .. last. The range that begins the list adds a unit diagonal.
template <Variant v, class T>
[[gnu::always_inline]] inline void mv(int first, int last, int m, const T& alpha,
                                      const Matrix<T>& a, const T* x, T* y) {
  constexpr bool unit = v.diag == Diag::unit;
  if (m < 1 || last < first) return;
  if constexpr (unit)
    if (first <= 1) blas::axpy(m, alpha, x, 1, y, 1);
  multiply_vector<T, entry_rule(v)>(a, first - 1, last, is_strict(v),
                                    signed_alpha(negates(v), alpha), x - a.base, y - a.base);
}

// Diagonal matrices, the whole list.
template <Variant v, class T>
[[gnu::always_inline]] inline void mv_diagonal(int m, const T& alpha, const Matrix<T>& a,
                                               const T* x, T* y) {
  if constexpr (v.diag == Diag::unit)
    blas::axpy(m, alpha, x, 1, y, 1);
  else
    mv<v>(1, a.count, m, alpha, a, x, y);
}

// Columns c1 .. c2 of B and C.
template <Variant v, Layout layout, class T>
[[gnu::always_inline]] inline void mm(int c1, int c2, int m, int n, const T& alpha,
                                      const Matrix<T>& a, const T* b, int ldb, T* c, int ldc) {
  if (m < 1 || n < 1 || c2 < c1) return;
  if constexpr (v.diag == Diag::unit)
    add_scaled<layout, T>(m, c2 - c1 + 1, alpha, {at_column<layout>(b, c1 - 1, ldb), ldb},
                          {at_column<layout>(c, c1 - 1, ldc), ldc});
  if constexpr (v.kind != Kind::diagonal || v.diag != Diag::unit)
    multiply_columns<T, entry_rule(v), layout>(
        a, c1 - 1, c2, is_strict(v), signed_alpha(negates(v), alpha),
        {from_number_0<layout>(b, a.base, ldb), ldb}, {from_number_0<layout>(c, a.base, ldc), ldc});
}

// Columns c1 .. c2 of C.
template <Variant v, Layout layout, class T>
[[gnu::always_inline]] inline void sm(int c1, int c2, int m, int n, const Matrix<T>& a, T* c,
                                      int ldc) {
  if (m < 1 || n < 1 || c2 < c1) return;
  constexpr Side triangle = v.kind == Kind::diagonal ? Side::diagonal : side(v.uplo);
  solve_all<T, triangle, is_conjugated(v.op) && is_complex<T>, layout>(
      a, m, c2 - c1 + 1, v.diag == Diag::unit,
      at_column<layout>(from_number_0<layout>(c, a.base, ldc), c1 - 1, ldc), ldc);
}
template <Variant v, class T>
[[gnu::always_inline]] inline void sv(int m, const Matrix<T>& a, T* y) {
  sm<v, Layout::column_major>(1, 1, m, 1, a, y, m);
}

}  // namespace jex::spblas::coo
