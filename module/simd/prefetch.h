// Asking for the cache line of an address, which need not be readable.
#pragma once

#include <xmmintrin.h>

namespace jex::simd {

[[gnu::always_inline]] inline void prefetch(const void* p) {
  _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T0);
}

// No nearer than the second level.
[[gnu::always_inline]] inline void prefetch_far(const void* p) {
  _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T1);
}

}  // namespace jex::simd
