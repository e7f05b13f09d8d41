// Block sizes of the matrix multiply, in one place.
#pragma once

#include "simd/lanes.h"

#include <jex/core_imports.h>

#include <stdint.h>

namespace jex::blas {

using namespace simd;

// A tile is held in registers: six lanes of rows by one column, which leaves two of the eight
// registers for the factors. One column of B is loaded once for six products, and six sums hide
// the latency of the adds; a tile of two columns loads more, one of four lanes waits more.
inline constexpr int tile_lanes = 6;

// Steps of k by which tiles are unrolled; packed blocks are padded with zeros to a multiple.
inline constexpr int unrolled_steps = 4;

// Real columns of B whose factors are staged at once. Four double columns stay in the first-level
// cache, 8 KiB beside a tile's 12 KiB of A; single ones, whose steps are twice as many, come from
// the second level, four bytes a cycle.
template <class R>
inline constexpr int staged_columns = sizeof(R) == 8 ? 4 : 16;

// Steps of k in a block. The order of the blocks is part of the results' definition.
template <class R>
inline int steps_in_block() {
  if constexpr (sizeof(R) == 8)
    return 128;
  else
    return jex_serv_l2cache() == 3 ? 480 : 240;
}

// Real rows of A in a block: 512 KiB of the second-level cache at 128 double or 240 single steps.
template <class R>
inline int rows_in_block(int steps) {
  return sizeof(R) == 8 || steps == 240 ? 512 : 256;
}

// Columns of B that are packed together, double only: 128 x 2,000 numbers.
inline constexpr int packed_columns = 2000;

// Problems with so narrow a side are not packed.
inline bool is_small(int m, int n, int k) { return m < 4 || k < 8 || n < 8; }

// Nor are those with so few products, in a single block of steps: packing would take longer than it
// saves. The sums are the same, bit for bit.
template <class T>
inline bool is_light(int m, int n, int k) {
  constexpr int most = sizeof(Real<T>) == 4 ? 36 * 36 * 36
                       : is_complex<T>      ? 48 * 48 * 48
                                            : 40 * 40 * 40;
  return k <= 128 && int64_t(m) * n * k <= most;
}

}  // namespace jex::blas
