// y := alpha op(A) x + beta y for a column-major m x n matrix A.
#pragma once

#include "blas/level2/beta.h"
#include "blas/level2/gemv_complex.h"
#include "blas/level2/storage.h"
#include "simd/repeat.h"

namespace jex::blas {

using simd::unrolled;

// y += A (alpha x), from the first column to the last. x may be spaced.
template <class T>
[[gnu::noinline]] void add_product(int m, int n, T alpha, const T* a, int lda, const T* x, int incx,
                                   T* y) {
  constexpr int step = columns_at_once;
  const bool far = is_far<T>(lda, n);
  T t[step];
  int j = 0;
  for (; j + step <= n; j += step, a += ptrdiff_t(step) * lda) {
    for (int k = 0; k < step; ++k) t[k] = alpha * x[(j + k) * incx];
    if (far)
      add_columns<step, Memory::far>(m, a, lda, t, y);
    else
      add_columns<step>(m, a, lda, t, y);
  }
  for (int k = 0; j + k < n; ++k) t[k] = alpha * x[(j + k) * incx];
  with_count<step - 1>(n - j, [&](auto count) { add_columns<count>(m, a, lda, t, y); });
}

// y += alpha A' x. The last n mod 4 columns take their rows by registers from row 1 on; the others
// by eight from the 16-byte boundary of x, if there are nine rows after row 0.
template <class T>
[[gnu::noinline]] void add_dots(int m, int n, T alpha, const T* a, int lda, const T* x, T* y) {
  constexpr int step = columns_at_once;
  const bool far = is_far<T>(lda, n);
  constexpr int width = Lanes<T>::count;
  RowPlan plan{m, m};
  if (m - 1 >= 9 && (uintptr_t)x % sizeof(T) == 0) {
    plan.first = 1 + elements_to_boundary(x + 1, m - 1);
    plan.last = plan.first + (m - plan.first) / 8 * 8;
  }
  const int grouped = n / 4 * 4;
  int j = 0;
  for (; j + step <= grouped; j += step, a += ptrdiff_t(step) * lda)
    if (far)
      dot_columns<step, Memory::far>(m, plan, a, lda, x, alpha, y + j);
    else
      dot_columns<step>(m, plan, a, lda, x, alpha, y + j);
  const auto rest = [&](int columns, RowPlan plan) __attribute__((always_inline)) {
    with_count<step - 1>(columns,
                         [&](auto count) { dot_columns<count>(m, plan, a, lda, x, alpha, y + j); });
    j += columns, a += ptrdiff_t(columns) * lda;
  };
  rest(grouped - j, plan);
  rest(n - grouped, {1, 1 + (m - 1) / width * width});
}

// A few columns with other strides: the same sums for y += A (alpha x), element by element; one sum
// for each dot product.
template <int columns, class T>
[[gnu::noinline]] void add_strided_columns(Op op, int m, T alpha, const T* a, ptrdiff_t lda,
                                           const T* x, int incx, T* y, int incy) {
  T sum[columns];
  if (op == Op::none) {
    unrolled<columns>([&](auto k) { sum[k] = alpha * x[k * incx]; });
    for (int i = 0; i < m; ++i, y += incy)
      unrolled<columns>([&](auto k) { *y = a[i + k * lda] * sum[k] + *y; });
  } else {
    unrolled<columns>([&](auto k) { sum[k] = a[k * lda] * x[0]; });
    for (int i = 1; i < m; ++i)
      unrolled<columns>([&](auto k) { sum[k] = a[i + k * lda] * x[i * incx] + sum[k]; });
    unrolled<columns>([&](auto k) { y[k * incy] = sum[k] * alpha + y[k * incy]; });
  }
}

template <class T>
void add_strided(Op op, int m, int n, T alpha, const T* a, int lda, const T* x, int incx, T* y,
                 int incy) {
  constexpr int step = 4;
  for (int j = 0; j < n; j += step, a += ptrdiff_t(step) * lda)
    with_count<step>(std::min(step, n - j), [&](auto count) {
      const bool plain = op == Op::none;
      add_strided_columns<count>(op, m, alpha, a, lda, plain ? x + j * incx : x, incx,
                                 plain ? y : y + j * incy, incy);
    });
}

// m and n are not negative. x and y are the vectors as the caller names them: a negative increment
// walks from the end.
template <class T>
[[gnu::noinline]] void gemv(Op op, int m, int n, T alpha, const T* a, int lda, const T* x, int incx,
                            T beta, T* y, int incy) {
  if (m == 0 || n == 0 || (is_zero(alpha) && is_one(beta))) return;
  const bool plain = op == Op::none;
  scale_y(plain ? m : n, beta, y, incy);
  if (is_zero(alpha)) return;
  x = start_of(x, plain ? n : m, incx);
  y = start_of(y, plain ? m : n, incy);
  if constexpr (is_complex<T>) {
    if (plain)
      add_complex_product(m, n, alpha, a, lda, x, incx, y, incy);
    else if (op == Op::conj_transpose)
      add_complex_dots<Conj::yes>(m, n, alpha, a, lda, x, incx, y, incy);
    else
      add_complex_dots<Conj::no>(m, n, alpha, a, lda, x, incx, y, incy);
  } else {
    if (plain && incy == 1)
      add_product(m, n, alpha, a, lda, x, incx, y);
    else if (incx != 1 || incy != 1)
      add_strided(op, m, n, alpha, a, lda, x, incx, y, incy);
    else
      add_dots(m, n, alpha, a, lda, x, y);
  }
}

}  // namespace jex::blas
