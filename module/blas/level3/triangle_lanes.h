// The lane kernels of trsm and trmm: x := x inverse(U) and x := x U for a lane of right-hand sides,
// over the factors of triangle_factors.h. x is one register for each unknown, `step` numbers apart.
// A kernel does one group of columns, whose rows of factors it is given.
#pragma once

#include "blas/level3/triangle_factors.h"

namespace jex::blas {

// sum[k] := the sum of x[p] factor(p, k) over so many unknowns p; x and factors go behind them.
template <class T, class Step>
[[gnu::always_inline]] inline void sum_rows(Lanes<Real<T>> (&sum)[real_columns], Real<T>*& x,
                                            Step step, const Real<T>*& factors, int unknowns) {
  using L = Lanes<Real<T>>;
  constexpr int width = group_columns<T>;
  Lanes<Real<T>> s[real_columns];
  unrolled<real_columns>([&](auto k) __attribute__((always_inline)) { s[k] = pinned(L::zero()); });
  const auto rows = [&](auto count) __attribute__((always_inline)) {
    unrolled<count>([&](auto r) __attribute__((always_inline)) {
      const L lane = pinned(L::load(x));
      unrolled<real_columns>([&](auto k) __attribute__((always_inline)) {
        accumulate_product(s[k], lane, factors + r * group_row<T> + k * L::count);
      });
      x += step;
    });
    factors += count * group_row<T>;
  };
  for (int i = unknowns % width; i > 0; --i) rows(std::integral_constant<int, 1>());
  for (int i = unknowns / width; i > 0; --i) rows(std::integral_constant<int, width>());
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
[[gnu::always_inline]] inline Lanes<T> load_lane(const Real<T>* x) {
  return Lanes<T>::load(reinterpret_cast<const T*>(x));
}
template <class T>
[[gnu::always_inline]] inline void store_lane(Real<T>* x, Lanes<T> v) {
  v.store(reinterpret_cast<T*>(x));
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
  template <int columns, class T, class Step>
  [[gnu::always_inline]] static void finish(const Lanes<Real<T>> (&sum)[real_columns], Real<T>* own,
                                            Step step, const Real<T>* corner) {
    constexpr int row = group_row<T>;
    Lanes<T> v[columns];
    unrolled<columns>([&](auto c) __attribute__((always_inline)) {
      v[c] = load_lane<T>(own + c * step) - column_of<T, c>(sum);
    });
    unrolled<columns>([&](auto r) __attribute__((always_inline)) {
      v[r] = times_factor<T, r>(v[r], corner + r * row);
      store_lane<T>(own + r * step, v[r]);
      unrolled<columns - 1 - r>([&](auto after) __attribute__((always_inline)) {
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
  template <int columns, class T, class Step>
  [[gnu::always_inline]] static void finish(const Lanes<Real<T>> (&sum)[real_columns], Real<T>* own,
                                            Step step, const Real<T>* corner) {
    constexpr int row = group_row<T>;
    Lanes<T> v[columns];
    unrolled<columns>([&](auto c) __attribute__((always_inline)) { v[c] = column_of<T, c>(sum); });
    unrolled<columns>([&](auto r) __attribute__((always_inline)) {
      const Lanes<T> old = load_lane<T>(own + r * step);
      unrolled<columns - r>([&](auto after) __attribute__((always_inline)) {
        constexpr int c = r + after;
        v[c] = v[c] + times_factor<T, c>(old, corner + r * row);
      });
    });
    unrolled<columns>([&](auto c)
                          __attribute__((always_inline)) { store_lane<T>(own + c * step, v[c]); });
  }
};

// A group of a lane: the sums over the unknowns before it, then its own corner of the triangle.
template <class Lane, int columns, class T, class Step>
[[gnu::always_inline]] inline void run_group(Real<T>* x, Step step, const Real<T>* factors,
                                             int before) {
  Lanes<Real<T>> sum[real_columns];
  sum_rows<T>(sum, x, step, factors, before);
  Lane::template finish<columns, T>(sum, x, step, factors);
}

// So many lanes through the whole triangle, side by side: while one waits for its unknowns, the
// next ones compute.
template <class Lane, class T, class Step>
[[gnu::always_inline]] inline void run_together(const Real<T>* factors, int order, Real<T>* x,
                                                Step step, ptrdiff_t to_lane, int lanes) {
  constexpr int width = group_columns<T>, row = group_row<T>;
  const int first = first_columns<T>(order);
  const auto group = [&](auto columns, const Real<T>* rows, int before)
      __attribute__((always_inline)) {
    Real<T>* lane = x;
    for (int k = 0; k < lanes; ++k, lane += to_lane)
      run_group<Lane, columns, T>(lane, step, rows, before);
  };
  const auto head = [&] {
    unrolled<width>([&](auto k) __attribute__((always_inline)) {
      if (first == k + 1) group(std::integral_constant<int, k + 1>(), factors, 0);
    });
  };
  const auto rest = [&](const Real<T>* rows, int before) __attribute__((always_inline)) {
    group(std::integral_constant<int, width>(), rows, before);
  };
  if (Lane::ascending) {
    head();
    const Real<T>* rows = factors + first * row;
    for (int before = first; before < order; before += width) {
      rest(rows, before);
      rows += (before + width) * row;
    }
  } else {
    const Real<T>* rows = factors + (order + first) * groups_of<T>(order) / 2 * row;
    for (int before = order - width; before > 0; before -= width) {
      rows -= (before + width) * row;
      rest(rows, before);
    }
    head();
  }
}

}  // namespace jex::blas
