// Small services on scalars and vectors for the callers of the sparse kernels.
#pragma once

#include "blas/level1/scalar.h"

#include <string.h>

namespace jex::spblas {

template <class T>
void set_zeros(T* x, int n) {
  if (n > 0) memset(x, 0, n * sizeof(T));
}

template <class T>
void set_one(T* x) {
  if constexpr (simd::is_complex<T>)
    *x = {1, 0};
  else
    *x = 1;
}

template <class T>
void negate(T* x) {
  *x = blas::negated(*x);
}

template <class T>
void check_zero(const T* x, int* flag) {
  if constexpr (simd::is_complex<T>)
    *flag = !(x->re == 0 && x->im == 0);
  else
    *flag = !(*x == 0);
}

}  // namespace jex::spblas
