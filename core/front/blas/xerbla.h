// Reports of wrong arguments. They go to xerbla_ and cblas_xerbla as the program sees them: its own
// ones, else those of the drop-in library, else the core's. None of the core's ends the process.
#pragma once

#include <jex/types.h>

namespace jex::front {

// A wrong argument of the Fortran routine; its name in lower case.
void report(const char* routine, jex_int position);

// Whether a Fortran entry may go on: reports the position of the wrong argument, unless it is 0.
inline bool right(const char* routine, jex_int position) {
  if (!position) [[likely]]
    return true;
  report(routine, position);
  return false;
}

// A wrong argument of a C entry; position counts the order. Row-major calls count the arguments as
// the Fortran call behind them, which has some of them the other way round: that is what programs'
// own cblas_xerbla expect. what names a bad option of that value, null where it is another
// argument.
void report_c(const char* entry, jex_int position, bool row_major, const char* what, jex_int value);

}  // namespace jex::front
