// Tests of the scalars for 0 and 1. That for 0 is by bit pattern, so that a mode that flushes
// denormals to zero does not turn a tiny factor into a quick return.
#pragma once

#include <bit>
#include <stdint.h>

#include <jex/types.h>

namespace jex::blas {

inline bool is_zero(float a) { return (std::bit_cast<uint32_t>(a) << 1) == 0; }
inline bool is_zero(double a) { return (std::bit_cast<uint64_t>(a) << 1) == 0; }
inline bool is_zero(jex_scomplex a) { return is_zero(a.re) && is_zero(a.im); }
inline bool is_zero(jex_dcomplex a) { return is_zero(a.re) && is_zero(a.im); }

inline bool is_one(float a) { return a == 1; }
inline bool is_one(double a) { return a == 1; }
inline bool is_one(jex_scomplex a) { return a.re == 1 && is_zero(a.im); }
inline bool is_one(jex_dcomplex a) { return a.re == 1 && is_zero(a.im); }

}  // namespace jex::blas
