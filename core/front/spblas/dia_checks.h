// A user's diagonals: the operations of the parts beside the main diagonal, and their checks.
#pragma once

#include "front/spblas/operation.h"

namespace jex::front {

// Operations of the general kernels on the row parts and the mirror parts of a matrix, 0 where
// there are none; negative mirror parts. Some conjugates have no general kernel: not known.
struct DiaParts {
  char row, mirror;
  bool negative, known;
};
DiaParts dia_parts(const Operation& operation);

// For a solve: ascending distances and, unless it is unit, the main diagonal.
jex_int check_distances(const jex_dia& a, const Operation& operation);

}  // namespace jex::front
