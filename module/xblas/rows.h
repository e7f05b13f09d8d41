// Rows of op(A) as the products read them. A view visits the terms of neighbouring rows as Terms:
// elements and factors that lie in even steps, from the first term to the last. Where rows do not
// share a pattern the view hands out single rows, or a block that it gathered.
#pragma once

#include "blas/level1/rot.h"

#include <algorithm>
#include <stddef.h>

namespace jex::xblas {

template <class T>
struct Terms {
  const T* a;           // row 0, first term
  ptrdiff_t row, term;  // steps from row to row and from term to term
  int first, count;     // factors x(first) ..
  int shift;            // 1 where each row begins one factor further on, else 0
  bool conj;            // take conj(a)
};

// Element (i, k) lies at a[i row + k term].
template <class T>
struct GeneralRows {
  static constexpr int registers = 2;
  const T* a;
  ptrdiff_t row, term;
  int length;
  bool conj;

  bool even(int, int) const { return true; }
  template <class Visit>
  void visit(int i, int, Visit visit) const {
    visit(Terms<T>{a + i * row, row, term, 0, length, 0, conj});
  }
};

// Element (i, k) lies at a[i row + k term] too, for -below <= k - i <= above. Rows that are whole
// go together along the diagonals:
//
//   row i    * * * *            term t of row i + 1 is one row and one factor beyond that of row i
//   row i+1    * * * *
template <class T>
struct BandRows {
  static constexpr int registers = 1;
  const T* a;
  ptrdiff_t row, term;
  int length, below, above;
  bool conj;

  bool even(int i, int rows) const { return i >= below && i + rows - 1 + above < length; }
  template <class Visit>
  void visit(int i, int, Visit visit) const {
    const int first = std::max(0, i - below);
    const int end = int(std::min<int64_t>(length, int64_t(i) + above + 1));
    visit(Terms<T>{a + i * row + first * term, row + term, term, first, end - first, 1, conj});
  }
};

// A stored triangle and its mirror image. Rows i .. i + R - 1, upper triangle:
//
//   before: columns i.. of the triangle     | block | after: its rows i..
template <class T>
struct SymmetricRows {
  static constexpr int registers = 2;
  static constexpr int most_rows = 4;
  const T* a;
  ptrdiff_t lda;
  int n;
  bool upper, hermitian;

  bool even(int, int) const { return true; }

  template <class Visit>
  void visit(int i, int rows, Visit visit) const {
    const T* const along = a + i;         // (i, 0): rows 1 apart, terms lda apart
    const T* const across = a + i * lda;  // (0, i): rows lda apart, terms 1 apart
    const int rest = i + rows;
    T block[most_rows * most_rows];
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < rows; ++c) block[r + c * rows] = element(i + r, i + c);
    if (upper) {
      visit(Terms<T>{across, lda, 1, 0, i, 0, hermitian});
      visit(Terms<T>{block, 1, rows, i, rows, 0, false});
      visit(Terms<T>{along + rest * lda, 1, lda, rest, n - rest, 0, false});
    } else {
      visit(Terms<T>{along, 1, lda, 0, i, 0, false});
      visit(Terms<T>{block, 1, rows, i, rows, 0, false});
      visit(Terms<T>{across + rest, lda, 1, rest, n - rest, 0, hermitian});
    }
  }

 private:
  T element(int i, int k) const {
    const bool stored = upper ? i <= k : i >= k;
    T value = stored ? a[i + k * lda] : a[k + i * lda];
    if constexpr (simd::is_complex<T>) {
      if (hermitian && i == k) value.im = 0;
      if (hermitian && !stored) value = blas::conjugate(value);
    }
    return value;
  }
};

}  // namespace jex::xblas
