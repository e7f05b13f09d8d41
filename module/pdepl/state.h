// The parameter arrays of a solver on a rectangle or a box.
#pragma once

#include <jex/dfti.h>

namespace jex::pdepl {

enum Index {
  last_status = 0,
  errors = 1,
  warnings = 2,
  conditions = 3,   // code of all sides
  sides = 4,        // 0 Dirichlet, 1 Neumann, -1 unknown; two for each axis
  intervals = 10,   // of each axis
  work_begin = 13,  // of each transformed axis: begin and end of the frequencies' terms in dpar
  trig_begin = 17,  // and of the transform's real parameters, counted from 1
  message_set = 21,
  threads = 22,
  transforms = 40,  // parameters of the transforms, 20 for each
  transform_size = 20
};

enum RealIndex { lengths = 0, coefficient = 3, tolerance = 4, first_terms = 5 };

enum Status {
  success = 0,
  warned = 1,
  bad_argument = -100,
  transform_failed = -1000,
  not_committed = -10000,
  unfinished = -99999
};

inline jex_int set_status(jex_int* ipar, jex_int* stat, jex_int value) {
  return *stat = ipar[last_status] = value;
}

}  // namespace jex::pdepl
