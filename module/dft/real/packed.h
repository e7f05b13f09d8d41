// The three layouts of a conjugate-even spectrum of n values, as places of real numbers:
//
//            n even                                     n odd, h = n/2
//   Perm     r0 r(n/2) r1 i1 .. r(n/2-1) i(n/2-1)       r0 r1 i1 .. r(h) i(h)
//   Pack     r0 r1 i1 .. r(n/2-1) i(n/2-1) r(n/2)       r0 r1 i1 .. r(h) i(h)
//   CCS      r0 0 r1 i1 .. r(n/2) 0                     r0 0 r1 i1 .. r(h) i(h)
//
// Perm is the order in which the kernels compute.
#pragma once

#include <stdint.h>
#include <string.h>

namespace jex::dft {

enum class Format { ccs, pack, perm };

// Numbers that a packed spectrum has.
constexpr int32_t packed_length(Format format, int32_t n) {
  return format != Format::ccs ? n : n + 2 - n % 2;
}
// Place of r1, i1, r2, ..
constexpr int32_t first_pair(Format format, int32_t n) {
  return format == Format::ccs || (format == Format::perm && n % 2 == 0) ? 2 : 1;
}
// Place of r(n/2) of an even length.
constexpr int32_t last_real(Format format, int32_t n) {
  return format == Format::ccs ? n : format == Format::pack ? n - 1 : 1;
}

// Numbers moved to places that may overlap their own. Short rows take less time than a call of
// memmove; the empty statement keeps the compiler from making one of the loop.
template <class R>
void move_numbers(const R* from, R* to, int32_t n) {
  if (n > 24) {
    memmove(to, from, uint32_t(n) * sizeof(R));
  } else if (to < from) {
    for (int32_t i = 0; i < n; ++i) {
      to[i] = from[i];
      asm volatile("" ::: "memory");
    }
  } else {
    for (int32_t i = n; i-- > 0;) {
      to[i] = from[i];
      asm volatile("" ::: "memory");
    }
  }
}

// A spectrum in Perm takes the format, in place.
template <class R>
void pack(R* x, int32_t n, Format format) {
  if (format == Format::pack && n % 2 == 0 && n > 2) {
    const R last = x[1];
    move_numbers(x + 2, x + 1, n - 2);
    x[n - 1] = last;
  } else if (format == Format::ccs && n % 2 == 0) {
    x[n] = x[1];
    x[n + 1] = x[1] = 0;
  } else if (format == Format::ccs) {
    move_numbers(x + 1, x + 2, n - 1);
    x[1] = 0;
  }
}

// A spectrum of that format in Perm; from and to are the same or apart.
template <class R>
void unpack(const R* from, R* to, int32_t n, Format format) {
  const R first = from[0], last = from[n % 2 == 0 ? last_real(format, n) : 0];
  const int32_t pairs = n % 2 == 0 ? 2 : 1;
  if (n > 1) move_numbers(from + first_pair(format, n), to + pairs, n - pairs);
  if (n % 2 == 0) to[1] = last;
  to[0] = first;
}

}  // namespace jex::dft
