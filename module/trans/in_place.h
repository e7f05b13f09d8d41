// Copies and transpositions of a matrix onto itself, without scratch memory.
#pragma once

#include "blas/level1/streams.h"
#include "simd/prefetch.h"
#include "trans/transpose.h"

#include <stdint.h>
#include <string.h>

namespace jex::trans {

// m lines of n elements move from lda to ldb apart. Growing distances go from the last line to the
// first, so that no element is overwritten before it is read; a line is moved whole, then scaled.
template <class T, class Scale>
void copy_in_place(int m, int n, Scale scale, T* ab, ptrdiff_t lda, ptrdiff_t ldb) {
  if (n < 1) return;
  const auto line = [&](int i) {
    T* const to = ab + i * ldb;
    if (lda != ldb) memmove(to, ab + i * lda, n * sizeof(T));
    if constexpr (!std::is_same_v<Scale, Move>)
      blas::for_each_unit<T>(
          n, [scale](Lanes<T>& a) { a = scale(a); }, blas::InOut<T>{to});
  };
  if (lda < ldb)
    for (int i = m - 1; i >= 0; --i) line(i);
  else
    for (int i = 0; i < m; ++i) line(i);
}

// Two parts that are each other's transpose in place: (i, k) of the first and (k, i) of the second
// change places, both scaled.
template <class T, class Scale>
[[gnu::always_inline]] inline void exchange_block(T* p, T* q, ptrdiff_t ld, Scale scale) {
  constexpr int width = Lanes<T>::count;
  Lanes<T> a[width], b[width];
  for (int i = 0; i < width; ++i) a[i] = scale(Lanes<T>::load(p + i * ld));
  simd::transpose(a);
  for (int i = 0; i < width; ++i) b[i] = Lanes<T>::load(q + i * ld);
  for (int i = 0; i < width; ++i) a[i].store(q + i * ld);
  for (int i = 0; i < width; ++i) b[i] = scale(b[i]);
  simd::transpose(b);
  for (int i = 0; i < width; ++i) b[i].store(p + i * ld);
}

template <class T, class Scale>
[[gnu::noinline]] void exchange_elements(int m, int n, Scale scale, T* p, T* q, ptrdiff_t ld) {
  for (int i = 0; i < m; ++i)
    for (int k = 0; k < n; ++k) {
      T* const a = p + i * ld + k;
      T* const b = q + k * ld + i;
      const Lanes<T> t = scale(Lanes<T>::load_first(a));
      scale(Lanes<T>::load_first(b)).store_first(a);
      t.store_first(b);
    }
}

// p: m lines of n elements.
template <Memory memory, class T, class Scale>
[[gnu::noinline]] void exchange_tile(int m, int n, Scale scale, T* p, T* q, ptrdiff_t ld) {
  // More lines than the ways of a first-level cache would drive each other out.
  constexpr int width = Lanes<T>::count, height = std::min<int>(line_bytes / sizeof(T), 8);
  const int columns = n / width * width;
  int i = 0;
  for (; i + height <= m; i += height)
    for (int k = 0; k < columns; k += width) {
      if constexpr (memory == Memory::far)
        for (int r = 0; r < width; ++r) simd::prefetch(q + (k + ahead + r) * ld + i);
#pragma GCC unroll 4
      for (int s = 0; s < height; s += width)
        exchange_block(p + (i + s) * ld + k, q + k * ld + i + s, ld, scale);
    }
  for (; i + width <= m; i += width)
    for (int k = 0; k < columns; k += width)
      exchange_block(p + i * ld + k, q + k * ld + i, ld, scale);
  if (columns < n) exchange_elements(i, n - columns, scale, p + columns, q + columns * ld, ld);
  if (i < m) exchange_elements(m - i, n, scale, p + i * ld, q + i, ld);
}

template <Memory memory, class T, class Scale>
void exchange(int m, int n, Scale scale, T* p, T* q, ptrdiff_t ld) {
  while (m > tile || n > tile) {
    if (m <= n) {
      const int h = half<T>(n);
      exchange<memory>(m, h, scale, p, q, ld);
      p += h, q += h * ld;
      n -= h;
    } else {
      const int h = half<T>(m);
      exchange<memory>(h, n, scale, p, q, ld);
      p += h * ld, q += h;
      m -= h;
    }
  }
  exchange_tile<memory>(m, n, scale, p, q, ld);
}

// An n by n matrix onto itself. Halves: the two diagonal parts, then the part above with the part
// below the diagonal.
template <Memory memory, class T, class Scale>
void transpose_square(int n, Scale scale, T* ab, ptrdiff_t ld) {
  constexpr int width = Lanes<T>::count, line = line_bytes / sizeof(T);
  while (n >= 2 * line) {
    const int h = half<T>(n);
    transpose_square<memory>(h, scale, ab, ld);
    exchange<memory>(h, n - h, scale, ab + h, ab + h * ld, ld);
    ab += h * (ld + 1);
    n -= h;
  }
  for (; n >= width; n -= width, ab += width * (ld + 1)) {
    transpose_block(From<T, Scale>{ab, ld, scale}, To<T>{ab, ld});
    exchange_tile<Memory::near>(width, n - width, scale, ab + width, ab + width * ld, ld);
  }
  for (; n > 0; --n, ab += ld + 1) {
    scale(Lanes<T>::load_first(ab)).store_first(ab);
    exchange_elements(1, n - 1, scale, ab + 1, ab + ld, ld);
  }
}

// m lines of n elements, lda apart, become n lines of m elements, ldb apart. The permutation
//
//     position p = i lda + k  ->  next(p) = i + k ldb = p / lda + (p mod lda) ldb
//
// is followed cycle by cycle. A cycle may run through positions that belong to no element; the
// smallest position of an element leads it, and is found by walking the cycle from each element
// until one that is not greater comes. Index: an unsigned integer that holds lda ldb.
template <class Index, class T, class Scale>
[[gnu::noinline]] void transpose_cycles(int m, int n, Scale scale, T* ab, Index lda, Index ldb) {
  const auto next = [=](Index p) { return p / lda + p % lda * ldb; };
  const auto leads = [=](Index p) {
    Index q = next(p);
    while (q > p || q % lda >= Index(n)) q = next(q);
    return q == p;
  };
  for (int i = 0; i < m; ++i)
    for (int k = 0; k < n; ++k) {
      const Index p = i * lda + k;
      if (!leads(p)) continue;
      Lanes<T> carry = Lanes<T>::load_first(ab + p);
      bool valid = true;
      Index q = p;
      do {
        q = next(q);
        const bool element = q % lda < Index(n) && q / lda < Index(m);
        const Lanes<T> found = element ? Lanes<T>::load_first(ab + q) : Lanes<T>::zero();
        if (valid) scale(carry).store_first(ab + q);
        carry = found;
        valid = element;
      } while (q != p);
    }
}

template <class T, class Scale>
void transpose_in_place(int m, int n, Scale scale, T* ab, int lda, int ldb) {
  if (m == n && lda == ldb) {
    if (uint64_t(n) * n * sizeof(T) < far_bytes)
      return transpose_square<Memory::near>(n, scale, ab, lda);
    return transpose_square<Memory::far>(n, scale, ab, lda);
  }
  if (uint64_t(lda) * ldb < 1u << 31)
    transpose_cycles<uint32_t>(m, n, scale, ab, lda, ldb);
  else
    transpose_cycles<uint64_t>(m, n, scale, ab, lda, ldb);
}

}  // namespace jex::trans
