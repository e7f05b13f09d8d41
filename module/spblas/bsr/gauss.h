// Inverses of diagonal blocks and block Gauss-Seidel sweeps. (Y. Saad, "Iterative Methods for
// Sparse Linear Systems", 2nd edition, SIAM 2003, chapter 4.)
//
// By rows, for every block row i in the order of the sweep:
//   x(i) := D(i) (b(i) - the sum of A(i, j) x(j) over j other than i)
// By columns, on the residual r = b - A x, for every block column j:
//   d := D(j) r(j),  x(j) := x(j) + d,  r(i) := r(i) - A(i, j) d for all blocks of the column
// with D(i) the inverse of the diagonal block. Both give the same x but for rounding.
#pragma once

#include "serv/lsame.h"
#include "spblas/bsr/product.h"

#include <algorithm>

namespace jex::spblas::bsr {

// Room for a block row on the stack: a matrix with blocks of n rows holds n times as much.
template <class T>
[[gnu::always_inline]] inline T* on_stack(int n) {
  return static_cast<T*>(__builtin_alloca_with_align(n * sizeof(T), 128));
}

inline constexpr auto size_of_pivot = [](auto a) __attribute__((always_inline)) {
  if constexpr (is_complex<decltype(a)>)
    return __builtin_fabs(a.re) + __builtin_fabs(a.im);
  else
    return __builtin_fabs(a);
};

// a := its inverse, n x n by columns, by Gauss-Jordan elimination with the largest element of each
// column as pivot. False for a singular matrix, or one with NaN where a pivot is sought.
template <class T>
bool invert(int n, T* a, jex_int* pivots) {
  const auto at = [=](int r, int c) -> T& { return a[c * ptrdiff_t(n) + r]; };
  for (int k = 0; k < n; ++k) {
    int p = k;
    for (int r = k + 1; r < n; ++r)
      if (size_of_pivot(at(r, k)) > size_of_pivot(at(p, k))) p = r;
    if (!(size_of_pivot(at(p, k)) > 0)) return false;
    pivots[k] = p;
    if (p != k)
      for (int c = 0; c < n; ++c) std::swap(at(p, c), at(k, c));
    const T pivot = blas::quotient(blas::real_element<T>(1), at(k, k));
    at(k, k) = blas::real_element<T>(1);
    for (int c = 0; c < n; ++c) at(k, c) = multiply(at(k, c), pivot);
    for (int r = 0; r < n; ++r) {
      if (r == k) continue;
      const T factor = negated(at(r, k));
      at(r, k) = T{};
      for (int c = 0; c < n; ++c) at(r, c) = add(at(r, c), multiply(factor, at(k, c)));
    }
  }
  for (int k = n; k-- > 0;)
    if (pivots[k] != k)
      for (int r = 0; r < n; ++r) std::swap(at(r, k), at(r, pivots[k]));
  return true;
}

// The inverses of the diagonal blocks, one behind the other. info: 0, or the first row, from 1,
// without a block that has an inverse; such rows get zeros.
template <class T>
[[gnu::noinline]] void invert_diagonal(int m, int lb, const Matrix<T>& a, T* inverse,
                                       jex_int* info) {
  *info = 0;
  if (m < 1 || lb < 1) return;
  const ptrdiff_t size = ptrdiff_t(lb) * lb;
  jex_int* const pivots = on_stack<jex_int>(lb);
  for (int i = 0; i < m; ++i, inverse += size) {
    const T* diagonal = nullptr;
    a.for_row(Side<0>{lb}, i, [&](const T* block, int j) {
      if (j == i && !diagonal) diagonal = block;
    });
    if (diagonal) {
      std::copy_n(diagonal, size, inverse);
      if (invert(lb, inverse, pivots)) continue;
    }
    std::fill_n(inverse, size, T{});
    if (!*info) *info = i + 1;
  }
}

// to := block x
template <class T, int side>
[[gnu::always_inline]] inline void apply_block(Side<side> lb, const T* block, const T* x, T* to) {
  for_strips<T, strip_registers<T>(true, false, 1)>(
      lb, [&](auto strip, int r) __attribute__((always_inline)) {
        Group<decltype(strip), 1> sums = {{strip.zero()}};
        add_row_part<false>(lb, block + r, Dense<const T>{x, 0}, sums);
        strip.store(to + r, sums.v[0]);
      });
}

// step(i) in the order of the sweep: forward, backward, or one and then the other.
template <class Step>
[[gnu::always_inline]] inline void sweep_over(const char* sweep, int m, Step step) {
  if (!serv::lsame(sweep, "B"))
    for (int i = 0; i < m; ++i) step(i);
  if (!serv::lsame(sweep, "F"))
    for (int i = m; i-- > 0;) step(i);
}

template <class T, int side>
[[gnu::noinline]] void sweep_rows(const char* sweep, int m, Side<side> lb, const Matrix<T>& a,
                                  const T* inverse, const T* b, T* x) {
  const ptrdiff_t size = ptrdiff_t(lb) * lb;
  T* const rest = on_stack<T>(lb);
  sweep_over(
      sweep, m, [&](int i) __attribute__((always_inline)) {
        const ptrdiff_t place = ptrdiff_t(i) * lb;
        for_strips<T, strip_registers<T>(true, false, 1)>(
            lb, [&](auto strip, int r) __attribute__((always_inline)) {
              Group<decltype(strip), 1> sums = {{strip.zero()}};
              a.for_row(
                  lb, i, [&](const T* block, int j) __attribute__((always_inline)) {
                    if (j != i)
                      add_row_part<false>(lb, block + r, Dense<const T>{x + ptrdiff_t(j) * lb, 0},
                                          sums);
                  });
              strip.store(rest + r, strip.load(b + place + r) - sums.v[0]);
            });
        apply_block(lb, inverse + i * size, rest, x + place);
      });
}

template <class T, int side>
[[gnu::noinline]] void sweep_columns(const char* sweep, int m, Side<side> lb, const Matrix<T>& a,
                                     const T* inverse, T* r, T* x) {
  const ptrdiff_t size = ptrdiff_t(lb) * lb;
  T* const d = on_stack<T>(lb);
  sweep_over(
      sweep, m, [&](int j) __attribute__((always_inline)) {
        const ptrdiff_t place = ptrdiff_t(j) * lb;
        apply_block(lb, inverse + j * size, r + place, d);
        for (int c = 0; c < lb; ++c) x[place + c] = add(x[place + c], d[c]);
        a.for_row(
            lb, j, [&](const T* block, int i) __attribute__((always_inline)) {
              T* const ri = r + ptrdiff_t(i) * lb;
              for_strips<T, strip_registers<T>(true, false, 1)>(
                  lb, [&](auto strip, int first) __attribute__((always_inline)) {
                    Group<decltype(strip), 1> sums = {{strip.zero()}};
                    add_row_part<false>(lb, block + first, Dense<const T>{d, 0}, sums);
                    strip.store(ri + first, strip.load(ri + first) - sums.v[0]);
                  });
            });
      });
}

template <class T>
void gauss_rows(const char* sweep, int m, int lb, const Matrix<T>& a, const T* inverse, const T* b,
                T* x) {
  if (m < 1 || lb < 1) return;
  with_side(lb, [&](auto side) { sweep_rows(sweep, m, side, a, inverse, b, x); });
}
template <class T>
void gauss_columns(const char* sweep, int m, int lb, const Matrix<T>& a, const T* inverse, T* r,
                   T* x) {
  if (m < 1 || lb < 1) return;
  with_side(lb, [&](auto side) { sweep_columns(sweep, m, side, a, inverse, r, x); });
}

}  // namespace jex::spblas::bsr
