// Checks of a user's CSR matrix.
#pragma once

#include "front/spblas/operation.h"

namespace jex::front {

// Pointers and columns of every row; for a solve also ascending columns and, unless it is unit, the
// diagonal.
jex_int check_rows(const jex_csr& a, int base, const Operation& operation, bool solve);

}  // namespace jex::front
