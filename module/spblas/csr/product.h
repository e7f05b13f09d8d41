// Products: y := y + alpha op(A) x, row by row, for a vector or for groups of columns.
//
// With s the sum of a row's row parts and t = alpha x(i), alpha enters in one of two ways:
//
//   Alpha::sum     y(i) := s alpha + y(i)
//   Alpha::terms   y(i) := y(i) + (a alpha) x(j) + ...        one chain that begins at y(i)
//
// Mirror parts are (a alpha) x(i), or a t where the rule says so and alpha multiplies sums. A unit
// diagonal adds t to y(i) when the row is done.
#pragma once

#include "simd/gather.h"
#include "spblas/ahead.h"
#include "spblas/csr/matrix.h"
#include "spblas/entry_rule.h"
#include "spblas/sums.h"

#include <stdlib.h>

#include <algorithm>

namespace jex::spblas::csr {

enum class Alpha { sum, terms };

// How a product adds: parts of the rule, order of the row sum, place of alpha.
struct Method {
  EntryRule rule;
  Order order;
  Alpha alpha;
};

// Vectors: general and triangular rows in partial sums; rows that also write mirror images, and
// diagonals, in a chain.
consteval Method vector_method(EntryRule rule) {
  const bool mirrors = rule.mirror != Part::none;
  return {rule, mirrors || rule.side == Side::diagonal ? Order::chain : Order::four,
          rule.side == Side::diagonal ? Alpha::terms : Alpha::sum};
}

// Columns: one chain of terms down the columns, partial sums along rows.
consteval Method matrix_method(EntryRule rule, Layout layout) {
  if (layout == Layout::column_major || rule.side == Side::diagonal)
    return {rule, Order::chain, Alpha::terms};
  return {rule, Order::four, Alpha::sum};
}

// The sum of a row all of whose entries count. Of one vector of real numbers several entries go in
// a register: their values lie side by side.
template <class Group, Part part, Layout layout, class T>
[[gnu::always_inline]] inline typename Group::Value sum_of_all(const Rows<T>& a, Entry first,
                                                               Entry last, Dense<const T> x) {
  const auto term = [&](Entry k) __attribute__((always_inline)) {
    return Group::load(at_row<layout>(x.p, *k, x.ld), x.ld) *
           Group::template factor<part == Part::conj>(a.value(k));
  };
  if constexpr (std::is_same_v<Group, One<T>> && layout == Layout::column_major && !is_complex<T>)
    return full_row_sum_in_lanes<T>(
        first, last,
        [&](Entry k) __attribute__((always_inline)) {
          return simd::gather(x.p, k) * Lanes<T>::load(&a.value(k));
        },
        term);
  else
    return full_row_sum(first, last, Group::zero(), term);
}

// Row number i with the entries first .. last - 1, for the group of columns at x and y.
template <class Group, Method method, Layout layout, class T>
[[gnu::always_inline]] inline void multiply_row(const Rows<T>& a, int i, Entry first, Entry last,
                                                bool strict, bool unit, const T& alpha,
                                                Dense<const T> x, Dense<T> y) {
  using Value = typename Group::Value;
  using Factor = typename Group::Factor;
  constexpr EntryRule rule = method.rule;
  constexpr bool has_row = rule.row != Part::none, has_mirror = rule.mirror != Part::none;
  constexpr bool is_triangle = rule.side == Side::lower || rule.side == Side::upper;
  constexpr Order order = has_row ? method.order : Order::chain;
  constexpr bool in_terms = method.alpha == Alpha::terms;
  constexpr bool scales_vector = rule.scaled_vector && !in_terms;
  const Factor scale = Group::template factor<false>(alpha);
  const auto load = [=](int r) __attribute__((always_inline)) {
    return Group::load(at_row<layout>(x.p, r, x.ld), x.ld);
  };
  const auto place = [=](int r) __attribute__((always_inline)) {
    return at_row<layout>(y.p, r, y.ld);
  };
  const auto row_term = [&](Entry k, Value xj) __attribute__((always_inline)) {
    Factor f = Group::template factor<rule.row == Part::conj>(a.value(k));
    if constexpr (in_terms) f = Group::scaled(f, scale);
    return xj * f;
  };
  Value xi, mirrored;
  if constexpr (has_mirror) {
    mirrored = xi = load(i);
    if constexpr (scales_vector) mirrored = xi * scale;
  }
  const auto add_mirror = [&](Entry k) __attribute__((always_inline)) {
    Factor f = Group::template factor<rule.mirror == Part::conj>(a.value(k));
    if constexpr (!scales_vector) f = Group::scaled(f, scale);
    T* const to = place(*k);
    const Value old = Group::load(to, y.ld);
    Group::store(to, y.ld, rule.negative_mirror ? old - mirrored * f : old + mirrored * f);
  };
  const auto add = [&](Entry k, Value & sum) __attribute__((always_inline)) {
    const int j = *k;
    if constexpr (is_triangle) {
      if (beside<rule.side>(i, j)) {
        if constexpr (has_row) sum = sum + row_term(k, load(j));
        if constexpr (has_mirror) add_mirror(k);
        return;
      }
      if (strict) return;
    }
    if (rule.side != Side::any && j != i) return;
    if constexpr (has_row && has_mirror)
      sum = sum + row_term(k, xi);
    else if constexpr (has_row)
      sum = sum + row_term(k, load(pinned(j)));  // else the address of x(i) would be kept for it
    else
      add_mirror(k);
  };
  Value sum = has_row && in_terms ? Group::load(place(i), y.ld) : Group::zero();
  if constexpr (rule.side == Side::any && order == Order::four)
    sum = sum_of_all<Group, rule.row, layout>(a, first, last, x);
  else
    sum = row_sum<order>(first, last, sum, add);
  T* const yi = place(pinned(i));  // not kept, in a register of the loop, from before
  if constexpr (!has_row) {
    if (!is_triangle || !unit) return;
    sum = Group::load(yi, y.ld);
  } else if constexpr (!in_terms) {
    sum = sum * scale + Group::load(yi, y.ld);
  }
  if constexpr (is_triangle)
    if (unit) sum = sum + load(i) * scale;
  Group::store(yi, y.ld, sum);
}

// For the row of n entries, or a few more, that begins with entry k.
template <int n, class T>
[[gnu::always_inline]] inline void ask_ahead(const Rows<T>& a, Entry k) {
  ask_for_indices<n>(k);
  ask_for_values<n>(a.place_of_value(k));
}

// Rows number first .. last - 1. x and y are those of number 0.
template <class T, Method method>
[[gnu::noinline]] void multiply_rows(const Rows<T>& rows_of, int first, int last, bool strict,
                                     bool unit, const T& scale, const T* x, T* y) {
  const Rows<T> a = rows_of;
  const T alpha = scale;
  // Mirrored rows with a unit diagonal go twice, by the other kernel.
  constexpr bool both = method.rule.row != Part::none && method.rule.mirror != Part::none;
  const auto rows = [&](auto classic) __attribute__((always_inline)) {
    Entry k = a.first(first);
    for (int i = first; i < last; i = pinned(i + 1)) {
      if constexpr (!classic) k = a.first(i);
      const Entry row_end = pinned(a.last(i));
      if constexpr (both) ask_ahead<1>(a, k);  // few entries a row, and y goes by as well
      multiply_row<One<T>, method, Layout::column_major>(a, i, k, row_end, !both && strict,
                                                         !both && unit, alpha, {x, 0}, {y, 0});
      k = row_end;
    }
  };
  // In the classic form of three arrays each row begins where the one before has ended.
  if (a.end == a.begin + 1)
    rows(std::true_type());
  else
    rows(std::false_type());
}

// Rows that follow each other with the same number of entries, at most so many, need no look at
// where each ends and no branch that depends on it: they go together.
inline constexpr int longest_alike = 12;
inline constexpr int most_together = 512;

// How many rows from number i on, up to end, have as many entries as row i, in the classic form; 0
// if there are not so few. Of rows of all lengths one branch tells.
template <int fewest, class T>
[[gnu::always_inline]] inline int rows_alike(const Rows<T>& a, int i, int end) {
  if (end - i < fewest) return 0;
  const jex_int *const begins = a.begin + i, *const ends = a.end + i;
  const int n = ends[0] - begins[0], most = std::min(end - i, most_together);
  if (n < 1 || n > longest_alike) return 0;
  int differ = 0;
  for (int row = 1; row < fewest; ++row) differ |= ends[row] - begins[row] - n;
  if (differ != 0) return 0;
  int count = fewest;
  while (count < most && ends[count] - begins[count] == n) ++count;
  return count;
}

// Count rows of n entries each, from entry k on; y_end is the element behind the last one's.
template <class T, Part part, int n, bool asks>
[[gnu::always_inline]] inline void multiply_alike(const Rows<T>& a, Entry k, int count,
                                                  const T& alpha, const T* x, T* y_end) {
  using Group = One<T>;
  const auto scale = Group::template factor<false>(alpha);
  const auto term = [&](Entry k) __attribute__((always_inline)) {
    return Group::load(x + *k, 0) * Group::template factor<part == Part::conj>(a.value(k));
  };
  for (int i = -count; i < 0; i = pinned(i + 1)) {
    if constexpr (asks) ask_ahead<n>(a, k);
    const auto sum = full_row_sum<n>(k, Group::zero(), term);
    T* const yi = pinned(y_end + i);
    Group::store(yi, 0, sum * scale + Group::load(yi, 0));
    k = pinned(k + n);
  }
}

// The same with their number of entries as a constant, if it is one of shortest .. longest_alike.
template <class T, Part part, int shortest = 1>
[[gnu::always_inline]] inline void multiply_alike(const Rows<T>& a, Entry k, int n, int count,
                                                  bool asks, const T& alpha, const T* x, T* y_end) {
  if (n != shortest) {
    if constexpr (shortest < longest_alike)
      multiply_alike<T, part, shortest + 1>(a, k, n, count, asks, alpha, x, y_end);
  } else if (asks) {
    multiply_alike<T, part, shortest, true>(a, k, count, alpha, x, y_end);
  } else {
    multiply_alike<T, part, shortest, false>(a, k, count, alpha, x, y_end);
  }
}

// Rows first .. last - 1, counted from 0. x and y are those of number 0.
template <class T, Method method>
[[gnu::noinline]] void multiply_vector(const Matrix<T>& matrix, int first, int last, bool strict,
                                       bool unit, const T& scale, const T* x, T* y) {
  const Rows<T> a(matrix);
  const int end = last + a.base;
  int i = first + a.base;
  if constexpr (method.rule.side == Side::any && method.order == Order::four) {
    const bool asks = a.last(end - 1) - a.first(i) > large / int(sizeof(T));
    while (a.end == a.begin + 1 && i < end) {
      int next = i;
      if (const int count = rows_alike<2>(a, i, end)) {
        next += count;
        multiply_alike<T, method.rule.row>(a, a.first(i), a.last(i) - a.first(i), count, asks,
                                           scale, x, y + next);
      } else {
        // The longer none are found, the more rows go by until the next look.
        do next = std::min(i + std::max(4, 2 * (next - i)), end);
        while (next < end && next - i < most_together && !rows_alike<4>(a, next, end));
        multiply_rows<T, method>(a, i, next, strict, unit, scale, x, y);
      }
      i = next;
    }
  }
  if (i < end) multiply_rows<T, method>(a, i, end, strict, unit, scale, x, y);
}

// Registers of columns at once: sums, operands of mirror parts, a factor and a product have to find
// place in eight.
template <class T>
consteval int registers_at_once(Method method) {
  const int sums = method.order == Order::four ? 4 : method.rule.row != Part::none;
  const int each = sums + (method.rule.mirror != Part::none);
  const int most = (is_complex<T> ? 4 : 5) / each;
  return most > 4 ? 4 : most > 0 ? most : 1;
}

// Does a row read far from where the row before has read? Then every element of x is a miss, and
// those of one column at a time find more of its lines and pages in the caches than those of many.
template <class T>
inline bool is_scattered(const Rows<T>& a, int m) {
  constexpr int samples = 32, far = (1 << 18) / sizeof(T);
  int looked_at = 0, found = 0;
  for (int s = 0; m > 1 && s < samples; ++s) {
    const int i = a.base + int(int64_t(m - 1) * s / samples);
    const Entry p = a.first(i), q = a.first(i + 1);
    const int shared = std::min(a.last(i) - p, a.last(i + 1) - q);
    if (shared < 1) continue;
    ++looked_at;
    found += abs(p[shared / 2] - q[shared / 2]) > far;
  }
  return 2 * found > looked_at;
}

// Columns c1 .. c2 - 1 of b and c, all m rows, several columns at once.
template <class T, Method method, Layout layout>
[[gnu::noinline]] void multiply_columns(const Matrix<T>& matrix, int c1, int c2, int m, bool strict,
                                        bool unit, const T& scale, Dense<const T> b, Dense<T> c) {
  const Rows<T> a(matrix);
  const T alpha = scale;
  const auto row = [&]<Method row_method>(int i, Entry first, Entry last)
      __attribute__((always_inline)) {
    for_columns<T, registers_at_once<T>(row_method), layout>(
        c1, c2, [&](auto group, int j) __attribute__((always_inline)) {
          multiply_row<decltype(group), row_method, layout>(
              a, i, first, last, strict, unit, alpha, {at_column<layout>(b.p, j, b.ld), b.ld},
              {at_column<layout>(c.p, j, c.ld), c.ld});
        });
  };
  // Partial sums of one term each add up like a chain, which leaves registers for more columns.
  constexpr bool is_divided = method.order == Order::four && method.rule.mirror == Part::none;
  constexpr Method chain = {method.rule, Order::chain, method.alpha};
  for (int i = a.base; i < m + a.base; ++i) {
    const Entry first = a.first(i), last = a.last(i);
    if (is_divided && last - first < 8)
      row.template operator()<is_divided ? chain : method>(i, first, last);
    else
      row.template operator()<method>(i, first, last);
  }
}

// The same. One column of a general matrix, and scattered ones, go by themselves.
template <class T, Method method, Layout layout>
[[gnu::noinline]] void multiply_matrix(const Matrix<T>& matrix, int c1, int c2, int m, bool strict,
                                       bool unit, const T& alpha, Dense<const T> b, Dense<T> c) {
  if constexpr (layout == Layout::column_major && method.rule.side == Side::any &&
                method.rule.mirror == Part::none) {
    const Rows<T> a(matrix);
    if (c2 - c1 == 1 || is_scattered(a, m)) {
      for (int j = c1; j < c2; ++j)
        multiply_rows<T, method>(a, a.base, m + a.base, strict, unit, alpha, b.p + j * b.ld,
                                 c.p + j * c.ld);
      return;
    }
  }
  multiply_columns<T, method, layout>(matrix, c1, c2, m, strict, unit, alpha, b, c);
}

}  // namespace jex::spblas::csr
