// Registers from elements at places that an index array tells.
#pragma once

#include "simd/lanes.h"

namespace jex::simd {

// p[places[0]], p[places[1]] and so on, as many as a register holds.
[[gnu::always_inline]] inline Lanes<double> gather(const double* p, const jex_int* places) {
  return {_mm_loadh_pd(_mm_load_sd(p + places[0]), p + places[1])};
}
[[gnu::always_inline]] inline Lanes<float> gather(const float* p, const jex_int* places) {
  const auto two = [=](const jex_int* at) __attribute__((always_inline)) {
    return _mm_unpacklo_ps(_mm_load_ss(p + at[0]), _mm_load_ss(p + at[1]));
  };
  return {_mm_movelh_ps(two(places), two(places + 2))};
}

}  // namespace jex::simd
