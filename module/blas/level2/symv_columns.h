// A few neighbouring columns of the stored triangle in one walk over their rows: each element is
// read once, for its own place and for its mirror image.
//
//   lower, columns j .. j + 3        y(i)     := y(i) + a(i, j) t(0) + .. + a(i, j + 3) t(3)
//                                    y(j + c) := y(j + c) + alpha s(c)
//     d                              t(c) = alpha x(j + c),  s(c) = sum of conj(a(i, j + c)) x(i)
//     d d      the block, where
//     d d d    rows and columns      In the block the products beyond the triangle, and those with
//     d d d d  are the same          the imaginary part of a diagonal element, are masked to +0.
//     * * * *  the rest, walked
//     * * * *  in registers          The sums s have one partial sum for each element of a
//     - * * *  a band begins and     register; rows that fill no register go to the first. Lanes
//     - - * *  ends in steps         count from the first row of the block, and of the rest.
//
// The bits do not depend on addresses or increments.
#pragma once

#include "blas/level1/sums.h"
#include "blas/level1/scalar.h"
#include "blas/level2/column_walk.h"
#include "blas/level2/storage.h"

#include <utility>

namespace jex::blas {

template <class E, class T = std::remove_const_t<E>>
struct UnitVector {
  static constexpr bool unit = true;
  E* p;
  Lanes<T> load(int i) const { return Lanes<T>::load(p + i); }
  Lanes<T> load_first(int i) const { return Lanes<T>::load_first(p + i); }
  void store(Lanes<T> a, int i) const { a.store(p + i); }
  void store_first(Lanes<T> a, int i) const { a.store_first(p + i); }
  E& operator[](int i) const { return p[i]; }
};

template <class E, class T = std::remove_const_t<E>>
struct SpacedVector {
  static constexpr bool unit = false;
  E* p;
  int inc;
  Lanes<T> load(int i) const { return Lanes<T>::gather(p + i * inc, inc); }
  Lanes<T> load_first(int i) const { return Lanes<T>::load_first(p + i * inc); }
  void store(Lanes<T> a, int i) const { a.scatter(p + i * inc, inc); }
  void store_first(Lanes<T> a, int i) const { a.store_first(p + i * inc); }
  E& operator[](int i) const { return p[i * inc]; }
};

// Which parts of a register of rows count in column c: in the product with t, and in the sum.
// A complex element has two parts.
struct AllRows {
  static constexpr unsigned product(int) { return ~0u; }
  static constexpr unsigned mirror(int) { return ~0u; }
};

template <int column>
struct OneColumn {
  static constexpr unsigned product(int c) { return c == column ? ~0u : 0; }
  static constexpr unsigned mirror(int c) { return product(c); }
};

// Rows row .. row + count - 1 of the block.
template <Uplo uplo, class T, int row, int count>
struct BlockRows {
  static constexpr int parts = is_complex<T> ? 2 : 1;
  static constexpr unsigned all = (1u << count * parts) - 1;
  static constexpr unsigned bits(int column, bool diagonal) {
    unsigned which = 0;
    for (int r = 0; r < count; ++r) {
      const int below = uplo == Uplo::lower ? row + r - column : column - row - r;
      if (below > 0) which |= ((1u << parts) - 1) << r * parts;
      if (below == 0 && diagonal) which |= 1u << r * parts;
    }
    return which == all ? ~0u : which;
  }
  static constexpr unsigned product(int column) { return bits(column, true); }
  static constexpr unsigned mirror(int column) { return bits(column, false); }
};

template <unsigned which, class L>
[[gnu::always_inline]] inline L masked(L a) {
  if constexpr (which == ~0u)
    return a;
  else
    return simd::keep<which>(a);
}

// The factor t and the sum s of one column, on lanes.
template <class T>
struct MirroredColumn {
  Lanes<T> t, sum = Lanes<T>::zero();

  explicit MirroredColumn(T t) : t(Lanes<T>::all(t)) {}
  T total() const { return sum_lanes(sum); }
};

template <class T>
requires is_complex<T>
struct MirroredColumn<T> {
  using Parts = Lanes<Real<T>>;
  Parts re, im;  // t.re t.re .., t.im -t.im ..
  Parts straight = Parts::zero(), crossed = Parts::zero();

  explicit MirroredColumn(T t) : re(Parts::all(t.re)), im(Lanes<T>::all({t.im, -t.im}).parts) {}
  T total() const {
    const T s = simd::sum_complex_lanes<T>({straight}), c = simd::sum_complex_lanes<T>({crossed});
    return {s.re + s.im, c.re - c.im};
  }
};

// One register of rows: y with every column's product added, column by column.
template <class Rows, class T, int columns, class Place, class Load>
[[gnu::always_inline]] inline Lanes<T> add_rows(MirroredColumn<T> (&m)[columns], Place& place,
                                                Load load, Lanes<T> x, Lanes<T> y) {
  if constexpr (!is_complex<T>) {
    x = pinned(x);
    unrolled<columns>([&](auto c) __attribute__((always_inline)) {
      if constexpr (Rows::product(c) == 0) return;
      const Lanes<T> a = pinned(load.template operator()<c>());
      y = accumulated(y, masked<Rows::product(c)>(a * m[c].t));
      if constexpr (Rows::mirror(c) != 0)
        m[c].sum = accumulated(m[c].sum, masked<Rows::mirror(c)>(a * x));
    });
    return y;
  } else {
    // First the sums, then the products: together they would need more than eight registers.
    using Parts = Lanes<Real<T>>;
    const Parts straight = pinned(x.parts), crossed = pinned(simd::swap_parts(straight));
    unrolled<columns>([&](auto c) __attribute__((always_inline)) {
      if constexpr (Rows::mirror(c) == 0) return;
      const Parts a = pinned(load.template operator()<c>().parts);
      m[c].straight = accumulated(m[c].straight, masked<Rows::mirror(c)>(a * straight));
      m[c].crossed = accumulated(m[c].crossed, masked<Rows::mirror(c)>(a * crossed));
    });
    // a t = a t.re + swapped(a (t.im, -t.im)); the swap waits until the columns are added.
    asm("" : "+r"(place));  // so that a is loaded again: there is no register to keep it in
    Parts by_re = pinned(y.parts), by_im;
    unrolled<columns>([&](auto c) __attribute__((always_inline)) {
      if constexpr (Rows::product(c) == 0) return;
      const Parts a = pinned(load.template operator()<c>().parts);
      by_re = accumulated(by_re, masked<Rows::product(c)>(a * m[c].re));
      const Parts term = masked<Rows::product(c)>(a * m[c].im);
      by_im = c == 0 || Rows::product(c - 1) == 0 ? term : accumulated(by_im, term);
    });
    return {by_re + simd::swap_parts(by_im)};
  }
}

// The rows from i on that fill registers, below end; returns the first row behind them.
template <class T, int... k>
[[gnu::always_inline]] inline int walk_registers(MirroredColumn<T> (&m)[sizeof...(k)],
                                                 std::integer_sequence<int, k...>,
                                                 const T* const (&column)[sizeof...(k)], int i,
                                                 int end, int n, const T* x, T* y) {
  constexpr int width = Lanes<T>::count;
  const Beside<const T> a[] = {Beside<const T>(column[k], column[0])...}, bx(x, column[0]);
  const Beside<T> by(y, column[0]);
  return walk_ahead(
      column, i, end, n, [&](const T* p, const T* stop) __attribute__((always_inline)) {
        for (; p <= stop; p = pinned(p + width)) {
          const auto load = [&]<int c>() { return Lanes<T>::load(c == 0 ? p : a[c].of(p)); };
          add_rows<AllRows>(m, p, load, Lanes<T>::load(bx.of(p)), Lanes<T>::load(by.of(p)))
              .store(by.of(p));
        }
        return p;
      });
}

// Columns j .. j + columns - 1, whose stored rows beyond the block reach from (upper) or to (lower)
// far in the column that is shortest there, and in the others of a band one row further each,
// within the n rows of the matrix.
template <Uplo uplo, class T, class X, class Y, int... k>
[[gnu::noinline]] void symv_columns(std::integer_sequence<int, k...>,
                                    const T* const (&column)[sizeof...(k)], int j, int far, int n,
                                    T alpha, X x, Y y) {
  constexpr bool lower = uplo == Uplo::lower;
  constexpr int columns = sizeof...(k), width = Lanes<T>::count;
  MirroredColumn<T> m[columns] = {MirroredColumn<T>(multiply(alpha, x[j + k]))...};
  const auto rows = [&]<class Rows>(int& i, Rows) __attribute__((always_inline)) {
    const auto load = [&]<int c>() { return Lanes<T>::load(column[c] + i); };
    y.store(add_rows<Rows>(m, i, load, x.load(i), y.load(i)), i);
  };
  const auto row = [&]<class Rows>(int& i, Rows) __attribute__((always_inline)) {
    const auto load = [&]<int c>() { return Lanes<T>::load_first(column[c] + i); };
    y.store_first(add_rows<Rows>(m, i, load, x.load_first(i), y.load_first(i)), i);
  };

  int i = j;
  if constexpr (columns == 1)
    row(i, BlockRows<uplo, T, 0, 1>());
  else
    unrolled<columns / width>([&](auto r) __attribute__((always_inline)) {
      rows(i, BlockRows<uplo, T, r * width, width>());
      i += width;
    });
  i = lower ? j + columns : far;
  const int end = lower ? far : j;
  if constexpr (X::unit)
    i = walk_registers(m, std::integer_sequence<int, k...>(), column, i, end, n, x.p, y.p);
  else
    for (; i + width <= end; i += width) rows(i, AllRows());
  for (; i < end; ++i) row(i, AllRows());
  unrolled<columns>([&](auto c) __attribute__((always_inline)) {
    int i = lower ? far : std::max(0, far - (columns - 1 - c));
    for (const int end = lower ? std::min(n, far + c) : far; i < end; ++i) row(i, OneColumn<c>());
  });
  ((y[j + k] = add(multiply(m[k].total(), alpha), y[j + k])), ...);
}

}  // namespace jex::blas
