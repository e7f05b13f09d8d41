// Compile-time repetition and the step from a run-time count to a compile-time one.
#pragma once

#include <type_traits>
#include <utility>

namespace jex::simd {

// body(0), body(1), ... body(count - 1), each with its index as a constant: arrays that are indexed
// this way stay in registers.
template <int count, class Body>
[[gnu::always_inline]] inline void unrolled(Body body) {
  [&]<int... k>(std::integer_sequence<int, k...>) __attribute__((always_inline)) {
    (body(std::integral_constant<int, k>()), ...);
  }
  (std::make_integer_sequence<int, count>());
}

}  // namespace jex::simd
