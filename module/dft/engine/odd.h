// Passes of any odd radix up to 149: the roots come from a table instead of the compiler.
#pragma once

#include <stdint.h>

#include "dft/engine/pass.h"

namespace jex::dft {

// For j, k = 1 .. h, h = radix / 2: offset(j, k) is the place of the root of index jk modulo radix,
// in bytes from the first root. A root is a register of cosines and one of sines.
//
//   offsets   k = 1: j = 1 .. h | k = 2: j = 1 .. h | ..
struct OddTable {
  const uint16_t* offsets;
  const void* roots;
};

constexpr int largest_odd_radix = 149;

}  // namespace jex::dft
