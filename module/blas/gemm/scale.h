// C := beta C, where no product follows or where the product only adds.
#pragma once

#include "blas/level2/beta.h"

namespace jex::blas {

// beta = 0 stores +0 and reads nothing, so that no NaN survives.
template <class T>
[[gnu::noinline]] void scale_matrix(int m, int n, T beta, T* c, int ldc) {
  if (is_one(beta)) return;
  for (int j = 0; j < n; ++j) scale_y(m, beta, c + ptrdiff_t(j) * ldc, 1);
}

}  // namespace jex::blas
