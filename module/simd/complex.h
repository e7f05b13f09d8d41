// Complex lanes as transforms use them: rotations by a quarter turn, products with roots of unity.
//
// A root w = c - i s in a table is a pair of registers, ready to multiply all lanes:
//
//   double   c  c |  s -s               one root
//   float    c0 c0 c1 c1 | s0 -s0 s1 -s1   two roots, or the same one twice
//
// so that a w = a (c c) + swap(a) (s -s), and with the conjugate root the sum is a difference.
#pragma once

#include <stddef.h>

#include "simd/lanes.h"

namespace jex::simd {

// Elements of an array: those of dcomplex on 16-byte boundaries, those of scomplex anywhere.
[[gnu::always_inline]] inline Lanes<jex_dcomplex> load_elements(const jex_dcomplex* p) {
  return {{_mm_load_pd(&p->re)}};
}
[[gnu::always_inline]] inline Lanes<jex_scomplex> load_elements(const jex_scomplex* p) {
  return Lanes<jex_scomplex>::load(p);
}
[[gnu::always_inline]] inline Lanes<jex_dcomplex> load_element(const jex_dcomplex* p) {
  return load_elements(p);
}
[[gnu::always_inline]] inline Lanes<jex_scomplex> load_element(const jex_scomplex* p) {
  return Lanes<jex_scomplex>::load_first(p);
}
[[gnu::always_inline]] inline void store_elements(Lanes<jex_dcomplex> a, jex_dcomplex* p) {
  _mm_store_pd(&p->re, a.parts.v);
}
[[gnu::always_inline]] inline void store_elements(Lanes<jex_scomplex> a, jex_scomplex* p) {
  a.store(p);
}
[[gnu::always_inline]] inline void store_element(Lanes<jex_dcomplex> a, jex_dcomplex* p) {
  store_elements(a, p);
}
[[gnu::always_inline]] inline void store_element(Lanes<jex_scomplex> a, jex_scomplex* p) {
  a.store_first(p);
}

// Elements at places of their own, a distance apart.
[[gnu::always_inline]] inline void scatter_elements(Lanes<jex_dcomplex> a, jex_dcomplex* p,
                                                    ptrdiff_t) {
  store_elements(a, p);
}
[[gnu::always_inline]] inline void scatter_elements(Lanes<jex_scomplex> a, jex_scomplex* p,
                                                    ptrdiff_t distance) {
  a.store_first(p);
  _mm_storeh_pi((__m64*)(p + distance), a.parts.v);
}

// The signs of the even (parity 0) or odd lanes change.
template <int parity>
inline Lanes<double> flip(Lanes<double> a) {
  return {_mm_xor_pd(a.v, parity ? _mm_setr_pd(0.0, -0.0) : _mm_setr_pd(-0.0, 0.0))};
}
template <int parity>
inline Lanes<float> flip(Lanes<float> a) {
  return {_mm_xor_ps(
      a.v, parity ? _mm_setr_ps(0.0f, -0.0f, 0.0f, -0.0f) : _mm_setr_ps(-0.0f, 0.0f, -0.0f, 0.0f))};
}

// sign i a
template <int sign, class T>
[[gnu::always_inline]] inline Lanes<T> turned(Lanes<T> a) {
  return {flip < sign < 0 ? 1 : 0 > (swap_parts(a.parts))};
}

template <class T>
[[gnu::always_inline]] inline Lanes<T> negated(Lanes<T> a) {
  return {Lanes<Real<T>>::zero() - a.parts};
}

// a (c + i s), the real c and s known to the compiler's constants.
template <class T>
[[gnu::always_inline]] inline Lanes<T> times(Lanes<T> a, Real<T> c, Real<T> s) {
  return {a.parts * Lanes<Real<T>>::all(c) + swap_parts(a.parts) * Lanes<T>::all({-s, s}).parts};
}
template <class T>
[[gnu::always_inline]] inline Lanes<T> scaled(Lanes<T> a, Real<T> factor) {
  return {a.parts * Lanes<Real<T>>::all(factor)};
}
// i factor a
template <class T>
[[gnu::always_inline]] inline Lanes<T> scaled_turned(Lanes<T> a, Real<T> factor) {
  return {swap_parts(a.parts) * Lanes<T>::all({-factor, factor}).parts};
}

// a w (sign -1) or a conj(w) (sign 1), w from a table.
template <int sign, class T>
[[gnu::always_inline]] inline Lanes<T> times_root(Lanes<T> a, const Real<T>* w) {
  const auto straight = a.parts * Lanes<Real<T>>::load_aligned(w);
  const auto crossed =
      swap_parts(a.parts) * Lanes<Real<T>>::load_aligned(w + Lanes<Real<T>>::count);
  if constexpr (sign < 0)
    return {straight + crossed};
  else
    return {straight - crossed};
}

// The parts of each element doubled: (re re ..) and (im im ..).
inline Lanes<double> real_parts(Lanes<jex_dcomplex> a) {
  return {_mm_unpacklo_pd(a.parts.v, a.parts.v)};
}
inline Lanes<double> imaginary_parts(Lanes<jex_dcomplex> a) {
  return {_mm_unpackhi_pd(a.parts.v, a.parts.v)};
}
inline Lanes<float> real_parts(Lanes<jex_scomplex> a) { return {_mm_moveldup_ps(a.parts.v)}; }
inline Lanes<float> imaginary_parts(Lanes<jex_scomplex> a) { return {_mm_movehdup_ps(a.parts.v)}; }

// a b (sign 1) or a conj(b) (sign -1), element by element.
template <int sign, class T>
[[gnu::always_inline]] inline Lanes<T> times_elements(Lanes<T> a, Lanes<T> b) {
  const auto straight = a.parts * real_parts(b);
  const auto crossed = swap_parts(a.parts) * imaginary_parts(b);
  if constexpr (sign > 0)
    return {add_alternating(straight, crossed)};
  else
    return {straight + flip<1>(crossed)};
}

// Two registers of two elements as the rows of a square: its columns.
inline Lanes<jex_scomplex> first_column(Lanes<jex_scomplex> a, Lanes<jex_scomplex> b) {
  return {{_mm_movelh_ps(a.parts.v, b.parts.v)}};
}
inline Lanes<jex_scomplex> second_column(Lanes<jex_scomplex> a, Lanes<jex_scomplex> b) {
  return {{_mm_movehl_ps(b.parts.v, a.parts.v)}};
}
inline void store_second(Lanes<jex_scomplex> a, jex_scomplex* p) {
  _mm_storeh_pi((__m64*)p, a.parts.v);
}

}  // namespace jex::simd
