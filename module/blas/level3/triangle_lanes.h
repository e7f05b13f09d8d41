// The lane kernels of trsm and trmm: x := x inverse(U) and x := x U for a lane of right-hand sides,
// over the factors of triangle_factors.h. x holds one register for each unknown, up to whole
// groups. A kernel does one group of columns, whose rows of factors it is given.
#pragma once

#include "blas/level3/triangle_factors.h"

namespace jex::blas {

// sum[k] := the sum of x[p] factor(p, k) over the unknowns p of whole groups.
template <class T>
[[gnu::always_inline]] inline void sum_rows(Lanes<Real<T>> (&sum)[real_columns], const Real<T>* x,
                                            const Real<T>* factors, int groups) {
  using L = Lanes<Real<T>>;
  constexpr int width = group_columns<T>;
  Lanes<Real<T>> s[real_columns];
  unrolled<real_columns>([&](auto k) __attribute__((always_inline)) { s[k] = pinned(L::zero()); });
  for (; groups > 0; --groups)
    unrolled<width>([&](auto) __attribute__((always_inline)) {
      const L lane = pinned(L::load_aligned(x));
      unrolled<real_columns>([&](auto k) __attribute__((always_inline)) {
        accumulate_product(s[k], lane, factors + k * L::count);
      });
      x += L::count;
      factors += group_row<T>;
    });
  unrolled<real_columns>([&](auto k) __attribute__((always_inline)) { sum[k] = s[k]; });
}

// x times the factor of column c in a row of a group.
template <class T, int c>
[[gnu::always_inline]] inline Lanes<T> times_factor(Lanes<T> x, const Real<T>* row) {
  using L = Lanes<Real<T>>;
  if constexpr (is_complex<T>) {
    const L re = x.parts * L::load_aligned(row + 2 * c * L::count);
    const L im = x.parts * L::load_aligned(row + (2 * c + 1) * L::count);
    return {add_alternating(re, swap_parts(im))};
  } else {
    return x * L::load_aligned(row + c * L::count);
  }
}

// Column c of the sums of a group.
template <class T, int c>
[[gnu::always_inline]] inline Lanes<T> column_of(const Lanes<Real<T>> (&sum)[real_columns]) {
  if constexpr (is_complex<T>)
    return {add_alternating(sum[2 * c], swap_parts(sum[2 * c + 1]))};
  else
    return sum[c];
}

template <class T>
[[gnu::always_inline]] inline Lanes<T> lane_at(const Real<T>* x, int c) {
  const auto parts = Lanes<Real<T>>::load_aligned(x + c * Lanes<Real<T>>::count);
  if constexpr (is_complex<T>)
    return {parts};
  else
    return parts;
}
template <class T>
[[gnu::always_inline]] inline void put_lane(Real<T>* x, int c, Lanes<T> v) {
  x += c * Lanes<Real<T>>::count;
  if constexpr (is_complex<T>)
    v.parts.store(x);
  else
    v.store(x);
}

// From the first unknown on: what the unknowns before the group contribute is one sum, taken off at
// once; the corner follows unknown by unknown. The diagonal holds reciprocals.
struct SolveLane {
  template <class T>
  static void pack(const Triangular<T>& t, T, Real<T>* factors) {
    pack_triangle(
        t, factors, [](T u) { return u; }, [](T u) { return quotient(one_of<T>, u); });
  }
  static constexpr bool ascending = true;
  template <class T>
  [[gnu::always_inline]] static void finish(const Lanes<Real<T>> (&sum)[real_columns], Real<T>* own,
                                            const Real<T>* corner) {
    constexpr int width = group_columns<T>, row = group_row<T>;
    Lanes<T> v[width];
    unrolled<width>([&](auto c) __attribute__((always_inline)) {
      v[c] = lane_at<T>(own, c) - column_of<T, c>(sum);
    });
    unrolled<width>([&](auto r) __attribute__((always_inline)) {
      v[r] = times_factor<T, r>(v[r], corner + r * row);
      put_lane<T>(own, r, v[r]);
      unrolled<width - 1 - r>([&](auto after) __attribute__((always_inline)) {
        constexpr int c = r + 1 + after;
        v[c] = v[c] - times_factor<T, c>(v[r], corner + r * row);
      });
    });
  }
};

// From the last group on, so that the unknowns before it still have their old values. Each result
// is one sum from the first unknown to its own.
struct MultiplyLane {
  template <class T>
  static void pack(const Triangular<T>& t, T alpha, Real<T>* factors) {
    const auto scaled = [=](T u) { return multiply(alpha, u); };
    const auto same = [](T u) { return u; };
    if (is_one(alpha))
      pack_triangle(t, factors, same, same);
    else
      pack_triangle(t, factors, scaled, scaled);
  }
  static constexpr bool ascending = false;
  template <class T>
  [[gnu::always_inline]] static void finish(const Lanes<Real<T>> (&sum)[real_columns], Real<T>* own,
                                            const Real<T>* corner) {
    constexpr int width = group_columns<T>, row = group_row<T>;
    Lanes<T> v[width];
    unrolled<width>([&](auto c) __attribute__((always_inline)) { v[c] = column_of<T, c>(sum); });
    unrolled<width>([&](auto r) __attribute__((always_inline)) {
      const Lanes<T> old = lane_at<T>(own, r);
      unrolled<width - r>([&](auto after) __attribute__((always_inline)) {
        constexpr int c = r + after;
        v[c] = v[c] + times_factor<T, c>(old, corner + r * row);
      });
    });
    unrolled<width>([&](auto c) __attribute__((always_inline)) { put_lane<T>(own, c, v[c]); });
  }
};

// Group g of a lane: the sums over the unknowns before it, then its own corner of the triangle.
template <class Lane, class T>
[[gnu::always_inline]] inline void run_group(Real<T>* x, const Real<T>* rows, int g) {
  constexpr int width = group_columns<T>;
  Lanes<Real<T>> sum[real_columns];
  sum_rows<T>(sum, x, rows, g);
  Lane::template finish<T>(sum, x + g * width * Lanes<Real<T>>::count,
                           rows + g * width * group_row<T>);
}

}  // namespace jex::blas
