// y := alpha op(A) x + beta y for a band matrix.
#pragma once

#include "blas/level1/dot.h"
#include "blas/level1/update.h"
#include "blas/level2/gemv.h"

namespace jex::blas {

// Sum of a(i) x(i), or conj(a(i)) x(i), over n stored elements of a.
template <Conj conj, class T>
inline T column_dot(int n, const T* a, const T* x, int incx) {
  const auto dot = [&](auto elements) {
    if constexpr (is_complex<T>)
      return complex_dot<conj, T>(n, Contiguous<T>{a}, elements);
    else
      return sum_products<T, T>(n, 0, Contiguous<T>{a}, elements);
  };
  return incx == 1 ? dot(Contiguous<T>{x}) : dot(Spaced<T>{x, incx});
}

// A is m x n with kl diagonals below and ku above the main one; the rows of column j run from
// max(0, j - ku) to min(m, j + kl + 1), row i at a[ku + i - j + j lda].
template <class T>
[[gnu::noinline]] void gbmv(Op op, int m, int n, int kl, int ku, T alpha, const T* a, int lda,
                            const T* x, int incx, T beta, T* y, int incy) {
  if (m == 0 || n == 0 || (is_zero(alpha) && is_one(beta))) return;
  scale_y(op == Op::none ? m : n, beta, y, incy);
  if (is_zero(alpha)) return;
  x = start_of(x, op == Op::none ? n : m, incx);
  y = start_of(y, op == Op::none ? m : n, incy);
  for (int j = 0; j < n && j < m + ku; ++j, a += lda) {
    const int begin = std::max(0, j - ku), rows = std::min(m, j + kl + 1) - begin;
    const T* const column = a + (ku + begin - j);
    if (op == Op::none) {
      const Factor<T> t(multiply(alpha, x[j * incx]));
      T* const target = y + begin * incy;
      for_each<T>(
          rows, [=](Lanes<T> a, Lanes<T>& y) { y = y + a * t; }, In<T>{column},
          InOut<T>{incy < 0 ? target + (rows - 1) * incy : target, incy});
    } else {
      const T* const part = x + begin * incx;
      const T sum = op == Op::conj_transpose ? column_dot<Conj::yes>(rows, column, part, incx)
                                             : column_dot<Conj::no>(rows, column, part, incx);
      y[j * incy] = add(multiply(alpha, sum), y[j * incy]);
    }
  }
}

}  // namespace jex::blas
