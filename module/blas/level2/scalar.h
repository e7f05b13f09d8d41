// Arithmetic on single elements, alike for real and complex types. A complex product is
// (a.re b.re - a.im b.im, a.im b.re + a.re b.im), each product and sum rounded by itself.
#pragma once

#include "blas/level1/rot.h"
#include "blas/level1/zero.h"

namespace jex::blas {

template <class T>
[[gnu::always_inline]] inline T add(T a, T b) {
  if constexpr (is_complex<T>)
    return {a.re + b.re, a.im + b.im};
  else
    return a + b;
}

template <class T>
[[gnu::always_inline]] inline T multiply(T a, T b) {
  if constexpr (is_complex<T>)
    return {a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im};
  else
    return a * b;
}

}  // namespace jex::blas
