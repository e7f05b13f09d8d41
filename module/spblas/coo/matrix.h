// Coordinate storage as the kernels see it: a list of entries (row number, column number, value) in
// any order.
//
// Rows and columns are named by the numbers that the index arrays use; the dense operands are
// shifted so that number r is found at place r. So no kernel knows the base.
#pragma once

#include "spblas/operands.h"
#include "spblas/sums.h"

#include <jex/types.h>

#include <stdint.h>

namespace jex::spblas::coo {

template <class T>
struct Matrix {
  const T* values;
  const jex_int *rows, *columns;
  int count, base;
};

// A list as the loops walk it: an entry is the address of its column number. Its row number lies at
// a fixed distance, and its value at a multiple of that address and a distance, so that one
// register walks three arrays. The distances are kept as pointers, for the reason that stands
// beside the rows of csr/matrix.h; pinned, as the compiler would else take them apart again.
template <class T>
struct Entries {
  const char *values, *rows;
  Entry first, last;

  // Entries begin .. end - 1 of the list.
  Entries(const Matrix<T>& a, int begin, int end)
      : values(pinned(reinterpret_cast<const char*>(a.values) -
                      reinterpret_cast<uintptr_t>(a.columns) * scale)),
        rows(
            pinned(reinterpret_cast<const char*>(a.rows) - reinterpret_cast<uintptr_t>(a.columns))),
        first(a.columns + begin),
        last(a.columns + end) {}

  [[gnu::always_inline]] const jex_int& row(Entry k) const {
    return *reinterpret_cast<const jex_int*>(rows + reinterpret_cast<uintptr_t>(k));
  }
  [[gnu::always_inline]] const T& value(Entry k) const {
    return *reinterpret_cast<const T*>(values + reinterpret_cast<uintptr_t>(k) * scale);
  }

 private:
  static constexpr unsigned scale = sizeof(T) / sizeof(jex_int);
};

}  // namespace jex::spblas::coo
