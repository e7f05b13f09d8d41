// One call of a sparse routine as peers take it: zero-based CSR of three arrays, with the row of
// each entry for those that walk a list, and diagonals for those that walk them.
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
  const jex_int* entry_rows;
  const void* diagonals;  ///< m elements each, element i of distance d at (i, i + d)
  const jex_int* distances;
  jex_int diagonal_count;
};

}  // namespace jex::bench
