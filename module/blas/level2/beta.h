// The first step of every product: y := beta y.
#pragma once

#include "blas/level1/streams.h"
#include "blas/level1/scalar.h"

namespace jex::blas {

// beta = 1 leaves y alone; beta = 0 stores +0 without reading, so that no NaN survives; any other
// beta multiplies. y is the vector as its caller names it: a negative increment walks from the end.
template <class T>
[[gnu::noinline]] void scale_y(int n, T beta, T* y, int incy) {
  if (is_one(beta)) return;
  if (is_zero(beta)) {
    for_each<T>(
        n, [](Lanes<T>& y) { y = Lanes<T>::zero(); }, Out<T>{{y, incy}});
    return;
  }
  const Factor<T> factor(beta);
  for_each<T>(
      n, [=](Lanes<T>& y) { y = y * factor; }, InOut<T>{y, incy});
}

}  // namespace jex::blas
