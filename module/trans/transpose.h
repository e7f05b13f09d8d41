// Out-of-place transposition: element k of line i goes to element i of line k.
//
// The larger extent is halved, the line length when both are equal, until a part fits a tile. A
// tile is taken in strips: as many lines as a cache line of the result has elements, W elements of
// each, where W elements fill a register. A strip ends in whole cache lines, written once:
//
//     A  ---- W ----         B  ------- 4 W -------
//     |  a0 a1 .. |             a0 b0 c0 d0 ..          four blocks of W by W elements,
//    4W  b0 b1 .. |      ->     a1 b1 c1 d1 ..          each transposed in W registers
//     |  c0 c1 .. |             ..
#pragma once

#include "trans/access.h"

#include <algorithm>
#include <stdint.h>

namespace jex::trans {

inline constexpr int line_bytes = 64;
// Extent of a tile. Its lines of A and of B are a few hundred pages and fit the second-level cache.
inline constexpr int tile = 128;
// From these sizes of one matrix on, the lines of the result that come next are asked for ahead of
// their time, and the result is written past the caches.
inline constexpr unsigned far_bytes = 400u << 10;
inline constexpr unsigned streamed_bytes = 4u << 20;

enum class Memory { near, far };
// Lines of the result between those that are written and those that are asked for.
inline constexpr int ahead = 16;

// Halves of the recursion begin where strips do.
template <class T>
inline int half(int n) {
  constexpr int line = line_bytes / sizeof(T);
  return n / 2 / line * line;
}

// A block of W by W elements, in registers from load to store.
template <class F, class G>
[[gnu::always_inline]] inline void transpose_block(F from, G to) {
  using T = typename F::T;
  constexpr int width = Lanes<T>::count;
  Lanes<T> r[width];
  for (int i = 0; i < width; ++i) r[i] = from.load(i);
  simd::transpose(r);
  for (int i = 0; i < width; ++i) to.store(i, r[i]);
}

// Element by element: what fills no register, and lines whose elements lie apart.
template <class F, class G>
[[gnu::noinline]] void transpose_elements(int m, int n, const F& from, const G& to) {
  for (int i = 0; i < m; ++i)
    for (int k = 0; k < n; ++k) to.at(k, i).store_first(from.at(i, k).load_first());
}

template <Memory memory, class F, class G>
[[gnu::noinline]] void transpose_tile(int m, int n, const F& all, const G& result) {
  using T = typename F::T;
  constexpr int width = Lanes<T>::count, line = line_bytes / sizeof(T);
  if constexpr (!F::unit) return transpose_elements(m, n, all, result);
  const int columns = n / width * width;
  int i = 0;
  for (; i + line <= m; i += line) {
    auto from = all.at(i, 0);
    auto to = result.at(0, i);
    for (int k = 0; k < columns; k += width) {
      if constexpr (memory == Memory::far)
        for (int r = 0; r < width; ++r) to.at(ahead, 0).prefetch(r);
#pragma GCC unroll 4
      for (int s = 0; s < line; s += width) transpose_block(from.at(s, 0), to.at(0, s));
      from = from.at(0, width);
      to = to.at(width, 0);
    }
  }
  for (; i + width <= m; i += width)
    for (int k = 0; k < columns; k += width) transpose_block(all.at(i, k), result.at(k, i));
  if (columns < n) transpose_elements(i, n - columns, all.at(0, columns), result.at(columns, 0));
  if (i < m) transpose_elements(m - i, n, all.at(i, 0), result.at(0, i));
}

// m lines of n elements.
template <Memory memory, class F, class G>
[[gnu::noinline]] void transpose_parts(int m, int n, F from, G to) {
  using T = typename F::T;
  while (m > tile || n > tile) {
    if (m <= n) {
      const int h = half<T>(n);
      transpose_parts<memory>(m, h, from, to);
      from = from.at(0, h), to = to.at(h, 0);
      n -= h;
    } else {
      const int h = half<T>(m);
      transpose_parts<memory>(h, n, from, to);
      from = from.at(h, 0), to = to.at(0, h);
      m -= h;
    }
  }
  transpose_tile<memory>(m, n, from, to);
}

template <class F, class G>
void transpose(int m, int n, F from, G to) {
  if (uint64_t(m) * n * sizeof(typename F::T) < far_bytes)
    transpose_parts<Memory::near>(m, n, from, to);
  else
    transpose_parts<Memory::far>(m, n, from, to);
}

// B := transpose of what From delivers. A large B whose lines begin alike towards the cache lines
// is written past the caches; the elements before the first boundary are a part of their own.
template <class F, class T>
void transpose_to(int m, int n, F from, To<T> to) {
  constexpr int line = line_bytes / sizeof(T);
  const unsigned beyond = reinterpret_cast<uintptr_t>(to.b) % line_bytes;
  const bool alike = beyond % sizeof(T) == 0 && to.ld * sizeof(T) % line_bytes == 0;
  if (!alike || m < 4 * line || uint64_t(m) * n * sizeof(T) < streamed_bytes)
    return transpose(m, n, from, to);
  const int first = beyond ? (line_bytes - beyond) / sizeof(T) : 0;
  transpose_tile<Memory::near>(first, n, from, to);
  transpose_parts<Memory::far>(m - first, n, from.at(first, 0), ToMemory<T>{to.at(0, first)});
  simd::order_streams();
}

}  // namespace jex::trans
