// Errors and warnings of the transforms by their codes.
#pragma once

#include "pdett/state.h"

namespace jex::pdett {

enum Code {
  failed_before = 0,
  too_few_intervals = 1,
  unknown_kind = 3,
  not_initialised = 4,
  not_committed = 5,
  does_not_fit = 6,
  negative_tolerance = 300,
  first_not_zero = 302,  // sine transform, f[0]
  last_not_zero = 303,   // sine transform, f[n]
  staggered_last = 307,  // f[n] of a staggered transform
  bad_threads = 308,
  staggered_first = 309,  // f[0] of a staggered transform
  fourier_error = 1001
};

// Sent to where ipar's switch for errors or that for warnings says, unless that is 0. tolerance is
// the one in force, text a value or the Fourier interface's words.
void report(Code code, const jex_int* ipar, double tolerance, double replacement, const char* text);

}  // namespace jex::pdett
