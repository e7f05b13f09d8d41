// Products: y := y + alpha op(A) x, entry after entry, for a vector or for groups of columns.
//
//   row part      y(i) := y(i) + (a alpha) x(j)
//   mirror part   y(j) := y(j) + (a alpha) x(i), after the row part
//
// Neighbouring entries of one row keep y(i) in a register: through memory each would wait for the
// store of the one before, which takes longer than the sum.
//
// Of a long list, one piece after the other is asked for ahead.
#pragma once

#include "spblas/ahead.h"
#include "spblas/coo/matrix.h"
#include "spblas/entry_rule.h"

namespace jex::spblas::coo {

inline constexpr int piece = 32;  // entries: two cache lines of row or column numbers

template <class Group, EntryRule rule, Layout layout, class T>
[[gnu::always_inline]] inline void add_entries(const Entries<T>& a, bool strict, const T& alpha,
                                               Dense<const T> x, Dense<T> y) {
  using Value = typename Group::Value;
  using Factor = typename Group::Factor;
  constexpr bool has_mirror = rule.mirror != Part::none;
  constexpr bool is_triangle = rule.side == Side::lower || rule.side == Side::upper;
  const Factor scale = Group::template factor<false>(alpha);
  const auto load = [=](int r) __attribute__((always_inline)) {
    return Group::load(at_row<layout>(x.p, r, x.ld), x.ld);
  };
  const auto part = [&]<Part part>(Entry k) __attribute__((always_inline)) {
    return Group::scaled(Group::template factor<part == Part::conj>(a.value(k)), scale);
  };
  const auto place = [=](int r) __attribute__((always_inline)) {
    return at_row<layout>(y.p, r, y.ld);
  };
  Entry asked = a.last - a.first > large / int(sizeof(T)) ? a.first : a.last;
  for (Entry k = a.first; k < a.last;) {
    for (; asked <= k; asked += piece) {
      ask_for_indices<piece>(asked);
      ask_for_indices<piece>(&a.row(asked));
      ask_for_values<piece>(&a.value(asked));
    }
    // Pinned: the row is read anew, not kept on the stack from where it was compared.
    k = pinned(k);
    const int i = pinned(a.row(k));
    Value sum = Group::load(place(i), y.ld), xi;
    if constexpr (has_mirror) xi = load(i);
    const auto add = [&](Entry k) __attribute__((always_inline)) {
      const int j = *k;
      const bool is_beside = is_triangle && beside<rule.side>(i, j);
      if (rule.side != Side::any && !is_beside && (j != i || strict)) return;
      if (has_mirror && !is_beside) {
        sum = sum + xi * part.template operator()<rule.row>(k);
        return;
      }
      sum = sum + load(j) * part.template operator()<rule.row>(k);
      if constexpr (has_mirror) {
        T* const to = place(j);
        const Value mirror = xi * part.template operator()<rule.mirror>(k);
        const Value old = Group::load(to, y.ld);
        Group::store(to, y.ld, rule.negative_mirror ? old - mirror : old + mirror);
      }
    };
    do {
      add(k);
      k = pinned(k + 1);
      if (k >= a.last) [[unlikely]]
        break;
    } while (a.row(k) == i);
    Group::store(place(pinned(i)), y.ld, sum);  // an address that the loop need not keep
  }
}

// Entries first .. last - 1. x and y are those of number 0.
template <class T, EntryRule rule>
[[gnu::noinline]] void multiply_vector(const Matrix<T>& a, int first, int last, bool strict,
                                       const T& scale, const T* x, T* y) {
  const T alpha = scale;
  add_entries<One<T>, rule, Layout::column_major, T>(Entries<T>(a, first, last), strict, alpha,
                                                     {x, 0}, {y, 0});
}

// Columns c1 .. c2 - 1 of b and c: the list is walked once for each group of columns.
template <class T, EntryRule rule, Layout layout>
[[gnu::noinline]] void multiply_columns(const Matrix<T>& a, int c1, int c2, bool strict,
                                        const T& scale, Dense<const T> b, Dense<T> c) {
  constexpr int most = (is_complex<T> ? 4 : 5) / (rule.mirror == Part::none ? 1 : 2);
  const Entries<T> entries(a, 0, a.count);
  const T alpha = scale;
  for_columns<T, most, layout>(
      c1, c2, [&](auto group, int j) __attribute__((always_inline)) {
        add_entries<decltype(group), rule, layout, T>(entries, strict, alpha,
                                                      {at_column<layout>(b.p, j, b.ld), b.ld},
                                                      {at_column<layout>(c.p, j, c.ld), c.ld});
      });
}

}  // namespace jex::spblas::coo
