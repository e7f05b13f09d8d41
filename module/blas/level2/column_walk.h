// Walks over the rows that a few neighbouring columns have in common.
#pragma once

#include "blas/level1/streams.h"
#include "simd/repeat.h"

#include <stddef.h>

namespace jex::blas {

using simd::unrolled;

// Real columns share a walk by fours: vectors are loaded once for four products each way, and four
// sums fill half of the registers. A complex sum needs two registers, hence pairs.
template <class T>
inline constexpr int columns_per_walk = is_complex<T> ? 2 : 4;

// An array that keeps its distance to another one: one moving pointer then leads through all of
// them, where seven would not fit into the registers.
template <class E>
struct Beside {
  uintptr_t bytes;
  Beside(E* p, const void* base) : bytes(uintptr_t(p) - uintptr_t(base)) { asm("" : "+r"(bytes)); }
  E* of(const void* p) const { return reinterpret_cast<E*>(uintptr_t(p) + bytes); }
};

// Matrices beyond this size do not stay in the second cache from one pass to the next. Every new
// group of columns is then a new place in memory, which the hardware notices too late: the walk
// fetches the next group while it works on this one, a few lines of each column at a time.
inline constexpr unsigned fetched_ahead_from = 400000;
inline constexpr int lines_ahead = 8;

[[gnu::noinline]] inline void fetch_lines(const void* from, int columns, ptrdiff_t stride) {
  const char* p = static_cast<const char*>(from);
  for (; columns > 0; --columns, p += stride)
    for (int line = 0; line < lines_ahead; ++line) __builtin_prefetch(p + 64 * line);
  asm volatile("");  // else the compiler sees no effect, and drops the calls
}

// The rows from i on that fill registers, below end, of a matrix with n columns: span(p, last)
// works from p, in the first column, up to the register at last, and returns the place behind it.
// Returns the first row that is left.
template <class T, size_t columns, class Span>
[[gnu::always_inline]] inline int walk_ahead(T* const (&column)[columns], int i, int end, int n,
                                             Span span) {
  constexpr int width = Lanes<std::remove_const_t<T>>::count;
  constexpr int elements = 64 * lines_ahead / sizeof(T);
  T* p = column[0] + i;
  T* const last = column[0] + (end - width);
  const ptrdiff_t stride = columns == 1 ? 0 : column[columns > 1] - column[0];
  const bool ahead = columns > 1 && unsigned(stride) * n > fetched_ahead_from / sizeof(T);
  while (p <= last) {
    T* stop = last;
    if (ahead) {
      if (last - p > elements) stop = p + (elements - width);
      fetch_lines(p + columns * stride, columns, stride * sizeof(T));
    }
    p = span(p, stop);
  }
  return int(p - column[0]);
}

}  // namespace jex::blas
