// x := op(A) x for a triangle in any storage, without blocking.
#pragma once

#include "blas/level2/triangle.h"

namespace jex::blas {

// v := corner v, each element before those that it is made from.
template <Uplo uplo, Op op, Diag diag, class T, int width>
[[gnu::always_inline]] inline void multiply_corner(const Group<T, width>& group, T (&v)[width]) {
  constexpr bool lower = is_lower(uplo, op);
  unrolled<width>([&](auto step) __attribute__((always_inline)) {
    constexpr int r = lower ? width - 1 - step : step;
    if constexpr (diag == Diag::non_unit) v[r] = multiply(group.template corner<op, r, r>(), v[r]);
    unrolled<width - 1 - step>([&](auto after) __attribute__((always_inline)) {
      constexpr int c = lower ? r - 1 - after : r + 1 + after;
      v[r] = add(v[r], multiply(group.template corner<op, r, c>(), v[c]));
    });
  });
}

// The columns from j on, when x(beside) still holds what they have to multiply.
template <Op op, Diag diag, int width, template <Uplo, class> class Storage, Uplo uplo, class T,
          class X>
[[gnu::always_inline]] inline void multiply_group(Storage<uplo, const T> a, int j, X x) {
  const Group<T, width> group(a, j);
  T v[width], t[width];
  unrolled<width>([&](auto c) __attribute__((always_inline)) { v[c] = x[j + c]; });
  if constexpr (op == Op::none) update_beside(a, group, x, v);
  multiply_corner<uplo, op, diag>(group, v);
  if constexpr (op != Op::none) {
    dot_beside<op>(a, group, x, t);
    unrolled<width>([&](auto c) __attribute__((always_inline)) { v[c] = add(v[c], t[c]); });
  }
  unrolled<width>([&](auto c) __attribute__((always_inline)) { x[j + c] = v[c]; });
}

// The walk starts where op(A) has its full rows. Columns that fill no group end it; where corners
// are not stored in full, or x is spread, there are no groups.
template <Op op, Diag diag, template <Uplo, class> class Storage, Uplo uplo, class T, class X>
[[gnu::always_inline]] inline void multiply_triangle(Storage<uplo, const T> a, X x) {
  constexpr int width = X::unit ? group_width<T> : 1;
  const bool grouped = width > 1 && holds<width - 1>(a);
  if constexpr (is_lower(uplo, op)) {
    int j = a.n;
    if (grouped)
      while (j >= width) multiply_group<op, diag, width>(a, j -= width, x);
    while (j > 0) multiply_group<op, diag, 1>(a, --j, x);
  } else {
    int j = 0;
    if (grouped)
      for (; j + width <= a.n; j += width) multiply_group<op, diag, width>(a, j, x);
    for (; j < a.n; ++j) multiply_group<op, diag, 1>(a, j, x);
  }
}

}  // namespace jex::blas
