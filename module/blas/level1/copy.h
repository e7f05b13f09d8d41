// y := x
#pragma once

#include "blas/level1/streams.h"

namespace jex::blas {

// From this length on the processor's own string copy is ahead of any loop: it owns whole lines
// without reading them first. Below, its start costs more than it saves.
inline constexpr unsigned string_copy_bytes = 2048;

// The only instruction here that no intrinsic gives. Words of 4 bytes divide every element type.
inline void copy_string(unsigned bytes, const void* x, void* y) {
  unsigned words = bytes / 4;
  asm volatile("rep movsl" : "+D"(y), "+S"(x), "+c"(words) : : "memory");
}

template <class T>
inline void copy(int n, const T* x, int incx, T* y, int incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1 && n >= int(string_copy_bytes / sizeof(T)))
    return copy_string(n * sizeof(T), x, y);
  for_each<T>(
      n, [](Lanes<T> x, Lanes<T>& y) { y = x; }, In<T>{x, incx}, Out<T>{{y, incy}});
}

}  // namespace jex::blas
