// Numbers as a complex transform of the same odd length meets them: as they are, or a spectrum in
// Perm with the conjugates of its pairs.
#pragma once

#include "dft/engine/butterfly.h"

namespace jex::dft {

// The operands of direction d as complex elements.
template <class T>
void widen(Direction d, const Real<T>* in, T* x, int32_t n) {
  if (d == Direction::forward) {
    for (int32_t j = 0; j < n; ++j) x[j] = {in[j], 0};
    return;
  }
  x[0] = {in[0], 0};
  for (int32_t k = 1; k <= n / 2; ++k) {
    x[k] = {in[2 * k - 1], in[2 * k]};
    x[n - k] = {in[2 * k - 1], -in[2 * k]};
  }
}

// What remains of its results.
template <class T>
void narrow(Direction d, const T* x, Real<T>* out, int32_t n) {
  if (d == Direction::backward) {
    for (int32_t j = 0; j < n; ++j) out[j] = x[j].re;
    return;
  }
  out[0] = x[0].re;
  for (int32_t k = 1; k <= n / 2; ++k) {
    out[2 * k - 1] = x[k].re;
    out[2 * k] = x[k].im;
  }
}

}  // namespace jex::dft
