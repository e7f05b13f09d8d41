// Errors and warnings of the solvers by their codes.
#pragma once

#include "pdepl/state.h"

namespace jex::pdepl {

enum Code {
  failed_before = 0,
  bad_x = 1,
  bad_y = 2,
  bad_z = 3,
  bad_conditions = 4,
  bad_domain = 5,
  transform_error = 6,
  release_error = 7,
  negative_coefficient = 300,
  moved_tables = 301,
  singular_problem = 302
};

// What the printers do: in the set of texts that count indices from 0 (c) or from 1 (f), an error
// to where ipar's switch for errors says, a warning to where that for warnings says.
enum class Flavour { c, f };
void print(Flavour flavour, jex_int code, const jex_int* ipar, double q, const char* text);

// The same in the flavour that ipar asks for, unless the switch is 0.
void report(Code code, const jex_int* ipar, double q, const char* text);

}  // namespace jex::pdepl
