// Dense operands and single elements, as the kernels of all formats use them.
#pragma once

#include "blas/level1/scalar.h"
#include "blas/level1/update.h"
#include "spblas/columns.h"

namespace jex::spblas {

template <class T>
struct Dense {
  T* p;
  ptrdiff_t ld;
};

// The column of a dense operand that belongs to element 0, moved to where number 0 would be.
template <Layout layout, class T>
[[gnu::always_inline]] inline T* from_number_0(T* p, int base, ptrdiff_t ld) {
  return at_row<layout>(p, -base, ld);
}

// C := C + alpha B, m rows and n columns.
template <Layout layout, class T>
inline void add_scaled(int m, int n, const T& alpha, Dense<const T> b, Dense<T> c) {
  const bool by_rows = layout == Layout::row_major;
  const int lines = by_rows ? m : n, length = by_rows ? n : m;
  for (int i = 0; i < lines; ++i) blas::axpy(length, alpha, b.p + i * b.ld, 1, c.p + i * c.ld, 1);
}

template <class T>
T signed_alpha(bool negative, const T& alpha) {
  return negative ? blas::negated(alpha) : alpha;
}

}  // namespace jex::spblas
