// The large power-of-two kernel: natural order on the one side, bit-reversed on the other, in two
// passes over memory.
//
// With n = n1 n2 and x an n1 x n2 matrix, row by row, the forward transform takes bundles of
// columns through n1-point transforms, back into the same places with the rows in bit-reversed
// order; then each row by itself, times w^(k1 j2), through an n2-point transform whose result goes
// back bit-reversed. The backward transform does the same the other way round.
//
// Table, a block of (3 n + 64) reals:
//
//   n, 0 | cos, sin of 2 pi r(i) / n, i = 1 .. n/4 - 1 | r(i), i < n/4 | roots w^(k1 j2) | the rest
//
// where r reverses the lowest order - 2 bits. What stands behind the cosines is there for orders
// above 13 alone.
#pragma once

#include "dft/engine/record.h"
#include "dft/engine/transform.h"

namespace jex::dft {

// Makes the table in the record's aux_buffer_b, for the record's length_order, and states the work
// size. 0, 1 (no memory) or 9 (too long).
template <class T>
int32_t make_large_table(Record& record);

// The kernel and its inverse, for the record's words.
template <class T>
Kernel large_kernel(Direction d);

constexpr int smallest_blocked_order = 14;

}  // namespace jex::dft
