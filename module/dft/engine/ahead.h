// Asking for rows of a grid before a pass takes them. The processor itself follows neighbours
// within a page, but the rows of a large grid lie in pages of their own.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/prefetch.h"

namespace jex::dft {

// Operands of that size come from far beyond the second-level cache. Within it, and up to twice its
// size, asking costs two to five parts in a hundred.
constexpr int64_t far_bytes = 4 << 20;

// Rows of so many elements side by side, a step apart; they need not be readable.
template <class E>
inline void ask_for_rows(const E* first, int rows, ptrdiff_t step, int width) {
  constexpr int line = 64 / sizeof(E);
  for (int r = 0; r < rows; ++r, first += step)
    for (int c = 0; c < width; c += line) simd::prefetch(first + c);
}

}  // namespace jex::dft
