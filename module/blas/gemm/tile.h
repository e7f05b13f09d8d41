// The micro-kernel: sums of a tile over packed, aligned and padded operands.
//
// Packed A: lanes of rows one after another, and within a lane the steps of k. A lane holds two
// doubles or four floats, of neighbouring rows; complex numbers lie as they are, real part and
// imaginary part.
//
//             step 0        step 1                step steps-1
//   lane 0  | a00 a10     | a01 a11     | ...   | ...        |  spare |
//   lane 1  | a20 a30     | a21 a31     | ...
//
// The spare register between two lanes keeps their streams from meeting in one bank of the cache:
// without it six streams that are 2 KiB apart run a quarter slower.
//
// B staged: columns one after another, and within a column its steps, each number as often as a
// lane has numbers.
//
//   column 0  | b00 b00 | b10 b10 | b20 b20 | ...
//   column 1  | b01 b01 | b11 b11 | ...
//
// B stored: where it is, by columns or by rows; each number is repeated as it is loaded.
//
// Each element of the tile has one sum, from the first step to the last.
#pragma once

#include "blas/gemm/tuning.h"
#include "simd/repeat.h"

#include <stddef.h>

namespace jex::blas {

using namespace simd;

// Real columns of B: how far it is, in real numbers, from a step to the next one, from the real
// part of a column of complex numbers to the imaginary one, and from a column to the next one.
enum class Source { staged, by_columns, by_rows };
template <class R>
struct RealColumns {
  const R* b;
  ptrdiff_t to_step, to_part, to_column;
};

// Real columns first .. first + columns - 1 of b, whose columns have so many parts.
template <int lanes, int columns, int first, int parts, Source source, class R>
[[gnu::always_inline]] inline void sum_tile(Lanes<R> (&sum)[lanes * columns], const R* a,
                                            ptrdiff_t stride, const RealColumns<R>& b, int steps) {
  constexpr int width = Lanes<R>::count;
  Lanes<R> s[lanes * columns];
  unrolled<lanes * columns>([&](auto i) { s[i] = pinned(Lanes<R>::zero()); });
  // Two pointers and one distance reach six lanes by scaled addresses, made anew in each step: sums
  // of them that are kept would take the registers of others.
  const R *low = a, *high = a + 3 * stride, *factors = b.b;
  ptrdiff_t bytes = stride * ptrdiff_t(sizeof(R));
  const ptrdiff_t to_step = source == Source::staged       ? width
                            : source == Source::by_columns ? parts
                                                           : b.to_step;
  const ptrdiff_t to_part = source == Source::staged ? b.to_part : 1, to_column = b.to_column;
  const auto walk = [&](auto count) __attribute__((always_inline)) {
    unrolled<count>([&](auto u) __attribute__((always_inline)) {
      low = pinned(low), bytes = pinned(bytes);
      if constexpr (lanes > 3) high = pinned(high);
      unrolled<columns>([&](auto j) __attribute__((always_inline)) {
        const R* const b =
            factors + (first + j) / parts * to_column + (first + j) % parts * to_part + u * to_step;
        const auto factor = source == Source::staged ? loaded_aligned(b) : repeated(b);
        unrolled<lanes>([&](auto i) __attribute__((always_inline)) {
          const char* const lane = (const char*)(i < 3 ? low : high) + i % 3 * bytes;
          accumulate_product(s[i * columns + j], factor, (const R*)lane + u * width);
        });
      });
    });
    low += count * width;
    if constexpr (lanes > 3) high += count * width;
    factors += count * to_step;
  };
  const R* const end = a + ptrdiff_t(steps) / unrolled_steps * unrolled_steps * width;
  while (low != end) walk(std::integral_constant<int, unrolled_steps>());
  for (int rest = steps % unrolled_steps; rest > 0; --rest) walk(std::integral_constant<int, 1>());
  // Registers of the loop end here: what is done with the sums may need more than there are.
  unrolled<lanes * columns>([&](auto i) { sum[i] = pinned(s[i]); });
}

}  // namespace jex::blas
