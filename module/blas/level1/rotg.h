// Generation of plane rotations.
//
// rotg, rotm: C. L. Lawson, R. J. Hanson, D. R. Kincaid, F. T. Krogh, "Basic Linear Algebra
// Subprograms for Fortran Usage", ACM Transactions on Mathematical Software 5 (1979), 308-323.
#pragma once

#include "blas/level1/rot.h"

#include <limits>
#include <math.h>

namespace jex::blas {

// Finds c, s with (c s; -s c) (a, b) = (r, 0). a becomes r, b becomes z, from which c and s can be
// found again: z = s if |a| > |b|, else 1/c, or 1 when c is 0.
template <class T>
inline void rotg(T* a, T* b, T* c, T* s) {
  const T abs_a = T(fabs(*a)), abs_b = T(fabs(*b));
  const T scale = abs_a + abs_b;
  if (scale == 0) {
    *c = 1;
    *s = *a = *b = 0;
    return;
  }
  const T as = *a / scale, bs = *b / scale;
  T r = scale * T(sqrt(as * as + bs * bs));
  const T roe = abs_a > abs_b ? *a : *b;
  if (roe < 0) r = -r;
  *c = *a / r;
  *s = *b / r;
  T z = 1;
  if (abs_a > abs_b)
    z = *s;
  else if (*c != 0)
    z = 1 / *c;
  *a = r;
  *b = z;
}

// Complex a and b, real c: c = |a| / norm, s = (a / |a|) conj(b) / norm, a := (a / |a|) norm
// where norm = sqrt(|a|^2 + |b|^2). a = 0 gives c = 0, s = 1, a := b.
template <class T>
requires is_complex<T>
inline void rotg(T* a, const T* b, Real<T>* c, T* s) {
  using R = Real<T>;
  const R abs_a = R(hypot(a->re, a->im)), abs_b = R(hypot(b->re, b->im));
  if (abs_a == 0) {
    *c = 0;
    *s = {1, 0};
    *a = *b;
    return;
  }
  const R scale = abs_a + abs_b;
  const R as = abs_a / scale, bs = abs_b / scale;
  const R norm = scale * R(sqrt(as * as + bs * bs));
  const T unit = {a->re / abs_a, a->im / abs_a};
  *c = abs_a / norm;
  *s = {(unit.re * b->re + unit.im * b->im) / norm, (unit.im * b->re - unit.re * b->im) / norm};
  *a = {unit.re * norm, unit.im * norm};
}

inline constexpr int rotmg_gamma = 4096;

// Whether d lies outside 1/gamma^2 .. gamma^2; no power of gamma brings 0 or infinity inside.
template <class T>
inline bool rotmg_rescales(T d) {
  constexpr T gamma2 = T(rotmg_gamma) * rotmg_gamma;
  return d != 0 && (d <= 1 / gamma2 || d >= gamma2) && d <= std::numeric_limits<T>::max();
}

// The modified rotation H that makes the second component of H (sqrt(d1) x1, sqrt(d2) y1) zero.
// d1, d2 and x1 are updated; the scale factors are kept between 1/gamma^2 and gamma^2, gamma =
// 4096, by moving powers of gamma into H. param receives the flag and the elements that it leaves
// open.
template <class T>
inline void rotmg(T* d1, T* d2, T* x1, T y1, T* param) {
  constexpr T gamma = rotmg_gamma, gamma2 = gamma * gamma;
  T flag, h11 = 0, h12 = 0, h21 = 0, h22 = 0;
  const auto magnitude = [](T a) { return T(fabs(a)); };
  // H as a full matrix, so that its rows can be scaled.
  const auto fill = [&] {
    if (flag == 0) h11 = h22 = 1;
    if (flag > 0) h21 = -1, h12 = 1;
    flag = -1;
  };
  const auto clear = [&] {
    flag = -1;
    h11 = h12 = h21 = h22 = 0;
    *d1 = *d2 = *x1 = 0;
  };

  if (*d1 < 0) {
    clear();
  } else {
    const T p2 = *d2 * y1;
    if (p2 == 0) {
      param[0] = -2;
      return;
    }
    const T p1 = *d1 * *x1;
    const T q2 = p2 * y1, q1 = p1 * *x1;
    if (magnitude(q1) > magnitude(q2)) {
      h21 = -y1 / *x1;
      h12 = p2 / p1;
      const T u = 1 - h12 * h21;
      if (u > 0) {
        flag = 0;
        *d1 /= u;
        *d2 /= u;
        *x1 *= u;
      } else {
        clear();
      }
    } else if (q2 < 0) {
      clear();
    } else {
      flag = 1;
      h11 = p1 / p2;
      h22 = *x1 / y1;
      const T u = 1 + h11 * h22;
      const T old = *d1;
      *d1 = *d2 / u;
      *d2 = old / u;
      *x1 = y1 * u;
    }
    // Row 1 of H is scaled with d1 and x1, row 2 with d2.
    const auto scale_row = [&](T* d, auto... entry) {
      while (rotmg_rescales(magnitude(*d))) {
        fill();
        const bool small = magnitude(*d) < 1;
        *d = small ? *d * gamma2 : *d / gamma2;
        ((*entry *= small ? 1 / gamma : gamma), ...);
      }
    };
    scale_row(d1, x1, &h11, &h12);
    scale_row(d2, &h21, &h22);
  }
  if (flag <= 0) param[2] = h21, param[3] = h12;
  if (flag != 0) param[1] = h11, param[4] = h22;
  param[0] = flag;
}

}  // namespace jex::blas
