// Triangular solves, in place: y := inverse(op(A)) y.
//
//   A, conj(A)   y(i) := (y(i) - s) / d     s: the sum of a y(j) over the entries beside the
//   diagonal A', A^H      y(i) := y(i) / d, then y(j) := a (0 - y(i)) + y(j) for those entries
//
// Lower and A, upper and A' walk from the first row to the last, the others back. s is a chain in a
// lower triangle and has four partial sums in an upper one. The transposed lower solve takes a
// row's entries from the diagonal back to the first.
//
// The columns of a row ascend. Where the diagonal should stand, the entry that stands there is the
// divisor; a row that ends before has the divisor 0. A unit diagonal has no divisor, and stored
// entries (i, i) are passed over wherever they stand.
#pragma once

#include "blas/level1/scalar.h"
#include "serv/memory.h"
#include "spblas/csr/matrix.h"
#include "spblas/entry_rule.h"
#include "spblas/sums.h"

#include <algorithm>

namespace jex::spblas::csr {

using blas::difference;
using blas::quotient;

// Entries of row i: those beside the diagonal on the side of the triangle, and the divisor, which
// is no entry if it reaches the end.
struct SolveRow {
  Entry first, last, divisor, end;
};

// The untransposed solves look from the row's first entry, the transposed lower one from its last.
template <Uplo uplo, bool transposed, class T>
[[gnu::always_inline]] inline SolveRow find_row(const Rows<T>& a, int i, bool unit) {
  const Entry begin = a.first(i), end = a.last(i);
  if constexpr (uplo == Uplo::lower && transposed) {
    Entry p = end - 1;
    while (p >= begin && *p > i) --p;
    if (unit) return {begin, p + 1, end, end};
    return {begin, p, p < begin ? end : p, end};
  } else if constexpr (uplo == Uplo::lower) {
    // A row without an upper part ends at its diagonal: no need to look for it.
    Entry p = end - begin > 1 && end[-1] == i && end[-2] < i ? end - !unit : begin;
    while (p < end && *p < i + unit) ++p;
    return {begin, p, unit ? end : p, end};
  } else {
    Entry p = begin;
    while (p < end && *p < i) ++p;
    if (unit) return {p + (p < end && *p == i), end, end, end};
    return {p + 1, end, p, end};
  }
}

template <bool conj, class T>
inline T divisor(const Rows<T>& a, const SolveRow& r) {
  T d = {};
  if (r.divisor < r.end) d = a.value(r.divisor);
  return blas::conjugate_if<conj>(d);
}

// The sum s. The unknown of the row before, where a lower row ends with it, is taken from `before`:
// it would else have to come back from memory, which is most of the time of such a solve.
template <class Group, Uplo uplo, bool conj, Layout layout, class T>
[[gnu::always_inline]] inline auto solved_part(const Rows<T>& a, const SolveRow& r, int i,
                                               bool unit, const T* y, ptrdiff_t ld,
                                               const typename Group::Value* before = nullptr) {
  using Value = typename Group::Value;
  constexpr Order order = uplo == Uplo::lower ? Order::chain : Order::four;
  const bool carries = before && r.last > r.first && r.last[-1] == i - 1;
  const auto value = [&](Entry k) __attribute__((always_inline)) {
    return Group::template factor<conj>(a.value(k));
  };
  const auto term = [&](Entry k) __attribute__((always_inline)) {
    return Group::load(at_row<layout>(y, *k, ld), ld) * value(k);
  };
  Value sum;
  if (unit) {
    sum = row_sum<order>(
        r.first, r.last - carries,
        Group::zero(), [&](Entry k, Value & sum) __attribute__((always_inline)) {
          if (beside<side(uplo)>(i, *k)) sum = sum + term(k);
        });
  } else if constexpr (order == Order::four) {
    sum = full_row_sum(r.first, r.last, Group::zero(), term);
  } else {
    sum = full_row_chain(r.first, r.last - carries, Group::zero(), term);
  }
  return carries ? sum + *before * value(r.last - 1) : sum;
}

// Adds a times minus the unknown to the rows that wait for it.
template <class Group, Uplo uplo, bool conj, Layout layout, class T>
[[gnu::always_inline]] inline void pass_on(const Rows<T>& a, const SolveRow& r, int i, bool unit,
                                           typename Group::Value minus, T* y, ptrdiff_t ld) {
  const auto update = [&](Entry k) __attribute__((always_inline)) {
    const int j = *k;
    if (unit && !beside<side(uplo)>(i, j)) return;
    T* const to = at_row<layout>(y, j, ld);
    Group::store(to, ld, minus * Group::template factor<conj>(a.value(k)) + Group::load(to, ld));
  };
  if constexpr (uplo == Uplo::lower)
    for (Entry k = r.last; k > r.first;) update(--k);
  else
    for (Entry k = r.first; k < r.last; ++k) update(k);
}

// Rows in the order of the solve. Those of A itself go in blocks, of 10,000 rows forward and of
// 2,000 back, the last block taking what is left.
template <Uplo uplo, bool transposed, class Row>
[[gnu::always_inline]] inline void for_solve_rows(int m, Row row) {
  constexpr bool forward = (uplo == Uplo::lower) != transposed;
  const int size = transposed ? m : std::min(m, forward ? 10000 : 2000);
  const int blocks = m / size;
  for (int n = 0; n < blocks; ++n) {
    const int block = forward ? n : blocks - 1 - n;
    const int begin = block * size, end = block == blocks - 1 ? m : begin + size;
    if constexpr (forward)
      for (int i = begin; i < end; ++i) row(i);
    else
      for (int i = end; i-- > begin;) row(i);
  }
}

// One column; y is that of number 0.
template <class T, Uplo uplo, bool transposed, bool conj, Layout layout>
[[gnu::noinline]] void solve_vector(const Matrix<T>& matrix, int m, bool unit, T* y, ptrdiff_t ld) {
  using Group = One<T>;
  const Rows<T> a(matrix);
  typename Group::Value before = Group::zero();
  for_solve_rows<uplo, transposed>(
      m, [&](int row) __attribute__((always_inline)) {
        const int i = row + a.base;
        const SolveRow r = find_row<uplo, transposed>(a, i, unit);
        T* const place = at_row<layout>(y, i, ld);
        T yi = *place;
        if constexpr (!transposed) {
          T sum;
          Group::store(&sum, 0,
                       solved_part<Group, uplo, conj, layout>(
                           a, r, i, unit, y, ld, uplo == Uplo::lower ? &before : nullptr));
          yi = difference(yi, sum);
        }
        if (!unit) yi = quotient(yi, divisor<conj>(a, r));
        *place = yi;
        before = Group::load(&yi, 0);
        if constexpr (transposed)
          pass_on<Group, uplo, conj, layout>(a, r, i, unit, Group::zero() - before, y, ld);
      });
}

// Columns 0 .. count - 1 row by row. The scratch holds, for each column of a row, its sum s, or
// minus its unknown.
template <class T, Uplo uplo, bool transposed, bool conj, Layout layout>
[[gnu::noinline]] void solve_columns(const Matrix<T>& matrix, int m, int count, bool unit, T* c,
                                     ptrdiff_t ld, T* scratch) {
  constexpr int most = uplo == Uplo::upper && !transposed ? 1 : is_complex<T> ? 2 : 4;
  const Rows<T> a(matrix);
  for_solve_rows<uplo, transposed>(
      m, [&](int row) __attribute__((always_inline)) {
        const int i = row + a.base;
        const SolveRow r = find_row<uplo, transposed>(a, i, unit);
        const T d = divisor<conj>(a, r);
        T* const ci = at_row<layout>(c, i, ld);
        if constexpr (!transposed)
          for_columns<T, most, layout>(
              0, count, [&](auto group, int j) __attribute__((always_inline)) {
                using Group = decltype(group);
                const auto sum = solved_part<Group, uplo, conj, layout>(
                    a, r, i, unit, at_column<layout>(c, j, ld), ld);
                Group::SideBySide::store(scratch + j, 0, sum);
              });
        for (int j = 0; j < count; ++j) {
          T& y = *at_column<layout>(ci, j, ld);
          if constexpr (!transposed) y = difference(y, scratch[j]);
          if (!unit) y = quotient(y, d);
          if constexpr (transposed) scratch[j] = difference(T{}, y);
        }
        if constexpr (transposed)
          for_columns<T, most, layout>(
              0, count, [&](auto group, int j) __attribute__((always_inline)) {
                using Group = decltype(group);
                pass_on<Group, uplo, conj, layout>(a, r, i, unit,
                                                   Group::SideBySide::load(scratch + j, 0),
                                                   at_column<layout>(c, j, ld), ld);
              });
      });
}

// Columns 0 .. count - 1 of the n of C, with scratch for n elements or, without, one by one.
template <class T, Uplo uplo, bool transposed, bool conj, Layout layout>
[[gnu::noinline]] void solve_all(const Matrix<T>& a, int m, int n, int count, bool unit, T* c,
                                 ptrdiff_t ld) {
  T* const scratch = static_cast<T*>(serv::allocate(std::max(n, count) * sizeof(T), 128));
  if (scratch)
    solve_columns<T, uplo, transposed, conj, layout>(a, m, count, unit, c, ld, scratch);
  else
    for (int j = 0; j < count; ++j)
      solve_vector<T, uplo, transposed, conj, layout>(a, m, unit, at_column<layout>(c, j, ld), ld);
  serv::deallocate(scratch);
}

}  // namespace jex::spblas::csr
