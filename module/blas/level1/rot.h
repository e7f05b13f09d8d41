// Plane rotations, modified rotations and elementary reflectors: applied to vectors.
#pragma once

#include "blas/level1/streams.h"

namespace jex::blas {

inline float conjugate(float a) { return a; }
inline double conjugate(double a) { return a; }
inline jex_scomplex conjugate(jex_scomplex a) { return {a.re, -a.im}; }
inline jex_dcomplex conjugate(jex_dcomplex a) { return {a.re, -a.im}; }

// x := c x + s y,  y := c y - conj(s) x. The products are pinned one by one: a schedule that mixes
// the registers of an unrolled loop runs a tenth slower.
template <class T, class S>
inline auto rotation(Real<T> c, S s) {
  return [c = Factor<Real<T>>(c), s = Factor<S>(s), t = Factor<S>(conjugate(s))](Lanes<T>& x,
                                                                                 Lanes<T>& y) {
    x = pinned(x);
    y = pinned(y);
    Lanes<T> xt = pinned(x), ys = pinned(y);
    xt = pinned(xt * t);
    ys = pinned(ys * s);
    x = pinned(pinned(x * c) + ys);
    y = pinned(pinned(y * c) - xt);
  };
}

template <class T, class S>
inline void rot(int n, T* x, int incx, T* y, int incy, Real<T> c, S s) {
  for_each<T>(n, rotation<T>(c, s), InOut<T>{x, incx}, InOut<T>{y, incy});
}

// The same on a sparse x and the elements of y that its indices name.
template <class T>
inline void roti(int nz, T* x, const jex_int* indx, T* y, T c, T s) {
  for_each<T>(nz, rotation<T>(c, s), InOut<T>{x}, Indexed(InOut<T>{y}, indx));
}

// Modified Givens rotation; param = flag, h11, h21, h12, h22:
//
//   flag -1: H = | h11 h12 |   0: | 1   h12 |   1: | h11  1  |   -2: identity
//                | h21 h22 |      | h21  1  |      | -1  h22 |
template <class T>
inline void rotm(int n, T* x, int incx, T* y, int incy, const T* param) {
  using L = Lanes<T>;
  const T flag = param[0];
  if (n < 1 || flag == -2) return;
  const Factor<T> h11(param[1]), h21(param[2]), h12(param[3]), h22(param[4]);
  const auto apply = [&](auto rows) {
    for_each<T>(
        n,
        [=](L& x, L& y) {
          const L old = x;
          rows(old, y, x, y);
        },
        InOut<T>{x, incx}, InOut<T>{y, incy});
  };
  if (flag < 0)
    apply([=](L x, L y, L& xh, L& yh) { xh = x * h11 + y * h12, yh = x * h21 + y * h22; });
  else if (flag == 0)
    apply([=](L x, L y, L& xh, L& yh) { xh = x + y * h12, yh = x * h21 + y; });
  else
    apply([=](L x, L y, L& xh, L& yh) { xh = x * h11 + y, yh = y * h22 - x; });
}

// Elementary reflector of order 2: t = (v y + x) tau,  x := x - t,  y := y - t v
template <class T>
inline void rot2(int n, T* x, int incx, T* y, int incy, T tau, T v) {
  const Factor<T> ftau(tau), fv(v);
  for_each<T>(
      n,
      [=](Lanes<T>& x, Lanes<T>& y) {
        const Lanes<T> t = (y * fv + x) * ftau;
        x = x - t;
        y = y - t * fv;
      },
      InOut<T>{x, incx}, InOut<T>{y, incy});
}

// Order 3: t = (p y + x + q z) tau,  x := x - t,  y := y - t p,  z := z - t q
template <class T>
inline void rot3(int n, T* x, int incx, T* y, int incy, T* z, int incz, T tau, T p, T q) {
  const Factor<T> ftau(tau), fp(p), fq(q);
  for_each<T>(
      n,
      [=](Lanes<T>& x, Lanes<T>& y, Lanes<T>& z) {
        const Lanes<T> t = (y * fp + x + z * fq) * ftau;
        x = x - t;
        y = y - t * fp;
        z = z - t * fq;
      },
      InOut<T>{x, incx}, InOut<T>{y, incy}, InOut<T>{z, incz});
}

}  // namespace jex::blas
