// Rank-one and rank-two updates of the stored triangle of a symmetric or Hermitian matrix.
#pragma once

#include "blas/level1/dot.h"
#include "blas/level2/panel.h"
#include "blas/level2/rank_columns.h"

namespace jex::blas {

template <Conj conj, class T>
inline T conjugate_if(T a) {
  return conjugate_if<conj == Conj::yes>(a);
}

template <class T>
inline T scaled(T a, T alpha) {
  return multiply(a, alpha);
}
template <class T>
requires is_complex<T>
inline T scaled(T a, Real<T> alpha) { return {a.re * alpha, a.im * alpha}; }

// The diagonal of a Hermitian matrix is real, whatever its imaginary parts held.
template <Conj conj, class T>
inline void settle_diagonal(T& a) {
  if constexpr (conj == Conj::yes && is_complex<T>) a.im = 0;
}

// Elements begin .. end - 1 of a walk from first, as for_each takes them.
template <class T>
inline In<T> part_of(const T* first, int inc, int begin, int end) {
  return {first + (inc < 0 ? end - 1 : begin) * inc, inc};
}

// One column of spaced vectors: a := a + x t, and a := (a + x by_x) + y by_y.
template <class T>
[[gnu::noinline]] void update_column(int n, T t, In<T> x, T* a) {
  const Factor<T> factor(t);
  for_each<T>(
      n, [=](Lanes<T> x, Lanes<T>& a) { a = a + x * factor; }, x, InOut<T>{a});
}
template <class T>
[[gnu::noinline]] void update_column(int n, T by_x, In<T> x, T by_y, In<T> y, T* a) {
  const Factor<T> fx(by_x), fy(by_y);
  for_each<T>(
      n, [=](Lanes<T> x, Lanes<T> y, Lanes<T>& a) { a = a + x * fx + y * fy; }, x, y, InOut<T>{a});
}

// The columns of the panel, but those that passed_over(j) names: by walk(j, far, indices) for one
// or more columns where the increments are units, else by spaced(j). Hermitian diagonals become
// real.
template <Conj conj, template <Uplo, class> class Storage, Uplo uplo, class T, class PassedOver,
          class Walk, class Spaced>
[[gnu::always_inline]] inline void update_panel(const Storage<uplo, T>& a, Panel panel, bool unit,
                                                PassedOver passed_over, Walk walk, Spaced spaced) {
  constexpr int columns = columns_per_walk<T>;
  constexpr std::make_integer_sequence<int, columns> group;
  constexpr std::make_integer_sequence<int, 1> single;
  const auto far = [&](int j, int count) {
    return uplo == Uplo::lower ? a.end(j) : a.begin(j + count - 1);
  };
  const auto all_taken = [&]<int... k>(int j, std::integer_sequence<int, k...>) {
    return !(passed_over(j + k) || ...);
  };
  for (int j = panel.first; j < panel.last;) {
    const int begin = j;
    if (unit && j + columns <= panel.last && all_taken(j, group)) {
      walk(j, far(j, columns), group);
      j += columns;
    } else {
      if (!passed_over(j)) unit ? walk(j, far(j, 1), single) : spaced(j);
      ++j;
    }
    for (int k = begin; k < j; ++k) settle_diagonal<conj>(a.column(k)[k]);
  }
}

// A := alpha x x' + A; x' the transpose, or with conj the conjugate transpose: column j receives
// x (alpha x(j)). A column whose x(j) is 0 stays as it is, even beside infinities.
template <Conj conj, template <Uplo, class> class Storage, Uplo uplo, class T, class A>
[[gnu::noinline]] void rank_one(Storage<uplo, T> a, A alpha, const T* x, int incx) {
  if (a.n < 1 || is_zero(alpha)) return;
  x = start_of(x, a.n, incx);
  const auto by = [&](int j) { return scaled(conjugate_if<conj>(x[j * incx]), alpha); };
  update_panel<conj>(
      a, {0, a.n}, incx == 1, [&](int j) { return is_zero(x[j * incx]); },
      [&]<int... k>(int j, int far, std::integer_sequence<int, k...> columns) {
        update_columns<uplo>(columns, {a.column(j + k)...}, j, far, a.n,
                             UpdateTerm<T, sizeof...(k)>{x, {by(j + k)...}});
      },
      [&](int j) {
        const int begin = a.begin(j), end = a.end(j);
        update_column(end - begin, by(j), part_of(x, incx, begin, end), a.column(j) + begin);
      });
}

// A := alpha x y' + alpha y x' + A, or with conj alpha x y* + conj(alpha) y x* + A, in nb columns
// of the panel: column j receives x (alpha y(j)), then y (alpha x(j)). A column whose x(j) and y(j)
// are both 0 stays as it is.
template <Conj conj, template <Uplo, class> class Storage, Uplo uplo, class T>
[[gnu::noinline]] void rank_two(Storage<uplo, T> a, int nb, T alpha, const T* x, int incx,
                                const T* y, int incy) {
  if (a.n < 1 || nb < 1 || is_zero(alpha)) return;
  x = start_of(x, a.n, incx);
  y = start_of(y, a.n, incy);
  const auto by_x = [&](int j) { return multiply(alpha, conjugate_if<conj>(y[j * incy])); };
  const auto by_y = [&](int j) { return conjugate_if<conj>(multiply(alpha, x[j * incx])); };
  update_panel<conj>(
      a, panel_of<uplo>(a.n, nb), incx == 1 && incy == 1,
      [&](int j) { return is_zero(x[j * incx]) && is_zero(y[j * incy]); },
      [&]<int... k>(int j, int far, std::integer_sequence<int, k...> columns) {
        update_columns<uplo>(columns, {a.column(j + k)...}, j, far, a.n,
                             UpdateTerm<T, sizeof...(k)>{x, {by_x(j + k)...}},
                             UpdateTerm<T, sizeof...(k)>{y, {by_y(j + k)...}});
      },
      [&](int j) {
        const int begin = a.begin(j), end = a.end(j);
        update_column(end - begin, by_x(j), part_of(x, incx, begin, end), by_y(j),
                      part_of(y, incy, begin, end), a.column(j) + begin);
      });
}

}  // namespace jex::blas
