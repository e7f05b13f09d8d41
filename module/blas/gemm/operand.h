// A matrix as the multiply reads it: op(X)(i, j), whichever way X is stored.
#pragma once

#include "blas/level2/storage.h"
#include "simd/lanes.h"

#include <stddef.h>

namespace jex::blas {

template <class T>
struct Operand {
  const T* x;
  int ld;
  Op op;

  bool by_columns() const { return op == Op::none; }
  bool conjugates() const { return op == Op::conj_transpose; }
  // op(X) from element (i, j) on.
  Operand from(int i, int j) const {
    return {by_columns() ? x + i + ptrdiff_t(j) * ld : x + j + ptrdiff_t(i) * ld, ld, op};
  }
  ptrdiff_t row_distance() const { return by_columns() ? 1 : ld; }
  ptrdiff_t column_distance() const { return by_columns() ? ld : 1; }
};

}  // namespace jex::blas
