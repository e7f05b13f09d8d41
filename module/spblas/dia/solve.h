// Triangular and diagonal solves, in place: y := inverse(op(A)) y. Distances ascend.
//
//   A, conj(A)   y(i) := y(i) - a y(i + distance) for the triangle's diagonals, then
//                y(i) := y(i) / d
//   A', A^H      y(i) := y(i) / d, then y(i + distance) := y(i + distance) - a y(i)
//
// The farthest diagonal comes first: the nearest one brings the unknown that is known last. Lower
// and A, upper and A' walk from the first row to the last, the others back. As many rows as
// the nearest diagonal is distant make a block: none of them depends on another, so each diagonal
// runs over all of them. Where that diagonal is so near that runs would be short, rows go one by
// one, several columns at once.
#pragma once

#include "spblas/dia/product.h"
#include "spblas/dia/scan.h"

namespace jex::spblas::dia {

template <class T>
struct Solver {
  const Matrix<T>& a;
  int far, step, count;  // diagonals far, far + step ... beside the main one
  const T* main;         // null if there is none
  int m, block;          // rows that do not depend on each other
  bool unit;
};

// What divides y(i); without a main diagonal 0.
template <bool conj, class T>
[[gnu::always_inline]] inline T divisor(const Solver<T>& s, int i) {
  return s.main ? blas::conjugate_if<conj>(s.main[i]) : blas::conjugate_if<conj>(T{});
}

// Rows of one block, for the column y.
template <bool transposed, bool conj, class T>
void solve_block(const Solver<T>& s, Range rows, T* y) {
  const Subtract<T, conj> operation;
  const auto divide = [&] {
    if (s.unit) return;
    if (s.main)
      divide_run<conj>(rows.length(), s.main + rows.begin, y + rows.begin);
    else
      for (int i = rows.begin; i < rows.end; ++i) y[i] = blas::quotient(y[i], T{});
  };
  if constexpr (transposed) divide();
  Runs<T, Subtract<T, conj>> runs(operation, y);
  for (int n = 0, d = s.far; n < s.count; ++n, d += s.step) {
    const int distance = s.a.distances[d];
    const Range r = rows_of(distance, rows, {0, s.m});
    if (r.is_empty()) continue;
    if constexpr (transposed)
      runs.add(r.begin + distance, r.end + distance, {y - distance, s.a.diagonal(d) - distance});
    else
      runs.add(r.begin, r.end, {y + distance, s.a.diagonal(d)});
  }
  runs.flush();
  if constexpr (!transposed) divide();
}

// One row, for the group of columns at c; the result is its unknowns. Those of the row before, if
// given, need not come back from memory where the nearest diagonal asks for them: they are what the
// division waits for.
template <class Group, bool transposed, bool conj, class T>
[[gnu::always_inline]] inline typename Group::Value solve_row(
    const Solver<T>& s, int i, T* c, ptrdiff_t ld, const typename Group::Value* before = nullptr) {
  using Value = typename Group::Value;
  const auto divide = [&](Value y) __attribute__((always_inline)) {
    if (s.unit) return y;
    const T d = divisor<conj>(s, i);
    T elements[Group::columns];
    Group::SideBySide::store(elements, 0, y);
    for (T& element : elements) element = blas::quotient(element, d);
    return Group::SideBySide::load(elements, 0);
  };
  // The farther a diagonal, the fewer rows it meets: those after the first that meets this row all
  // do.
  const jex_int *distance = s.a.distances + s.far, *const end = distance + s.count * s.step;
  const T* value = s.a.diagonal(s.far) + i;
  const ptrdiff_t next = s.step * s.a.ld;
  for (; distance != end && unsigned(i) + unsigned(*distance) >= unsigned(s.m); distance += s.step)
    value += next;
  const bool carries = !transposed && before && s.block == 1 && distance != end;
  Value yi = Group::load(c + i, ld);
  if constexpr (transposed) yi = divide(yi);
  for (const jex_int* const last = end - (carries ? s.step : 0); distance != last;
       distance += s.step, value += next) {
    T* const yj = c + i + *distance;
    const auto factor = Group::template factor<conj>(*value);
    if constexpr (transposed)
      Group::store(yj, ld, Group::load(yj, ld) - yi * factor);
    else
      yi = yi - Group::load(yj, ld) * factor;
  }
  if (carries) yi = yi - *before * Group::template factor<conj>(*value);
  if constexpr (!transposed) yi = divide(yi);
  Group::store(c + i, ld, yi);
  return yi;
}

// part(range) for 0 .. m - 1 in parts of size, forward or back.
template <bool forward, class Part>
[[gnu::always_inline]] inline void for_parts(Range all, int size, Part part) {
  if constexpr (forward)
    for (int i = all.begin; i < all.end; i += size) part(Range{i, std::min(all.end, i + size)});
  else
    for (int i = all.end; i > all.begin; i -= size) part(Range{std::max(all.begin, i - size), i});
}

// Columns 0 .. count - 1 of c.
template <class T, Uplo uplo, bool transposed, bool conj>
[[gnu::noinline]] void solve(const Solver<T>& s, int count, T* c, ptrdiff_t ld) {
  constexpr bool forward = (uplo == Uplo::lower) != transposed;
  if (s.block < shortest_wide_run && count == 1) {
    using Group = One<T>;
    typename Group::Value before = Group::zero();
    for_parts<forward>(
        {0, s.m}, 1, [&](Range row) __attribute__((always_inline)) {
          before = solve_row<Group, transposed, conj>(s, row.begin, c, ld, &before);
        });
    return;
  }
  if (s.block < shortest_wide_run) {
    for_parts<forward>(
        {0, s.m}, 1, [&](Range row) __attribute__((always_inline)) {
          for_columns<T, is_complex<T> ? 2 : 4, Layout::column_major>(
              0, count, [&](auto group, int j) __attribute__((always_inline)) {
                solve_row<decltype(group), transposed, conj>(s, row.begin, c + j * ld, ld);
              });
        });
    return;
  }
  // Columns take turns while the pieces of the diagonals are in the caches.
  const int blocks = std::max(1, stretch<T> / s.block);
  for_parts<forward>({0, s.m}, blocks * std::min(s.block, s.m), [&](Range rows) {
    for (int j = 0; j < count; ++j)
      for_parts<forward>(rows, s.block,
                         [&](Range block) { solve_block<transposed, conj>(s, block, c + j * ld); });
  });
}

// A diagonal matrix is a triangle without diagonals beside the main one.
template <class T>
inline Triangle main_diagonal(const Matrix<T>& a) {
  int place = 1;
  while (place <= a.count && a.distances[place - 1] != 0) ++place;
  return {1, 0, place, place <= a.count};
}

template <class T, Uplo uplo, bool transposed, bool conj>
void solve_columns(const Matrix<T>& a, int m, int count, bool unit, T* c, ptrdiff_t ld) {
  Triangle t;
  if constexpr (uplo == Uplo::none)
    t = main_diagonal(a);
  else
    t = find_triangle<uplo>(a.distances, a.count);
  constexpr bool lower = uplo != Uplo::upper;
  int block = m;
  if (t.last >= t.first) {
    const int nearest = a.distances[(lower ? t.last : t.first) - 1];
    if (!rows_of(nearest, {0, m}, {0, m}).is_empty()) block = lower ? -nearest : nearest;
  }
  solve<T, uplo, transposed, conj>(
      {a, (lower ? t.first : t.last) - 1, lower ? 1 : -1, t.last - t.first + 1,
       t.has_main ? a.diagonal(t.end - 1) : nullptr, m, block, unit},
      count, c, ld);
}

}  // namespace jex::spblas::dia
