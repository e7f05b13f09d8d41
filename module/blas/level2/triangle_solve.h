// x := inverse(op(A)) x for a triangle in any storage, without blocking.
//
// Every unknown waits for the one before it: a product, a difference and a division. This chain,
// not the number of operations, is the time of a small solve. So the unknowns pass from corner to
// corner in registers: the square between two neighbouring corners is subtracted element by
// element, and only what lies farther off goes through memory, while the next corner is being
// solved.
//
//   A itself     c                      c   corner, width x width
//                s c                    s   square: entries of op(A) between a group and the next
//                u s c                  u   updated by the group that is solved,
//                u u s c                    or, transposed, the dot products of the group to solve
#pragma once

#include "blas/level2/triangle.h"

namespace jex::blas {

// v := inverse(corner) v, from the first or from the last element. solved<c>() runs when v[c] is
// known and has been subtracted from the rest of v.
template <Uplo uplo, Op op, Diag diag, class T, int width, class Solved>
[[gnu::always_inline]] inline void solve_corner(const Group<T, width>& group, T (&v)[width],
                                                Solved solved) {
  constexpr bool lower = is_lower(uplo, op);
  unrolled<width>([&](auto step) __attribute__((always_inline)) {
    constexpr int c = lower ? step : width - 1 - step;
    if constexpr (diag == Diag::non_unit) v[c] = quotient(v[c], group.template corner<op, c, c>());
    unrolled<width - 1 - step>([&](auto after) __attribute__((always_inline)) {
      constexpr int r = lower ? c + 1 + after : c - 1 - after;
      v[r] = difference(v[r], multiply(group.template corner<op, r, c>(), v[c]));
    });
    solved.template operator()<c>();
  });
}

// v -= column c of a square times known. The group holds the square's columns and other is its
// first row; with A transposed, the rows of op(A), and other is its first column.
template <Op op, int c, class T, int width>
[[gnu::always_inline]] inline void subtract_square_column(const Group<T, width>& group, int other,
                                                          T known, T (&v)[width]) {
  unrolled<width>([&](auto r) __attribute__((always_inline)) {
    const T entry =
        op == Op::none ? group.column[c][other + r] : entry_of<op>(group.column[r][other + c]);
    v[r] = difference(v[r], multiply(entry, known));
  });
}

// One column by itself.
template <Op op, Diag diag, template <Uplo, class> class Storage, Uplo uplo, class T, class X>
[[gnu::always_inline]] inline void solve_column(Storage<uplo, const T> a, int j, X x) {
  const Group<T, 1> group(a, j);
  T t[1] = {};
  if constexpr (op != Op::none) dot_beside<op>(a, group, x, t);
  T v = op == Op::none ? x[j] : difference(x[j], t[0]);
  if constexpr (diag == Diag::non_unit) v = quotient(v, group.template corner<op, 0, 0>());
  x[j] = v;
  t[0] = negated(v);
  if constexpr (op == Op::none) update_beside(a, group, x, t);
}

// The groups of a walk in steps of width, the first at column j; A itself.
template <Diag diag, int width, template <Uplo, class> class Storage, Uplo uplo, class T, class X>
[[gnu::always_inline]] inline void solve_groups(Storage<uplo, const T> a, int j, int groups, X x) {
  constexpr int step = uplo == Uplo::lower ? width : -width;
  T v[width];
  unrolled<width>([&](auto c) __attribute__((always_inline)) { v[c] = x[j + c]; });
  for (; groups > 1; --groups, j += step) {
    const Group<T, width> group(a, j);
    T next[width], t[width];
    unrolled<width>([&](auto c) __attribute__((always_inline)) { next[c] = x[j + step + c]; });
    solve_corner<uplo, Op::none, diag>(
        group, v, [&]<int c>() __attribute__((always_inline)) {
          subtract_square_column<Op::none, c>(group, j + step, v[c], next);
          x[j + c] = v[c];
          t[c] = negated(v[c]);
        });
    update_beside(a, group, x, t, width);
    unrolled<width>([&](auto c) __attribute__((always_inline)) { v[c] = next[c]; });
  }
  const Group<T, width> last(a, j);
  T t[width];
  solve_corner<uplo, Op::none, diag>(
      last, v, [&]<int c>() __attribute__((always_inline)) {
        x[j + c] = v[c];
        t[c] = negated(v[c]);
      });
  update_beside(a, last, x, t);
}

// The same for A transposed: the dot products of the next group, but for the rows of this one, come
// before this one is solved.
template <Op op, Diag diag, int width, template <Uplo, class> class Storage, Uplo uplo, class T,
          class X>
[[gnu::always_inline]] inline void solve_transposed_groups(Storage<uplo, const T> a, int j,
                                                           int groups, X x) {
  constexpr int step = uplo == Uplo::upper ? width : -width;
  T v[width];
  unrolled<width>([&](auto c) __attribute__((always_inline)) { v[c] = x[j + c]; });
  for (; groups > 1; --groups, j += step) {
    const Group<T, width> group(a, j), following(a, j + step);
    T next[width], t[width];
    dot_beside<op>(a, following, x, t, width);
    unrolled<width>([&](auto c) __attribute__((always_inline)) {
      next[c] = difference(x[j + step + c], t[c]);
    });
    solve_corner<uplo, op, diag>(
        group, v, [&]<int c>() __attribute__((always_inline)) {
          subtract_square_column<op, c>(following, j, v[c], next);
          x[j + c] = v[c];
        });
    unrolled<width>([&](auto c) __attribute__((always_inline)) { v[c] = next[c]; });
  }
  const Group<T, width> last(a, j);
  solve_corner<uplo, op, diag>(
      last, v, [&]<int c>() __attribute__((always_inline)) { x[j + c] = v[c]; });
}

// The walk starts where one unknown stands alone. Columns that fill no group end it; where corners
// and squares are not stored in full, or x is spread, there are no groups.
template <Op op, Diag diag, template <Uplo, class> class Storage, Uplo uplo, class T, class X>
[[gnu::always_inline]] inline void solve_triangle(Storage<uplo, const T> a, X x) {
  constexpr int width = X::unit ? group_width<T> : 1;
  constexpr bool forward = is_lower(uplo, op);
  int done = 0;
  if constexpr (width > 1)
    if (a.n >= width && holds<2 * width - 1>(a)) {
      const int first = forward ? 0 : a.n - width;
      if constexpr (op == Op::none)
        solve_groups<diag, width>(a, first, a.n / width, x);
      else
        solve_transposed_groups<op, diag, width>(a, first, a.n / width, x);
      done = a.n / width * width;
    }
  for (; done < a.n; ++done) solve_column<op, diag>(a, forward ? done : a.n - 1 - done, x);
}

}  // namespace jex::blas
