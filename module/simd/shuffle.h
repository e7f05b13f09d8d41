// Lanes in other places: reversed, conjugated, parts put side by side.
#pragma once

#include "simd/complex.h"

namespace jex::simd {

[[gnu::always_inline]] inline Lanes<jex_dcomplex> reversed(Lanes<jex_dcomplex> a) { return a; }
[[gnu::always_inline]] inline Lanes<jex_scomplex> reversed(Lanes<jex_scomplex> a) {
  return {_mm_castpd_ps(_mm_shuffle_pd(_mm_castps_pd(a.parts.v), _mm_castps_pd(a.parts.v), 1))};
}

// The first pair of lanes twice, or the second one; doubles have but one.
inline Lanes<double> low_pair(Lanes<double> a) { return a; }
inline Lanes<float> low_pair(Lanes<float> a) { return {_mm_movelh_ps(a.v, a.v)}; }
inline Lanes<double> high_pair(Lanes<double> a) { return a; }
inline Lanes<float> high_pair(Lanes<float> a) { return {_mm_movehl_ps(a.v, a.v)}; }

// Real and imaginary parts become elements: those of the lower lanes, of the upper lanes.
inline Lanes<jex_dcomplex> zip_low(Lanes<double> re, Lanes<double> im) {
  return {{_mm_unpacklo_pd(re.v, im.v)}};
}
inline Lanes<jex_dcomplex> zip_high(Lanes<double> re, Lanes<double> im) {
  return {{_mm_unpackhi_pd(re.v, im.v)}};
}
inline Lanes<jex_scomplex> zip_low(Lanes<float> re, Lanes<float> im) {
  return {{_mm_unpacklo_ps(re.v, im.v)}};
}
inline Lanes<jex_scomplex> zip_high(Lanes<float> re, Lanes<float> im) {
  return {{_mm_unpackhi_ps(re.v, im.v)}};
}

template <class T>
[[gnu::always_inline]] inline Lanes<T> conjugate(Lanes<T> a) {
  return {flip<1>(a.parts)};
}

}  // namespace jex::simd
