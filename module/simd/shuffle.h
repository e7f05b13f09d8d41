// Lanes in other places: reversed, pairs twice.
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

}  // namespace jex::simd
