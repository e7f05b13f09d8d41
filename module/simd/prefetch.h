// Asking for cache lines of the second level. Those of the first are asked for by prefetch().
#pragma once

#include "simd/lanes.h"

namespace jex::simd {

// Asks for the cache line of an address, which need not be readable, no nearer than the second
// level.
[[gnu::always_inline]] inline void prefetch_far(const void* p) {
  _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T1);
}

}  // namespace jex::simd
