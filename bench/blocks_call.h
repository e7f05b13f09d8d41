// Products of block matrices and of two sparse matrices as peers take them: zero-based CSR.
#pragma once

#include <jex/types.h>

namespace jex::bench {

/// y := A x. Rows and columns of A are m.
struct BlockCall {
  jex_int m;
  const double* values;
  const jex_int *columns, *rows;
  const double* x;
  double* y;
};

/// C := A A, in memory of the peer's own. If values is not null, those of C are copied there.
struct SquareCall {
  jex_int m;
  const double* a;
  const jex_int *columns, *rows;
  double* values;
};

}  // namespace jex::bench
