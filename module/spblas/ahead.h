// Asking for the entries of a matrix before their turn. What a processor foresees by itself is too
// little where several arrays go by at once.
#pragma once

#include "simd/prefetch.h"
#include "simd/repeat.h"

#include <jex/types.h>

#include <stddef.h>

namespace jex::spblas {

// Bytes by which indices and values are asked for in advance. The indices have to be near: where x
// is scattered, all waits for them. The values would be in the way of x there if they came nearer
// than the second level.
inline constexpr int indices_ahead = 1024, values_ahead = 8192;
// Bytes of values from which that pays: the second level holds what is smaller.
inline constexpr int large = 1 << 20;

// ask(line) for the cache lines that hold so many bytes behind p, or all but the end of the last.
template <size_t bytes, class Ask>
[[gnu::always_inline]] inline void for_lines(const void* p, Ask ask) {
  constexpr int line = 64;
  simd::unrolled<(bytes + line - 1) / line>([&](auto k) __attribute__((always_inline)) {
    ask(static_cast<const char*>(p) + k * line);
  });
}

// Of count entries from these addresses on.
template <int count>
[[gnu::always_inline]] inline void ask_for_indices(const jex_int* indices) {
  for_lines<count * sizeof *indices>(
      indices, [](const char* line)
                   __attribute__((always_inline)) { simd::prefetch(line + indices_ahead); });
}
template <int count, class T>
[[gnu::always_inline]] inline void ask_for_values(const T* values) {
  for_lines<count * sizeof(T)>(
      values, [](const char* line)
                  __attribute__((always_inline)) { simd::prefetch_far(line + values_ahead); });
}

}  // namespace jex::spblas
