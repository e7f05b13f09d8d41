// Any length as a convolution: jk = (j^2 + k^2 - (k - j)^2) / 2, so
//
//   y(k) = c(k) sum over j of (x(j) c(j)) conj(c(k - j)),   c(j) = exp(-pi i j^2 / n),
//
// computed by transforms of a power of two (L. I. Bluestein, "A Linear Filtering Approach to the
// Computation of Discrete Fourier Transform", IEEE Transactions on Audio and Electroacoustics 18,
// 1970). The filter is the transform of conj(c), mirrored round 0.
#pragma once

#include "dft/engine/plan.h"

namespace jex::dft {

template <class T>
bool make_chirp(Plan<T>& plan);
template <class T>
void run_chirp(const Plan<T>& plan, Direction d, const T* in, T* out, T* scratch, Real<T> scale);

}  // namespace jex::dft
