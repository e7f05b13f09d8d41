// Arithmetic on single elements, alike for real and complex types. A complex product is
// (a.re b.re - a.im b.im, a.im b.re + a.re b.im), each product and sum rounded by itself.
#pragma once

#include "blas/level1/rot.h"
#include "blas/level1/streams.h"
#include "blas/level1/zero.h"

#include <math.h>

namespace jex::blas {

template <class T>
constexpr T real_element(Real<T> a) {
  if constexpr (is_complex<T>)
    return {a, 0};
  else
    return a;
}

template <class T>
[[gnu::always_inline]] inline T add(T a, T b) {
  if constexpr (is_complex<T>)
    return {a.re + b.re, a.im + b.im};
  else
    return a + b;
}

template <class T>
[[gnu::always_inline]] inline T difference(T a, T b) {
  if constexpr (is_complex<T>)
    return {a.re - b.re, a.im - b.im};
  else
    return a - b;
}
template <class T>
[[gnu::always_inline]] inline T negated(T a) {
  if constexpr (is_complex<T>)
    return {-a.re, -a.im};
  else
    return -a;
}
template <bool conj, class T>
[[gnu::always_inline]] inline T conjugate_if(T a) {
  return conj ? conjugate(a) : a;
}

template <class T>
[[gnu::always_inline]] inline T multiply(T a, T b) {
  if constexpr (is_complex<T>)
    return {a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im};
  else
    return a * b;
}

// x / a. Complex by Smith: with |a.re| >= |a.im| and q = a.im / a.re it is
// x (1, -q) / (a.re + a.im q), otherwise, with q = a.re / a.im, x (q, -1) / (a.im + a.re q).
// All but the last product and division depends on a alone and is done while x is awaited.
template <class T>
[[gnu::always_inline]] inline T quotient(T x, T a) {
  if constexpr (is_complex<T>) {
    using R = Real<T>;
    const bool wide = fabs(a.re) >= fabs(a.im);
    const R large = wide ? a.re : a.im, small = wide ? a.im : a.re;
    const R q = small / large, divisor = large + small * q;
    const T t = multiply(x, wide ? T{1, -q} : T{q, -1});
    return {t.re / divisor, t.im / divisor};
  } else {
    return x / a;
  }
}

}  // namespace jex::blas
