// Between the transform of n/2 pairs of real numbers and the spectrum of the n numbers, n = 2 m:
//
//   z(j) = x(2j) + i x(2j+1)
//   X(k) = (z(k) + conj z(m-k)) / 2 - i w^k (z(k) - conj z(m-k)) / 2
//
// with w = exp(-2 pi i / n); the pair k, m - k is done at once, in its place of the Perm layout (J.
// W. Cooley, P. A. W. Lewis, P. D. Welch, "The Fast Fourier Transform Algorithm: Programming
// Considerations in the Calculation of Sine, Cosine and Laplace Transforms", Journal of Sound and
// Vibration 12, 1970).
#pragma once

#include "dft/engine/butterfly.h"
#include "simd/shuffle.h"

namespace jex::dft {

// Pairs k, m - k with first < k <= end. The first ones go with X(0), X(m) and the middle.
struct PairRange {
  int32_t first, end;
  static PairRange all(int32_t m) { return {0, (m - 1) / 2}; }
};

// z in place to the spectrum times scale, m complex places.
template <class T>
void split_forward(T* z, int32_t m, const T* roots, Real<T> scale, PairRange pairs);

// The other way, times 2: last points to the number of X(m), x to the spectrum from X(0) on, whose
// place of imaginary part is not read. x and z are the same or apart.
template <class T>
void split_backward(const T* x, const Real<T>* last, T* z, int32_t m, const T* roots,
                    PairRange pairs);

}  // namespace jex::dft
