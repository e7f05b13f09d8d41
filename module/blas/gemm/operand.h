// A matrix as the multiply reads it: op(X)(i, j), whichever way X is stored.
#pragma once

#include "blas/level2/storage.h"
#include "simd/lanes.h"

#include <algorithm>
#include <stddef.h>

namespace jex::blas {

// The elements of a square C that its caller wants. The others may be computed or left as they are.
enum class Wanted { all, upper, lower };

// Rows from .. to - 1 of C that hold wanted elements of columns j .. j + columns - 1.
struct WantedRows {
  int from, to;
  WantedRows(Wanted wanted, int rows, int j, int columns)
      : from(wanted == Wanted::lower ? std::min(j, rows) : 0),
        to(wanted == Wanted::upper ? std::min(j + columns, rows) : rows) {}
};

// The same of rows i .. i + rows - 1 alone, from the i-th on, in whole lanes of so many rows.
struct WantedLanes {
  int skipped, rows;
  WantedLanes(const WantedRows& wanted, int i, int rows, int height)
      : skipped(std::max(wanted.from - i, 0) / height * height),
        rows(std::min((wanted.to - i + height - 1) / height * height, rows) - skipped) {}
};

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
