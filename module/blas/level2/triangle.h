// x := op(A) x and x := inverse(op(A)) x for a triangle in any storage, without blocking.
//
// The columns are taken in groups. A group at column j consists of its corner, the small triangle
// on the diagonal, and of the rows beside it, above or below the corner:
//
//   upper   . r r r r        lower   c
//           . r r r r                c c
//             c c c c                c c c
//               c c c                c c c c
//                 c c                r r r r .
//                   c                r r r r . .
//
// A itself: x(rows) changes by the columns times x(corner). A transposed: x(corner) changes by the
// columns' dot products with x(rows). triangle_multiply.h and triangle_solve.h put them together.
#pragma once

#include "blas/level1/dot.h"
#include "blas/level1/update.h"
#include "blas/level2/column_group.h"
#include "blas/level2/storage.h"

namespace jex::blas {

// Does op(A) have its entries below the diagonal?
constexpr bool is_lower(Uplo uplo, Op op) { return (uplo == Uplo::lower) == (op == Op::none); }

// Elements of x, apart by inc; p is the first of the walk.
template <class T>
struct Spread {
  static constexpr bool unit = false;
  T* p;
  int inc;
  T& operator[](int i) const { return p[i * inc]; }
  // Base of the n elements from i on, as BLAS names it: the lowest address.
  T* part(int i, int n) const { return p + (inc < 0 ? i + n - 1 : i) * inc; }
};
// A vector as BLAS names it: a negative increment walks it from the far end.
template <class T>
inline Spread<T> spread(T* x, int n, int inc) {
  return {start_of(x, n, inc), inc};
}

template <class T>
struct Dense {
  static constexpr bool unit = true;
  T* p;
  T& operator[](int i) const { return p[i]; }
};

template <Op op, class T>
inline T entry_of(T a) {
  if constexpr (op == Op::conj_transpose)
    return conjugate(a);
  else
    return a;
}

// Are the entries up to distance from the diagonal stored?
template <int distance, class A>
inline bool holds(const A& a) {
  if constexpr (requires { a.k; })
    return a.k >= distance;
  else
    return true;
}

// width columns of A from column j on.
template <class T, int width>
struct Group {
  const T* column[width];
  int j;

  template <class A>
  Group(const A& a, int j) : j(j) {
    unrolled<width>([&](auto c) __attribute__((always_inline)) { column[c] = a.column(j + c); });
  }

  // Entry (r, c) of the corner of op(A).
  template <Op op, int r, int c>
  [[gnu::always_inline]] T corner() const {
    if constexpr (op == Op::none)
      return column[c][j + r];
    else
      return entry_of<op>(column[r][j + c]);
  }
};

// The rows beside a group that all its columns hold, without the skipped ones next to the corner.
template <template <Uplo, class> class Storage, Uplo uplo, class T>
struct GroupBeside {
  int first, last;  // last is one behind
  GroupBeside(Storage<uplo, const T> a, int j, int width, int skipped)
      : first(uplo == Uplo::upper ? a.begin(j + width - 1) : j + width + skipped),
        last(uplo == Uplo::upper ? j - skipped : a.end(j)) {}
};

// y += t column, one column by itself; y is a vector as BLAS names it.
template <class T>
[[gnu::noinline]] void add_column(int n, T t, const T* column, T* y, int incy) {
  const Factor<T> factor(t);
  for_each<T>(
      n, [=](Lanes<T> a, Lanes<T>& y) { y = y + a * factor; }, In<T>{column}, InOut<T>{y, incy});
}

// column . x, or conj(column) . x.
template <bool conj, class T>
[[gnu::noinline]] T dot_column(int n, const T* column, const T* x, int incx) {
  constexpr Conj kind = conj ? Conj::yes : Conj::no;
  if constexpr (is_complex<T>)
    return dot<kind>(n, column, 1, x, incx);
  else
    return dot<T>(n, column, 1, x, incx);
}

// body<c>(i) for the rows i beside the group that column c holds and some other column does not: a
// band is ragged at its far end. Column c of an upper band holds width - 1 - c such rows, that of a
// lower one c of them, as far as the matrix goes.
template <int width, template <Uplo, class> class Storage, Uplo uplo, class T, class Body>
[[gnu::always_inline]] inline void for_ragged(Storage<uplo, const T> a,
                                              GroupBeside<Storage, uplo, T> beside, Body body) {
  if constexpr (std::is_same_v<Storage<uplo, T>, BandTriangle<uplo, T>>)
    unrolled<width>([&](auto c) __attribute__((always_inline)) {
      unrolled<uplo == Uplo::upper ? width - 1 - c : c>([&](auto k) __attribute__((always_inline)) {
        const int i = uplo == Uplo::upper ? beside.first - 1 - k : beside.last + k;
        if (i >= 0 && i < a.n) body.template operator()<c>(i);
      });
    });
}

// x(beside) += columns * t
template <template <Uplo, class> class Storage, Uplo uplo, class T, class X, int width>
[[gnu::always_inline]] inline void update_beside(Storage<uplo, const T> a,
                                                 const Group<T, width>& group, X x,
                                                 const T (&t)[width], int skipped = 0) {
  const GroupBeside<Storage, uplo, T> beside(a, group.j, width, skipped);
  const int n = beside.last - beside.first;
  if constexpr (X::unit) {
    for_ragged<width>(
        a, beside, [&]<int c>(int i) __attribute__((always_inline)) {
          x[i] = add(x[i], multiply(group.column[c][i], t[c]));
        });
    const T* column[width];
    unrolled<width>([&](auto c) __attribute__((always_inline)) {
      column[c] = group.column[c] + beside.first;
    });
    add_group(n, column, t, x.p + beside.first);
  } else {
    add_column(n, t[0], group.column[0] + beside.first, x.part(beside.first, n), x.inc);
  }
}

// total = columns' dot products with x(beside)
template <Op op, template <Uplo, class> class Storage, Uplo uplo, class T, class X, int width>
[[gnu::always_inline]] inline void dot_beside(Storage<uplo, const T> a,
                                              const Group<T, width>& group, X x, T (&total)[width],
                                              int skipped = 0) {
  constexpr bool conj = op == Op::conj_transpose;
  const GroupBeside<Storage, uplo, T> beside(a, group.j, width, skipped);
  const int n = beside.last - beside.first;
  if constexpr (X::unit) {
    const T* column[width];
    unrolled<width>([&](auto c) __attribute__((always_inline)) {
      column[c] = group.column[c] + beside.first;
    });
    // Towards the diagonal: in a solve the elements nearest to it are known last.
    dot_group<conj, uplo == Uplo::upper ? Rows::ascending : Rows::descending>(
        n, column, x.p + beside.first, total);
    for_ragged<width>(
        a, beside, [&]<int c>(int i) __attribute__((always_inline)) {
          total[c] = add(total[c], multiply(entry_of<op>(group.column[c][i]), x[i]));
        });
  } else {
    total[0] =
        dot_column<conj, T>(n, group.column[0] + beside.first, x.part(beside.first, n), x.inc);
  }
}

}  // namespace jex::blas
