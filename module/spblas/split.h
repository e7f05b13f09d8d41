// Sums of the partial vectors that scattering kernels leave, one for each part of the work.
#pragma once

#include "blas/level1/streams.h"

#include <stddef.h>

namespace jex::spblas {

using blas::In;
using blas::InOut;
using simd::Lanes;

// y(i) := y(i) + (P0(i) + P1(i)), then + (P2(i) + P3(i)) and so on, an odd last one by itself, for
// the rows first .. last, counted from 1. Element i of P0 is partials[i - 1]; each of the others
// begins ld elements behind the one before.
template <class T>
void split(int first, int last, int parts, int ld, const T* partials, T* y) {
  const int n = last - first + 1;
  partials += first - 1;
  y += first - 1;
  for (; parts > 1; parts -= 2, partials += 2 * ptrdiff_t(ld))
    blas::for_each<T>(
        n, [](Lanes<T> a, Lanes<T> b, Lanes<T>& y) { y = y + (a + b); }, In<T>{partials},
        In<T>{partials + ld}, InOut<T>{y});
  if (parts == 1)
    blas::for_each<T>(
        n, [](Lanes<T> a, Lanes<T>& y) { y = y + a; }, In<T>{partials}, InOut<T>{y});
}

// The symmetric kernels' vectors stand staggered: each begins 8 elements further on than ld says,
// so that the same row of several vectors does not fall into one set of the cache.
inline constexpr int stagger = 8;

}  // namespace jex::spblas
