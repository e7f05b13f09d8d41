// Inner kernels of gemv for complex matrices: no transpose, transpose and conjugate transpose, each
// for unit and for other increments. A factor t = alpha x(j) is two registers (re re, -im im), an
// element of A and its swapped parts are two more.
#pragma once

#include "blas/level1/dot.h"
#include "blas/level2/gemv_real.h"
#include "simd/prefetch.h"

namespace jex::blas {

template <class T>
struct FactorParts {
  Lanes<Real<T>> re, im;
};

// y(i) := (y(i) + a(i,j) t(j).re) + i a(i,j) t(j).im, column by column: the same sums for every
// number of columns at once, every alignment and every increment.
//
// Four registers of y stay while the columns pass; the factors come from memory for each four.
template <int columns, Memory memory, class T, class Y>
[[gnu::noinline]] void add_complex_columns(int m, const T* a, ptrdiff_t lda,
                                           const FactorParts<T>* t, Y y) {
  using R = Real<T>;
  constexpr int width = Lanes<T>::count;
  Columns<T> column(a, lda);
  const auto add =
      [](Lanes<R> & sum, Lanes<T> a, Lanes<R> re, Lanes<R> im) __attribute__((always_inline)) {
    const Lanes<R> parts = pinned(a.parts);
    const Lanes<R> swapped = pinned(simd::swap_parts(parts));
    accumulate(sum, parts * re);
    accumulate(sum, swapped * im);
  };
  const auto block = [&]<int... r, int... j>(std::integer_sequence<int, r...>,
                                             std::integer_sequence<int, j...>, int i)
      __attribute__((always_inline)) {
    if constexpr (memory == Memory::far && sizeof...(r) > 1)
      (simd::prefetch(column.template at<j>(bytes_ahead / sizeof(T))), ...);
    Lanes<R> sum[] = {pinned(y.load(i + r * width).parts)...};
    const auto add_column = [&]<int k>(std::integral_constant<int, k>)
        __attribute__((always_inline)) {
      const Lanes<R> re = pinned(t[k].re), im = pinned(t[k].im);
      (add(sum[r], Lanes<T>::load(column.template at<k>(r * width)), re, im), ...);
    };
    (add_column(std::integral_constant<int, j>()), ...);
    (y.store({sum[r]}, i + r * width), ...);
    column.advance(int(sizeof...(r)) * width);
  };
  const auto row = [&]<int... j>(std::integer_sequence<int, j...>, int i)
      __attribute__((always_inline)) {
    Lanes<R> sum = pinned(y.load_first(i).parts);
    (add(sum, Lanes<T>::load_first(column.template at<j>(0)), t[j].re, t[j].im), ...);
    y.store_first({sum}, i);
    column.advance(1);
  };
  constexpr auto all = std::make_integer_sequence<int, columns>();
  int i = 0;
  if (y.inc == 1) {
    for (; i + 4 * width <= m; i += 4 * width) block(std::make_integer_sequence<int, 4>(), all, i);
    for (; i + width <= m; i += width) block(std::make_integer_sequence<int, 1>(), all, i);
  }
  for (; i < m; ++i) row(all, i);
}

// Sums of a dot product of complex vectors, kept apart as in complex_dot: straight and crossed
// products, one sum for each lane.
template <class T>
struct DotSums {
  Lanes<Real<T>> straight = {}, crossed = {};

  [[gnu::always_inline]] void add(Lanes<T> a, Lanes<Real<T>> x, Lanes<Real<T>> swapped) {
    const Lanes<Real<T>> parts = pinned(a.parts);
    accumulate(straight, parts * x);
    accumulate(crossed, parts * swapped);
  }
  template <Conj conj>
  T total() const {
    const T s = simd::sum_complex_lanes<T>({straight}), c = simd::sum_complex_lanes<T>({crossed});
    if (conj == Conj::yes) return {s.re + s.im, c.re - c.im};
    return {s.re - s.im, c.re + c.im};
  }
};

// Adds m rows to the sums of one or two columns, from the first row to the last.
template <int columns, Memory memory, class T, class X>
[[gnu::noinline]] void add_to_dots(int m, const T* a, ptrdiff_t lda, X x, DotSums<T>* sums) {
  using R = Real<T>;
  constexpr int width = Lanes<T>::count;
  Columns<T> column(a, lda);
  [&]<int... j>(std::integer_sequence<int, j...>) __attribute__((always_inline)) {
    DotSums<T> s[columns] = {sums[j]...};
    const auto rows = [&](int i, int k) __attribute__((always_inline)) {
      const Lanes<R> xi = pinned(x.lanes(i + k).parts), swapped = pinned(simd::swap_parts(xi));
      (s[j].add(Lanes<T>::load(column.template at<j>(k)), xi, swapped), ...);
    };
    int i = 0;
    for (; i + 4 * width <= m; i += 4 * width, column.advance(4 * width)) {
      if constexpr (memory == Memory::far)
        (simd::prefetch(column.template at<j>(bytes_ahead / sizeof(T))), ...);
      unrolled<4>([&](auto r) __attribute__((always_inline)) { rows(i, r * width); });
    }
    for (; i + width <= m; i += width, column.advance(width)) rows(i, 0);
    for (; i < m; ++i, column.advance(1)) {
      const Lanes<R> xi = pinned(x.first(i).parts), swapped = pinned(simd::swap_parts(xi));
      (s[j].add(Lanes<T>::load_first(column.template at<j>(0)), xi, swapped), ...);
    }
    ((sums[j] = s[j]), ...);
  }
  (std::make_integer_sequence<int, columns>());
}

// y += A (alpha x); the vectors are at their first elements.
template <class T>
[[gnu::noinline]] void add_complex_product(int m, int n, T alpha, const T* a, int lda, const T* x,
                                           int incx, T* y, int incy) {
  constexpr int step = columns_at_once;
  FactorParts<T> t[step];
  const InOut<T> to{y, incy};
  const bool far = is_far<T>(lda, n);
  for (; n > 0; n -= step, a += ptrdiff_t(step) * lda) {
    const int columns = n < step ? n : step;
    for (int k = 0; k < columns; ++k, x += incx) {
      const Factor<T> factor(multiply(alpha, *x));
      t[k] = {factor.re, factor.im};
    }
    if (far && columns == step)
      add_complex_columns<step, Memory::far>(m, a, lda, t, to);
    else
      with_count<step>(
          columns, [&](auto count) { add_complex_columns<count, Memory::near>(m, a, lda, t, to); });
  }
}

template <class T>
inline Contiguous<T> from_row(Contiguous<T> x, int i) {
  return {x.p + i};
}
template <class T>
inline Spaced<T> from_row(Spaced<T> x, int i) {
  return {x.p + i * x.inc, x.inc};
}

// y += alpha op(A) x. The registers hold the sums of two columns. Eight columns take turns at
// blocks of rows, so that memory serves eight streams; an even number of elements is a whole number
// of registers, and the blocks do not show in the sums.
template <Conj conj, class T, class X>
[[gnu::noinline]] void add_complex_dots(int m, int n, T alpha, const T* a, ptrdiff_t lda, X x, T* y,
                                        int incy) {
  constexpr int group = 8;
  const bool far = is_far<T>(lda, n);
  const int block = (far ? 512 : 4096) / sizeof(T);
  DotSums<T> sums[group];
  for (; n > 0; n -= group, a += group * lda) {
    const int columns = n < group ? n : group;
    for (auto& sum : sums) sum = DotSums<T>();
    for (int i = 0; i < m; i += block) {
      const int rows = m - i < block ? m - i : block;
      int j = 0;
      for (; j + 2 <= columns; j += 2) {
        if (far)
          add_to_dots<2, Memory::far>(rows, a + i + j * lda, lda, from_row(x, i), sums + j);
        else
          add_to_dots<2, Memory::near>(rows, a + i + j * lda, lda, from_row(x, i), sums + j);
      }
      if (j < columns)
        add_to_dots<1, Memory::near>(rows, a + i + j * lda, lda, from_row(x, i), sums + j);
    }
    for (int j = 0; j < columns; ++j, y += incy)
      *y = add(*y, multiply(alpha, sums[j].template total<conj>()));
  }
}

template <Conj conj, class T>
inline void add_complex_dots(int m, int n, T alpha, const T* a, int lda, const T* x, int incx, T* y,
                             int incy) {
  if (incx == 1)
    add_complex_dots<conj>(m, n, alpha, a, lda, Contiguous<T>{x}, y, incy);
  else
    add_complex_dots<conj>(m, n, alpha, a, lda, Spaced<T>{x, incx}, y, incy);
}

}  // namespace jex::blas
