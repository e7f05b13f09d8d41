// Scalar arithmetic of the models: complex products are (ar br - ai bi, ai br + ar bi), each
// product and sum rounded by itself.
#pragma once

#include "support/vectors.h"

namespace jex::test {

inline jex_scomplex add(jex_scomplex a, jex_scomplex b) { return {a.re + b.re, a.im + b.im}; }
inline jex_dcomplex add(jex_dcomplex a, jex_dcomplex b) { return {a.re + b.re, a.im + b.im}; }
template <class R>
R add(R a, R b) {
  return a + b;
}
template <class T>
T negate(T a) {
  if constexpr (is_complex<T>)
    return {-a.re, -a.im};
  else
    return -a;
}
template <class T>
T conjugate(T a) {
  if constexpr (is_complex<T>) a.im = -a.im;
  return a;
}
template <class T, class S>
T multiply(T a, S b) {
  if constexpr (!is_complex<T>)
    return a * b;
  else if constexpr (!is_complex<S>)
    return {a.re * b, a.im * b};
  else
    return {a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im};
}
template <class T>
T subtract(T a, T b) {
  return add(a, negate(b));
}
template <class T>
Real<T> magnitude(T a) {
  if constexpr (is_complex<T>)
    return std::fabs(a.re) + std::fabs(a.im);
  else
    return std::fabs(a);
}
template <class T>
bool is_zero(T a) {
  return magnitude(a) == 0;
}

}  // namespace jex::test
