// What becomes of an element on its way from one matrix to another: it is moved as it is,
// conjugated, or multiplied by alpha. A factor of 1 moves, so that copies keep every bit.
#pragma once

#include "blas/level1/rot.h"
#include "blas/level1/zero.h"

namespace jex::trans {

using blas::conjugate;
using simd::Factor;
using simd::is_complex;
using simd::Lanes;
using simd::Real;

struct Move {
  template <class T>
  Lanes<T> operator()(Lanes<T> a) const {
    return a;
  }
};

struct Conjugate {
  template <class T>
  Lanes<T> operator()(Lanes<T> a) const {
    return simd::conjugate(a);
  }
};

// alpha a, or alpha conj(a): the factor takes over the sign, which is exact.
template <class T>
struct Multiply {
  Factor<T> factor;
  Multiply(T alpha, bool conj) : factor(alpha) {
    if constexpr (is_complex<T>) {
      if (conj) {
        factor.re = Lanes<T>::all({alpha.re, -alpha.re}).parts;
        factor.im = Lanes<Real<T>>::all(alpha.im);
      }
    }
  }
  Lanes<T> operator()(Lanes<T> a) const { return a * factor; }
};

// call(scale) with the cheapest scale that does alpha a, or alpha conj(a).
template <class T, class Call>
inline void with_scale(T alpha, bool conj, Call call) {
  if (!blas::is_one(alpha)) return call(Multiply<T>(alpha, conj));
  if constexpr (is_complex<T>)
    if (conj) return call(Conjugate());
  call(Move());
}

}  // namespace jex::trans
