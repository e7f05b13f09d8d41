// Fronts that answer with the position of the first wrong argument instead of reporting it.
#pragma once

#include "front/entries.h"

#include <stdint.h>

namespace jex::front {

inline constexpr jex_int no_module = -1;

// Hands a call to the module, unless an argument is wrong (its position is not 0).
template <class Call>
jex_int checked(jex_int position, Call call) {
  if (position) return position;
  const Module* module = entries();
  if (!module) return no_module;
  call(*module);
  return 0;
}

// Whether count lines of length elements, ld apart, elements stride apart and so many bytes long,
// reach beyond the offsets of a signed 32-bit number.
inline bool too_large(int64_t count, int64_t length, int64_t ld, int64_t stride, int64_t bytes) {
  return count > 0 && length > 0 &&
         (count - 1) * ld + (length - 1) * stride + 1 > INT32_MAX / bytes;
}

}  // namespace jex::front
