// The DIA kernels as their exports call them: quick returns and the algorithm of the variant.
// Ranges of columns are inclusive and count from 1.
#pragma once

#include "spblas/dia/product.h"
#include "spblas/dia/solve.h"

namespace jex::spblas::dia {

// Columns c1 .. c2 of B and C.
template <Variant v, class T>
[[gnu::always_inline]] inline void mm(int c1, int c2, int m, int n, int k, const T& alpha,
                                      const Matrix<T>& a, const T* b, int ldb, T* c, int ldc) {
  if (m < 1 || k < 1 || n < 1 || c2 < c1) return;
  multiply<T, entry_rule(v)>(a, m, k, c1 - 1, c2, is_strict(v), signed_alpha(negates(v), alpha),
                             {b, ldb}, {c, ldc});
  if constexpr (v.diag == Diag::unit)
    add_scaled<Layout::column_major, T>(m, c2 - c1 + 1, alpha, {b + (c1 - 1) * ptrdiff_t(ldb), ldb},
                                        {c + (c1 - 1) * ptrdiff_t(ldc), ldc});
}
template <Variant v, class T>
[[gnu::always_inline]] inline void mv(int m, int k, const T& alpha, const Matrix<T>& a, const T* x,
                                      T* y) {
  mm<v>(1, 1, m, 1, k, alpha, a, x, k, y, m);
}

// Columns c1 .. c2 of C.
template <Variant v, class T>
[[gnu::always_inline]] inline void sm(int c1, int c2, int m, int n, const Matrix<T>& a, T* c,
                                      int ldc) {
  if (m < 1 || n < 1 || c2 < c1) return;
  constexpr bool conj = is_conjugated(v.op) && is_complex<T>;
  constexpr bool transposed = v.kind == Kind::triangular && is_transposed(v.op);
  solve_columns<T, v.uplo, transposed, conj>(a, m, c2 - c1 + 1, v.diag == Diag::unit,
                                             c + (c1 - 1) * ptrdiff_t(ldc), ldc);
}
template <Variant v, class T>
[[gnu::always_inline]] inline void sv(int m, const Matrix<T>& a, T* y) {
  sm<v>(1, 1, m, 1, a, y, m);
}

}  // namespace jex::spblas::dia
