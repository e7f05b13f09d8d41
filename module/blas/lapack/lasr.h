// A := P A or A := A P', P a sequence of plane rotations with real cosines and sines.
#pragma once

#include "blas/level1/rot.h"
#include "blas/level2/storage.h"

namespace jex::blas {

enum class Sequence { left, right };
enum class Pivot { variable, top, bottom };  // planes (k, k + 1), (1, k + 1), (k, last)
enum class Direction { forward, backward };  // k = 1 first, or last

// body(k, i, j) for the rotations in the order in which they are applied, in the plane of i and j.
template <Pivot pivot, Direction direction, class Body>
[[gnu::always_inline]] inline void for_planes(int n, Body body) {
  for (int step = 0; step < n - 1; ++step) {
    const int k = direction == Direction::forward ? step : n - 2 - step;
    body(k, pivot == Pivot::top ? 0 : k, pivot == Pivot::bottom ? n - 1 : k + 1);
  }
}

// Rows are rotated in panels of columns, whose cache lines serve one rotation after the other.
template <Sequence side, Pivot pivot, Direction direction, class T>
[[gnu::noinline]] void lasr(int m, int n, const Real<T>* c, const Real<T>* s, T* a, int lda) {
  if (m <= 0 || n <= 0) return;
  if constexpr (side == Sequence::right) {
    for_planes<pivot, direction>(n, [=](int k, int i, int j) {
      rot<T>(m, a + ptrdiff_t(i) * lda, 1, a + ptrdiff_t(j) * lda, 1, c[k], s[k]);
    });
  } else {
    constexpr int panel = 32;
    for (int first = 0; first < n; first += panel, a += ptrdiff_t(panel) * lda)
      for_planes<pivot, direction>(m, [=](int k, int i, int j) {
        rot<T>(std::min(panel, n - first), a + i, lda, a + j, lda, c[k], s[k]);
      });
  }
}

}  // namespace jex::blas
