// Odd lengths by the definition: x(j) + x(n-j) and x(j) - x(n-j) side by side meet a cosine and a
// sine, and give both parts of a result. Longer primes that are a convolution take less time as
// complex numbers.
#pragma once

#include "dft/engine/blocks.h"
#include "dft/engine/butterfly.h"

namespace jex::dft {

// The roots exp(-2 pi i k / n), k = 0 .. n-1, or null for a transform as complex numbers; false
// when there is no memory.
template <class T>
bool make_odd_roots(int32_t n, const T*& roots, Blocks& blocks);

// n up to 180; Perm on the packed side; in and out are the same or apart.
template <class T>
void run_odd_direct(int32_t n, const T* roots, Direction d, const Real<T>* in, Real<T>* out,
                    Real<T> scale);

}  // namespace jex::dft
