// A small triangle made ready for the lane kernels: every number in a whole register, in the order
// in which a lane of right-hand sides meets them.
//
// Whatever side, triangle and operation a call names, its kernel sees row vectors x of unknowns and
// an upper triangle U: x := x U, or x := x inverse(U). The walk from the last unknown to the first
// is U read backwards.
//
// U is taken in groups of four real columns (complex: two columns, real and imaginary parts apart);
// the first one, which has no rows above its corner, holds what remains. A group holds its rows
// from the first to the last of its corner. Order 6:
//
//   group 0   | u00 u01 - - | - u11 - - |
//   group 1   | u02 u03 u04 u05 | u12 u13 u14 u15 | u22 u23 u24 u25 | - u33 u34 u35 | - - u44 u45 |
//   ..
#pragma once

#include "blas/level2/triangle_solve.h"
#include "blas/level3/product.h"

namespace jex::blas {

// op(A) and the right-hand sides B beside it: op(A) times B from the left, or B times op(A).
template <class T>
struct Triangular {
  Side side;
  bool lower, unit;  // op(A)
  Operand<T> a;
  int order;
  T* b;
  int ldb, vectors;

  bool is_left() const { return side == Side::left; }
  // Are the unknowns that stand alone the first ones?
  bool forward() const { return is_left() == lower; }
  ptrdiff_t to_unknown() const { return is_left() ? 1 : ldb; }
  ptrdiff_t to_vector() const { return is_left() ? ldb : 1; }
  T* unknown(int i) const { return b + i * to_unknown(); }

  // The triangle of unknowns first .. first + count - 1.
  Triangular part(int first, int count) const {
    Triangular t = *this;
    t.a = a.from(first, first);
    t.order = count;
    t.b = unknown(first);
    return t;
  }
  Triangular panel(int first, int count) const {
    Triangular t = *this;
    t.b = b + first * to_vector();
    t.vectors = count;
    return t;
  }
};

inline constexpr int real_columns = 4;  // of a group
template <class T>
inline constexpr int group_columns = real_columns / (is_complex<T> ? 2 : 1);
template <class T>
inline int groups_of(int order) {
  return (order + group_columns<T> - 1) / group_columns<T>;
}
// Columns of the first group.
template <class T>
inline int first_columns(int order) {
  return order - (groups_of<T>(order) - 1) * group_columns<T>;
}
// Numbers of a row of a group, and of all groups of a triangle of at most so many unknowns.
template <class T>
inline constexpr int group_row = real_columns* Lanes<Real<T>>::count;
template <class T>
inline constexpr int most_factors(int order) {
  return (order / group_columns<T> + 1) * order / 2 * group_row<T>;
}

template <class T>
[[gnu::always_inline]] inline void put_factor(Real<T>* to, T u) {
  using R = Real<T>;
  using L = Lanes<R>;
  if constexpr (is_complex<T>) {
    L::all(u.re).store(to);
    L::all(u.im).store(to + L::count);
  } else {
    L::all(u).store(to);
  }
}

// entry(u) is what the kernel multiplies by for an entry beside the diagonal, diagonal(u) on it.
template <class T, class Entry, class Diagonal>
[[gnu::always_inline]] inline void pack_triangle(const Triangular<T>& t, Real<T>* to, Entry entry,
                                                 Diagonal diagonal) {
  constexpr int width = group_columns<T>, row = group_row<T>, number = row / width;
  const bool conjugated = t.a.conjugates(), forward = t.forward();
  const T* const first = forward ? t.a.x : t.a.from(t.order - 1, t.order - 1).x;
  const ptrdiff_t sign = forward ? 1 : -1,
                  down = sign * (t.is_left() ? t.a.column_distance() : t.a.row_distance()),
                  across = sign * (t.is_left() ? t.a.row_distance() : t.a.column_distance());
  const auto read = [=](const T* u) __attribute__((always_inline)) {
    return is_complex<T> && conjugated ? conjugate(*u) : *u;
  };
  for (int j = 0, columns = first_columns<T>(t.order); j < t.order; j += columns, columns = width) {
    const T* u = first + j * across;
    for (int p = 0; p < j; ++p, u += down, to += row)
      unrolled<width>([&](auto c) __attribute__((always_inline)) {
        put_factor<T>(to + c * number, entry(read(u + c * across)));
      });
    for (int r = 0; r < columns; ++r, u += down, to += row) {
      put_factor<T>(to + r * number, diagonal(t.unit ? one_of<T> : read(u + r * across)));
      for (int c = r + 1; c < columns; ++c)
        put_factor<T>(to + c * number, entry(read(u + c * across)));
    }
  }
}

}  // namespace jex::blas
