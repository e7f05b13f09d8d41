// A = L D L^T or U D U^T of a symmetric (not Hermitian) matrix, D of blocks of order 1 and 2 on the
// diagonal: J. R. Bunch, L. Kaufman, "Some Stable Methods for Calculating Inertia and Solving
// Symmetric Linear Systems", Mathematics of Computation 31 (1977), 163-179.
#pragma once

#include "blas/level1/extreme.h"
#include "blas/level2/column_group.h"
#include "blas/level2/triangle_solve.h"

#include <math.h>

namespace jex::blas {

// The matrix as a lower triangle: an upper one is read from its last row and column on.
template <Uplo uplo, class T>
struct FromBelow {
  static constexpr bool upper = uplo == Uplo::upper;
  T* a;
  int lda, n;

  int place(int i) const { return upper ? n - 1 - i : i; }
  T& at(int i, int j) const { return a[place(i) + ptrdiff_t(place(j)) * lda]; }
  // The elements i .. n - 1 of column j, where they begin in memory.
  T* below(int i, int j) const { return upper ? &at(n - 1, j) : &at(i, j); }
};

// The row below k in column k with the largest element, the first one in memory.
template <Uplo uplo, class T>
int largest_below(const FromBelow<uplo, T>& a, int k, Real<T>& most) {
  int found = k + 1;
  for (int i = k + 1; i < a.n; ++i) {
    const Real<T> size = magnitude(a.at(i, k));
    if (i == k + 1 || size > most || (a.upper && size == most)) {
      most = size;
      found = i;
    }
  }
  return found;
}

// The largest element of row r beside the diagonal, in columns k and on.
template <Uplo uplo, class T>
Real<T> largest_beside(const FromBelow<uplo, T>& a, int k, int r) {
  Real<T> most = 0;
  for (int j = k; j < a.n; ++j)
    if (j != r) most = fmax(most, magnitude(j < r ? a.at(r, j) : a.at(j, r)));
  return most;
}

// Rows and columns p and q of the matrix that is left, from column k on, change places.
template <Uplo uplo, class T>
void exchange(const FromBelow<uplo, T>& a, int k, int p, int q) {
  for (int i = q + 1; i < a.n; ++i) std::swap(a.at(i, p), a.at(i, q));
  for (int i = p + 1; i < q; ++i) std::swap(a.at(i, p), a.at(q, i));
  std::swap(a.at(p, p), a.at(q, q));
  if (k < p) std::swap(a.at(p, k), a.at(q, k));
}

// What is left, minus l d l^T for `width` columns whose elements become those of L: row j of L is
// known when columns up to j have been changed. row(j, l) computes it.
template <int width, Uplo uplo, class T, class Row>
void subtract_columns(const FromBelow<uplo, T>& a, int k, Row row) {
  constexpr bool upper = uplo == Uplo::upper;
  for (int j = k + width; j < a.n; ++j) {
    T l[width], minus[width];
    row(j, l);
    const T* column[width];
    unrolled<width>([&](auto c) __attribute__((always_inline)) {
      column[c] = a.below(j, k + c);
      minus[c] = negated(l[c]);
    });
    add_group(a.n - j, column, minus, upper ? &a.at(a.n - 1, j) : &a.at(j, j));
    unrolled<width>([&](auto c) __attribute__((always_inline)) { a.at(j, k + c) = l[c]; });
  }
}

template <Uplo uplo, class T>
void eliminate_one(const FromBelow<uplo, T>& a, int k) {
  const T inverse = quotient(real_element<T>(1), a.at(k, k));
  subtract_columns<1>(a, k, [&](int j, T* l) { l[0] = multiply(inverse, a.at(j, k)); });
}

// D = | d11 d21 |, solved after division by d21, its largest element.
//     | d21 d22 |
template <Uplo uplo, class T>
void eliminate_two(const FromBelow<uplo, T>& a, int k) {
  const T one = real_element<T>(1), d21 = a.at(k + 1, k);
  const T d11 = quotient(a.at(k + 1, k + 1), d21), d22 = quotient(a.at(k, k), d21);
  const T t = quotient(quotient(one, difference(multiply(d11, d22), one)), d21);
  subtract_columns<2>(a, k, [&](int j, T* l) {
    const T x = a.at(j, k), y = a.at(j, k + 1);
    l[0] = multiply(t, difference(multiply(d11, x), y));
    l[1] = multiply(t, difference(multiply(d22, y), x));
  });
}

// ipiv and the result are those of LAPACK's sytf2: p + 1 for a block of order 1 exchanged with row
// p,
// -(p + 1) twice for one of order 2; info the first zero pivot.
template <Uplo uplo, class T>
[[gnu::noinline]] int sytrf(int n, T* matrix, int lda, jex_int* ipiv) {
  const Real<T> threshold = (1 + sqrt(Real<T>(17))) / 8;
  const FromBelow<uplo, T> a{matrix, lda, n};
  int info = 0;
  for (int k = 0; k < n;) {
    Real<T> most = 0;
    const Real<T> diagonal = magnitude(a.at(k, k));
    const int largest = k + 1 < n ? largest_below(a, k, most) : k;
    int width = 1, pivot = k;
    const bool empty = !(diagonal > 0 || most > 0);
    if (!empty && diagonal < threshold * most) {
      const Real<T> beside = largest_beside(a, k, largest);
      if (diagonal < threshold * most * (most / beside)) {
        pivot = largest;
        if (magnitude(a.at(largest, largest)) < threshold * beside) width = 2;
      }
    }
    const int moved = k + width - 1;
    if (pivot != moved) exchange(a, k, moved, pivot);
    const int place = a.place(pivot) + 1;
    ipiv[a.place(k)] = width == 1 ? place : -place;
    if (width == 2) ipiv[a.place(k + 1)] = -place;
    if (empty || diagonal != diagonal) {
      if (!info) info = a.place(k) + 1;
    } else if (width == 1) {
      eliminate_one(a, k);
    } else {
      eliminate_two(a, k);
    }
    k += width;
  }
  return info;
}

}  // namespace jex::blas
