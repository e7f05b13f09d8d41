// Diagonal storage as the kernels see it: stored diagonals of a matrix of m rows and k columns.
//
//   element (i, i + distance)  of diagonal d  at  values[d ld + i]      all counted from 0
//
//   distances -1 0 2     . 0 . 2 . .        column d of values: one place for each row; those
//                        . . 0 . 2 .        outside the matrix are never read
//                        . -1 . 0 . 2
#pragma once

#include "spblas/entry_rule.h"
#include "spblas/operands.h"

#include <jex/types.h>

#include <algorithm>

namespace jex::spblas::dia {

template <class T>
struct Matrix {
  const T* values;
  ptrdiff_t ld;
  const jex_int* distances;
  int count;

  const T* diagonal(int d) const { return values + d * ld; }
};

// Rows or columns begin .. end - 1.
struct Range {
  int begin, end;
  int length() const { return end - begin; }
  bool is_empty() const { return end <= begin; }
};

// The rows of a part of the matrix in which it meets a diagonal.
inline Range rows_of(int distance, Range rows, Range columns) {
  if (distance <= columns.begin - rows.end || distance >= columns.end - rows.begin)
    return {0, 0};  // and columns.end - distance might overflow
  return {std::max(rows.begin, columns.begin - distance),
          std::min(rows.end, columns.end - distance)};
}

// Is a diagonal on the side of a rule, that on the main one unless it is strict?
template <Side side>
inline bool takes(int distance, bool strict) {
  return side == Side::any || beside<side>(0, distance) || (distance == 0 && !strict);
}

}  // namespace jex::spblas::dia
