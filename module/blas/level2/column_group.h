// A few neighbouring columns of a triangle, worked on together, so that the elements of x are
// loaded and stored once for all of them. Four real columns; two complex ones, whose factors and
// sums take two registers each.
#pragma once

#include "blas/level1/scalar.h"
#include "simd/repeat.h"

#include <stddef.h>
#include <utility>

namespace jex::blas {

using simd::unrolled;

template <class T>
inline constexpr int group_width = is_complex<T> ? 2 : 4;

// y(i) += column[0](i) t[0] + column[1](i) t[1] + ..., added in this order, 0 <= i < n.
template <int width, class T>
[[gnu::always_inline]] inline void add_group(int n, const T* const (&column)[width],
                                             const T (&t)[width], T* y) {
  [&]<int... c>(std::integer_sequence<int, c...>) __attribute__((always_inline)) {
    const Factor<T> factor[] = {Factor<T>(t[c])...};
    // A short column goes element by element: the next one would load the stored registers askew,
    // and wait for them.
    const int in_registers = width == 1 && n < 2 * Lanes<T>::count + 2 ? 0 : n;
    int i = 0;
    for (; i + Lanes<T>::count <= in_registers; i += Lanes<T>::count) {
      Lanes<T> sum = Lanes<T>::load(y + i);
      ((sum = pinned(sum + Lanes<T>::load(column[c] + i) * factor[c])), ...);
      sum.store(y + i);
    }
    if constexpr (width == 1 || Lanes<T>::count > 1)
      for (; i < n; ++i) {
        Lanes<T> sum = Lanes<T>::load_first(y + i);
        ((sum = pinned(sum + Lanes<T>::load_first(column[c] + i) * factor[c])), ...);
        sum.store_first(y + i);
      }
  }
  (std::make_integer_sequence<int, width>());
}

// The partial sums of one column's dot product with x: one register of real sums, or, for a complex
// type, (a.re x.re, a.im x.im) and (a.re x.im, a.im x.re) apart until the end.
template <class T>
struct ColumnSums {
  Lanes<T> sums = Lanes<T>::zero();

  [[gnu::always_inline]] void add(Lanes<T> a, Lanes<T> x) { sums = pinned(sums + a * x); }
  template <bool conj>
  [[gnu::always_inline]] T total() const {
    return simd::sum_lanes(sums);
  }
};

template <class T>
requires is_complex<T>
struct ColumnSums<T> {
  using R = Real<T>;
  Lanes<R> straight = Lanes<R>::zero(), crossed = Lanes<R>::zero();

  [[gnu::always_inline]] void add(Lanes<T> a, Lanes<T> x) {
    const Lanes<R> parts = pinned(a.parts);
    straight = pinned(straight + parts * x.parts);
    crossed = pinned(crossed + parts * simd::swap_parts(x.parts));
  }
  template <bool conj>
  [[gnu::always_inline]] T total() const {
    const T s = simd::sum_complex_lanes<T>({straight}), c = simd::sum_complex_lanes<T>({crossed});
    if constexpr (conj) return {s.re + s.im, c.re - c.im};
    return {s.re - s.im, c.re + c.im};
  }
};

enum class Rows { ascending, descending };

// total[c] = column[c] . x over n rows, or with conjugated columns. A register's lanes are partial
// sums; the rows are taken in the given direction, those that fill no register last when ascending,
// first when descending.
template <bool conj, Rows rows, int width, class T>
[[gnu::always_inline]] inline void dot_group(int n, const T* const (&column)[width], const T* x,
                                             T (&total)[width]) {
  constexpr int lanes = Lanes<T>::count;
  if constexpr (width == 1 && !is_complex<T>)  // bidiagonal and tridiagonal bands
    if (n <= 2) {
      total[0] = n < 1 ? 0 : column[0][0] * x[0];
      if (n == 2) total[0] += column[0][1] * x[1];
      return;
    }
  ColumnSums<T> sums[width];
  const auto add = [&](int i, auto load) __attribute__((always_inline)) {
    const Lanes<T> xi = pinned(load(x + i));
    unrolled<width>([&](auto c)
                        __attribute__((always_inline)) { sums[c].add(load(column[c] + i), xi); });
  };
  const auto all = [](const T* p) __attribute__((always_inline)) { return Lanes<T>::load(p); };
  const auto first = [](const T* p) __attribute__((always_inline)) {
    return Lanes<T>::load_first(p);
  };
  if constexpr (rows == Rows::ascending) {
    int i = 0;
    for (; i + lanes <= n; i += lanes) add(i, all);
    if constexpr (lanes > 1)
      for (; i < n; ++i) add(i, first);
  } else {
    int i = n;
    if constexpr (lanes > 1)
      while (i % lanes != 0) add(--i, first);
    while ((i -= lanes) >= 0) add(i, all);
  }
  unrolled<width>([&](auto c) __attribute__((always_inline)) {
    total[c] = sums[c].template total<conj>();
  });
}

}  // namespace jex::blas
