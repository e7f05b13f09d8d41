// Quotients of real lanes, each rounded as a division of scalars is.
#pragma once

#include "simd/lanes.h"

namespace jex::simd {

inline Lanes<float> operator/(Lanes<float> a, Lanes<float> b) { return {_mm_div_ps(a.v, b.v)}; }
inline Lanes<double> operator/(Lanes<double> a, Lanes<double> b) { return {_mm_div_pd(a.v, b.v)}; }

}  // namespace jex::simd
