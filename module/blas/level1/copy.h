// y := x. Long vectors pass the caches by: their lines would push out everything else, and a
// streaming store spares the read of each line before it is overwritten.
#pragma once

#include "blas/level1/streams.h"

namespace jex::blas {

// Above this many bytes the two vectors no longer share the last-level cache of a core.
inline constexpr unsigned streaming_copy_bytes = 8u << 20;

template <class T>
inline void copy_streaming(int n, const T* x, T* y) {
  constexpr int width = Lanes<T>::count;
  int i = 0;
  for (const int peel = elements_to_boundary(y, n); i < peel; ++i) y[i] = x[i];
  for (; i + 4 * width <= n; i += 4 * width) {
    const Lanes<T> a = Lanes<T>::load(x + i), b = Lanes<T>::load(x + i + width),
                   c = Lanes<T>::load(x + i + 2 * width), d = Lanes<T>::load(x + i + 3 * width);
    a.stream(y + i);
    b.stream(y + i + width);
    c.stream(y + i + 2 * width);
    d.stream(y + i + 3 * width);
  }
  _mm_sfence();
  for (; i < n; ++i) y[i] = x[i];
}

template <class T>
inline void copy(int n, const T* x, int incx, T* y, int incy) {
  if (n < 1) return;
  const bool boundary = reinterpret_cast<uintptr_t>(y) % 16 % sizeof(T) == 0;
  if (incx == 1 && incy == 1 && boundary && n >= int(streaming_copy_bytes / sizeof(T)))
    return copy_streaming(n, x, y);
  for_each<T>(n, [](Lanes<T> x, Lanes<T>& y) { y = x; }, In<T>{x, incx}, Out<T>{{y, incy}});
}

}  // namespace jex::blas
