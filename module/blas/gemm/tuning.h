// Block sizes of the matrix multiply, in one place.
#pragma once

#include "simd/lanes.h"

#include <jex/core_imports.h>

#include <algorithm>
#include <stdint.h>

namespace jex::blas {

using namespace simd;

// A tile is held in registers: six lanes of rows by one column, which leaves two of the eight
// registers for the factors. One column of B is loaded once for six products, and six sums hide
// the latency of the adds; a tile of two columns loads more, one of four lanes waits more.
inline constexpr int tile_lanes = 6;

// Steps of k by which tiles are unrolled.
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

// Steps of k in a block that is multiplied without a buffer: a panel of A is 12 KiB on the stack.
inline constexpr int light_steps = 128;

// Nothing is packed for so few products: packing a panel would take longer than it saves. In single
// precision it saves more, a shuffle for each product; where a lane is one complex number, A can be
// read as it is, and where B is stored by rows, the numbers of a step are neighbours. The edge of a
// triangle cuts single lanes there and parts of panels later. The sums are the same, bit for bit.
template <class T>
inline int tiny_order(bool triangle, bool by_rows) {
  if constexpr (sizeof(Real<T>) == 4)
    return is_complex<T> ? (triangle ? 20 : 10) : (triangle ? 36 : 14);
  else
    return is_complex<T> || by_rows ? 100 : triangle ? 48 : 33;
}
template <class T>
inline bool is_tiny(int m, int n, int k, bool triangle, bool by_rows) {
  const int order = tiny_order<T>(triangle, by_rows);
  return k <= light_steps && int64_t(m) * n * k <= order * order * order;
}

// And only panels of A for so few: B is read where it is. In single precision the shuffle that
// repeats a number costs more than staging from there on.
template <class T>
inline bool is_light(int m, int n, int k) {
  constexpr int most = sizeof(Real<T>) == 4 ? 80 * 80 * 80 : 120 * 120 * 120;
  return k <= light_steps && int64_t(m) * n * k <= most;
}

// Three real products for four save nothing on so few: each has its own packing, and C is added to
// three times.
inline bool is_light_for_three(int m, int n, int k) { return int64_t(m) * n * k <= 48 * 48 * 48; }

// Numbers that are so far apart meet in four sets of the first-level cache, or fewer; more than
// twelve of them push each other out.
template <class T>
inline bool would_meet(int ld, int count) {
  return count > 12 && ld % int(1024 / sizeof(T)) == 0;
}

// Pages in which so many numbers stand that are so far apart. Walks over and over through more than
// many_pages wait for the addresses of the pages.
inline constexpr int many_pages = 64;
template <class T>
inline int pages_of(int ld, int count) {
  constexpr int page = 4096 / sizeof(T);
  return count * std::min(ld, page) / page;
}

}  // namespace jex::blas
