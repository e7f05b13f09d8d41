// A few neighbouring columns of the stored triangle, updated in one walk over their rows:
//
//   a(i, j + c) := a(i, j + c) + x(i) by_x(c)                 rank one
//   a(i, j + c) := (a(i, j + c) + x(i) by_x(c)) + y(i) by_y(c)   rank two
//
// The block where rows and columns are the same is updated element by element: nothing beyond the
// triangle is written. Every way through this file gives each element the same bits.
#pragma once

#include "blas/level2/column_walk.h"
#include "blas/level2/options.h"
#include "blas/level1/scalar.h"
#include "blas/level2/storage.h"

namespace jex::blas {

// One vector of the update, with what each column multiplies it by.
template <class T, int columns>
struct UpdateTerm {
  const T* v;
  T by[columns];
};

// A factor times the lanes of a vector; those of a complex one are swapped once for all columns.
template <class T>
struct Multiplicand {
  Lanes<T> v;
  explicit Multiplicand(Lanes<T> v) : v(pinned(v)) {}
  Lanes<T> times(const Factor<T>& f) const { return v * f; }
};
template <class T>
requires is_complex<T>
struct Multiplicand<T> {
  Lanes<Real<T>> v, swapped;
  explicit Multiplicand(Lanes<T> v)
      : v(pinned(v.parts)), swapped(pinned(simd::swap_parts(this->v))) {}
  Lanes<T> times(const Factor<T>& f) const { return {v * f.re + swapped * f.im}; }
};

template <class T>
[[gnu::always_inline]] inline Lanes<T> plus(Lanes<T> a, Lanes<T> b) {
  if constexpr (is_complex<T>)
    return {accumulated(a.parts, b.parts)};
  else
    return accumulated(a, b);
}

// What update_columns keeps of one term while it walks.
template <class T, int columns>
struct UpdateWalk {
  Factor<T> by[columns];
  const T* v;
  Beside<const T> beside;
};

// Columns j .. j + columns - 1; the rest of their rows reaches to far (lower) or from it (upper).
template <Uplo uplo, class T, int... k, class... Term>
[[gnu::noinline]] void update_columns(std::integer_sequence<int, k...>,
                                      T* const (&column)[sizeof...(k)], int j, int far, int n,
                                      const Term&... term) {
  constexpr int columns = sizeof...(k), width = Lanes<T>::count;
  constexpr auto stored = [](int r, int c) { return uplo == Uplo::lower ? r >= c : r <= c; };
  const Beside<T> a[] = {Beside<T>(column[k], column[0])...};
  const auto update = [&](const auto&... walk) __attribute__((always_inline)) {
    // a := a + the terms of column c, in a whole register or in its first element.
    const auto rows = [&]<int c>(Constant<c>, T * a, const auto&... x)
        __attribute__((always_inline)) {
      Lanes<T> sum = Lanes<T>::load(a);
      ((sum = plus(sum, x.times(walk.by[c]))), ...);
      sum.store(a);
    };
    const auto row = [&]<int c>(Constant<c>, int i) __attribute__((always_inline)) {
      Lanes<T> sum = Lanes<T>::load_first(column[c] + i);
      ((sum = plus(sum, Multiplicand<T>(Lanes<T>::load_first(walk.v + i)).times(walk.by[c]))), ...);
      sum.store_first(column[c] + i);
    };
    unrolled<columns>([&](auto c) __attribute__((always_inline)) {
      unrolled<columns>([&](auto r) __attribute__((always_inline)) {
        constexpr int begin = r / width * width;
        constexpr bool whole =
            begin + width <= columns && stored(begin, c) && stored(begin + width - 1, c);
        if constexpr (whole && r == begin)
          rows(Constant<int(c)>(), column[c] + j + r,
               Multiplicand<T>(Lanes<T>::load(walk.v + j + r))...);
        if constexpr (!whole && stored(r, c)) row(Constant<int(c)>(), j + r);
      });
    });
    int i = uplo == Uplo::lower ? j + columns : far;
    const int end = uplo == Uplo::lower ? far : j;
    i = walk_ahead(
        column, i, end, n, [&](T * p, T * stop) __attribute__((always_inline)) {
          for (; p <= stop; p = pinned(p + width))
            [&](const auto... x) __attribute__((always_inline)) {
              (rows(Constant<k>(), k == 0 ? p : a[k].of(p), x...), ...);
            }
          (Multiplicand<T>(Lanes<T>::load(walk.beside.of(p)))...);
          return p;
        });
    for (; i < end; ++i) (row(Constant<k>(), i), ...);
  };
  const auto walk_of = [&](const auto& term) __attribute__((always_inline)) {
    return UpdateWalk<T, columns>{
        {Factor<T>(term.by[k])...}, term.v, Beside<const T>(term.v, column[0])};
  };
  update(walk_of(term)...);
}

}  // namespace jex::blas
