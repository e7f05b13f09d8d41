// Triangular and diagonal solves, in place: y := inverse(op(A)) y.
//
//   y(i) := (y(i) - s) / d     s: the sum of a y(j) over the entries beside the diagonal, in four
//                              partial sums; a unit diagonal has no divisor
//
// Lower triangles from the first row to the last, upper ones back. Entries of a row are those of
// the list, in its order. Without memory to group them, every row looks through the whole list; the
// sums are the same.
#pragma once

#include "spblas/coo/group.h"

namespace jex::spblas::coo {

// row(i), i from 0, in the order of the solve.
template <Side side, class Row>
[[gnu::always_inline]] inline void for_solve_rows(int m, Row row) {
  if constexpr (side == Side::upper)
    for (int i = m; i-- > 0;) row(i);
  else
    for (int i = 0; i < m; ++i) row(i);
}

// The unknown of a row from its right-hand side, its sum and its divisor.
template <class T>
[[gnu::always_inline]] inline T unknown(T y, T sum, bool unit, const T& d) {
  const T rest = blas::difference(y, sum);
  return unit ? rest : blas::quotient(rest, d);
}

// Columns 0 .. count - 1; c is the element of number 0.
template <class T, Side side, bool conj, Layout layout>
[[gnu::noinline]] void solve_grouped(const Matrix<T>& a, const Groups& groups, int m, int count,
                                     bool unit, T* c, ptrdiff_t ld) {
  for_solve_rows<side>(
      m, [&](int row) __attribute__((always_inline)) {
        const int i = row + a.base, diagonal = groups.diagonals[row];
        const Entry first = groups.entries + (row ? groups.ends[row - 1] : 0);
        const Entry last = groups.entries + groups.ends[row];
        T d = {};
        if (diagonal >= 0)
          d = a.values[diagonal];
        else if (diagonal == several_entries)
          d = scanned_diagonal(a, i);
        d = blas::conjugate_if<conj>(d);
        for_columns<T, 1, layout>(
            0, count, [&](auto group, int j) __attribute__((always_inline)) {
              using Group = decltype(group);
              T* const column = at_column<layout>(c, j, ld);
              const auto sum = full_row_sum(
                  first, last, Group::zero(), [&](Entry k) __attribute__((always_inline)) {
                    return Group::load(at_row<layout>(column, a.columns[*k], ld), ld) *
                           Group::template factor<conj>(a.values[*k]);
                  });
              T sums[Group::columns];
              Group::SideBySide::store(sums, 0, sum);
              T* const yi = at_row<layout>(column, i, ld);
              for (int n = 0; n < Group::columns; ++n) {
                T& y = *at_column<layout>(yi, n, ld);
                y = unknown(y, sums[n], unit, d);
              }
            });
      });
}

// One column, without any memory.
template <class T, Side side, bool conj, Layout layout>
[[gnu::noinline]] void solve_scanning(const Matrix<T>& a, int m, bool unit, T* c, ptrdiff_t ld) {
  using Group = One<T>;
  using Value = typename Group::Value;
  for_solve_rows<side>(m, [&](int row) {
    const int i = row + a.base;
    const auto for_row = [&](auto entry) {
      for (int k = 0; k < a.count; ++k)
        if (a.rows[k] == i && beside<side>(i, a.columns[k])) entry(k);
    };
    int count = 0;
    for_row([&](int) { ++count; });
    Value s[4] = {Group::zero(), Group::zero(), Group::zero(), Group::zero()};
    int place = 0;
    for_row([&](int k) {
      if (place == count / 4 * 4) s[0] = ((s[0] + s[1]) + s[2]) + s[3];
      Value& sum = place < count / 4 * 4 ? s[place % 4] : s[0];
      sum = sum + Group::load(at_row<layout>(c, a.columns[k], ld), ld) *
                      Group::template factor<conj>(a.values[k]);
      ++place;
    });
    if (count % 4 == 0) s[0] = ((s[0] + s[1]) + s[2]) + s[3];
    T sum;
    Group::store(&sum, 0, s[0]);
    T& y = *at_row<layout>(c, i, ld);
    y = unknown(y, sum, unit, blas::conjugate_if<conj>(scanned_diagonal(a, i)));
  });
}

// Columns 0 .. count - 1, grouped or, where memory is refused, one by one.
template <class T, Side side, bool conj, Layout layout>
[[gnu::noinline]] void solve_all(const Matrix<T>& a, int m, int count, bool unit, T* c,
                                 ptrdiff_t ld) {
  const Groups groups(m, a.count);
  if (groups.exist()) {
    group_by_row<side>(a, m, groups);
    solve_grouped<T, side, conj, layout>(a, groups, m, count, unit, c, ld);
  } else {
    for (int j = 0; j < count; ++j)
      solve_scanning<T, side, conj, layout>(a, m, unit, at_column<layout>(c, j, ld), ld);
  }
}

}  // namespace jex::spblas::coo
