// Operands brought side by side, and results put back in their places.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simd/lanes.h"

namespace jex::dft {

using simd::Real;

// n is 1 or more throughout.
template <class T>
void gather(const T* x, ptrdiff_t stride, T* to, int32_t n) {
  do {
    *to++ = *x;
    x += stride;
  } while (--n);
}
template <class T>
void spread(const T* from, int32_t n, T* x, ptrdiff_t stride) {
  do {
    *x = *from++;
    x += stride;
  } while (--n);
}

template <class T>
void gather_parts(const Real<T>* re, const Real<T>* im, ptrdiff_t stride, T* to, int32_t n) {
  do {
    *to++ = {*re, *im};
    re += stride;
    im += stride;
  } while (--n);
}
template <class T>
void spread_parts(const T* from, int32_t n, Real<T>* re, Real<T>* im, ptrdiff_t stride) {
  do {
    *re = from->re;
    *im = from->im;
    ++from;
    re += stride;
    im += stride;
  } while (--n);
}

}  // namespace jex::dft
