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
// Staged B: columns one after another, and within a column its steps, each number as often as a
// lane has numbers.
//
//   column 0  | b00 b00 | b10 b10 | b20 b20 | ...
//   column 1  | b01 b01 | b11 b11 | ...
//
// Each element of the tile has one sum, from the first step to the last. steps is a multiple of
// unrolled_steps, and at least that.
#pragma once

#include "blas/gemm/tuning.h"
#include "simd/repeat.h"

#include <stddef.h>

namespace jex::blas {

using namespace simd;

// One step of six lanes by one column: s_i += factor * lane_i. The instructions stand in the order
// in which they are fetched best; left to itself the compiler spends two registers and three
// instructions more on addresses, and a tenth of the time.
template <int offset, class R>
[[gnu::always_inline]] inline void add_step(Lanes<R> (&s)[6], const R* low, const R* high,
                                            ptrdiff_t bytes, const R* b) {
#define JEX_PRODUCT(type, factor, lane, sum) \
  "mul" type " %c[at](" lane "), " factor "\n\tadd" type " " factor ", " sum "\n\t"
#define JEX_COPIED_PRODUCT(type, lane, sum) \
  "movaps %[f], %[t]\n\t" JEX_PRODUCT(type, "%[t]", lane, sum)
#define JEX_STEP(type)                                                                     \
  asm("movaps %c[at](%[b]), %[f]\n\t" JEX_COPIED_PRODUCT(type, "%[low]", "%[s0]")          \
          JEX_COPIED_PRODUCT(type, "%[low],%[d]", "%[s1]") JEX_COPIED_PRODUCT(             \
              type, "%[low],%[d],2", "%[s2]") JEX_COPIED_PRODUCT(type, "%[high]", "%[s3]") \
              JEX_COPIED_PRODUCT(type, "%[high],%[d]", "%[s4]")                            \
                  JEX_PRODUCT(type, "%[f]", "%[high],%[d],2", "%[s5]")                     \
      : [s0] "+x"(s[0].v), [s1] "+x"(s[1].v), [s2] "+x"(s[2].v), [s3] "+x"(s[3].v),        \
        [s4] "+x"(s[4].v), [s5] "+x"(s[5].v), [f] "=&x"(f), [t] "=&x"(t)                   \
      : [low] "r"(low), [high] "r"(high), [d] "r"(bytes), [b] "r"(b), [at] "i"(offset),    \
        "m"(*(const char(*)[])low), "m"(*(const char(*)[])b))
  decltype(s[0].v) f, t;
  if constexpr (sizeof(R) == 8)
    JEX_STEP("pd");
  else
    JEX_STEP("ps");
#undef JEX_STEP
#undef JEX_COPIED_PRODUCT
#undef JEX_PRODUCT
}

template <int lanes, int columns, class R>
[[gnu::always_inline]] inline void sum_tile(Lanes<R> (&sum)[lanes * columns], const R* a,
                                            ptrdiff_t stride, const R* b, int steps) {
  constexpr int width = Lanes<R>::count;
  Lanes<R> s[lanes * columns];
  unrolled<lanes * columns>([&](auto i) { s[i] = pinned(Lanes<R>::zero()); });
  // Two pointers and one distance reach six lanes by scaled addresses.
  const R *low = a, *high = a + 3 * stride;
  const ptrdiff_t bytes = stride * ptrdiff_t(sizeof(R));
  const ptrdiff_t column = ptrdiff_t(steps) * width;
  const R* const end = b + column;
  do {
    const R *const l = pinned(low), *const h = lanes > 3 ? pinned(high) : nullptr;
    const auto lane = [=](int i) __attribute__((always_inline)) {
      return (const R*)(i < 3 ? (const char*)l + i * bytes : (const char*)h + (i - 3) * bytes);
    };
    unrolled<unrolled_steps>([&](auto u) __attribute__((always_inline)) {
      if constexpr (lanes == 6) {
        add_step<u * 16>(s, l, h, bytes, b);
      } else if constexpr (columns == 1) {
        const auto factor = pinned(Lanes<R>::load_aligned(b + u * width));
        unrolled<lanes>([&](auto i) __attribute__((always_inline)) {
          accumulate_product(s[i], factor, lane(i) + u * width);
        });
      } else {
        unrolled<lanes>([&](auto i) __attribute__((always_inline)) {
          const auto row = pinned(Lanes<R>::load_aligned(lane(i) + u * width));
          unrolled<columns>([&](auto j) __attribute__((always_inline)) {
            accumulate_product(s[i * columns + j], row, b + j * column + u * width);
          });
        });
      }
    });
    low = l + unrolled_steps * width;
    if constexpr (lanes > 3) high = h + unrolled_steps * width;
    b += unrolled_steps * width;
  } while (b != end);
  unrolled<lanes * columns>([&](auto i) { sum[i] = s[i]; });
}

}  // namespace jex::blas
