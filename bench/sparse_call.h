// One call of a sparse routine as peers take it: zero-based CSR of three arrays.
#pragma once

#include <jex/types.h>

namespace jex::bench {

struct SparseCall {
  jex_int m, n;  ///< order of the matrix, right-hand sides
  const void *alpha, *values;
  const jex_int *columns, *rows;
  const void* x;
  jex_int ldx;
  void* y;  ///< solved in place by solves
  jex_int ldy;
};

}  // namespace jex::bench
