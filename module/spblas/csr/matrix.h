// Compressed sparse rows as the kernels see them.
//
//   row i (from 0):  entries begin[i] - begin[0] .. end[i] - begin[0] - 1 of values and columns
//
// Rows and columns are named by the numbers that the index arrays use: row i is i + base, and the
// dense operands are shifted so that number r is found at place r. So no kernel knows the base.
#pragma once

#include "spblas/operands.h"
#include "spblas/sums.h"

#include <jex/types.h>

#include <stdint.h>

namespace jex::spblas::csr {

template <class T>
struct Matrix {
  const T* values;
  const jex_int *columns, *begin, *end;
  int base;
};

// A matrix as the loops walk it: an entry is the address of its column number. Values lie at the
// same places of their array, so that their addresses are a multiple of that one and a distance,
// and one register walks both arrays. The seven that there are go far with that.
//
// The distance is kept as a pointer, not as an integer: of addresses summed from integers alone
// g++ 12 makes accesses with a null base, takes those for the end of the program, and a function
// whose loop begins with one for a function without effect.
template <class T>
struct Rows {
  const char* values;
  const jex_int *columns, *begin, *end;
  int base;

  explicit Rows(const Matrix<T>& a)
      : values(reinterpret_cast<const char*>(a.values) -
               reinterpret_cast<uintptr_t>(a.columns) * scale),
        columns(a.columns - a.begin[0]),
        begin(a.begin - a.base),
        end(a.end - a.base),
        base(a.base) {}

  // Of the row with the number i.
  Entry first(int i) const { return columns + begin[i]; }
  Entry last(int i) const { return columns + end[i]; }
  // Of entry k; there need not be one.
  [[gnu::always_inline]] const T* place_of_value(Entry k) const {
    return reinterpret_cast<const T*>(values + reinterpret_cast<uintptr_t>(k) * scale);
  }
  [[gnu::always_inline]] const T& value(Entry k) const { return *place_of_value(k); }

 private:
  static constexpr unsigned scale = sizeof(T) / sizeof(jex_int);
};

}  // namespace jex::spblas::csr
