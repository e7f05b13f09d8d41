// Exchange of the natural and the bit-reversed order of 2^order elements.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace jex::dft {

// The lowest bits of i in the opposite order.
constexpr uint32_t reversed(uint32_t i, int bits) {
  uint32_t r = 0;
  for (; bits > 0; --bits, i >>= 1) r = 2 * r | (i & 1);
  return r;
}

// One pair of elements after the other, in place.
template <class T>
void reverse_in_place(T* x, ptrdiff_t stride, int order);

// From one array to another, square by square, so that each cache line is used whole.
template <class T>
void reverse_copy(const T* in, T* out, int order);

}  // namespace jex::dft
