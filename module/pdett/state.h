// The integer parameters of a transform, and what else its caller holds.
#pragma once

#include <jex/dfti.h>

namespace jex::pdett {

enum Index {
  intervals = 0,
  errors = 1,
  warnings = 2,
  kind = 5,
  last_status = 6,
  makes_descriptor = 7,
  message_set = 8,
  threads = 9,
  as_it_is = 10  // neither the data are tested nor the results scaled
};

enum Status {
  success = 0,
  data_warned = 1,
  parameter_replaced = 10,
  bad_argument = -100,
  fourier_failed = -1000,
  inconsistent = -10000,
  unfinished = -99999
};

// Types by their standard names; forward is the first of a pair.
enum Kind {
  dst_i = 0,
  dct_i = 1,
  dct_iii_ii = 2,
  dst_iii_ii = 3,
  dct_iv = 4,
  dst_iv = 5,
  kinds = 6
};

enum class Side { forward, backward };

template <class R>
inline constexpr bool is_double = sizeof(R) == 8;

template <class R>
inline double default_tolerance(jex_int n) {
  return is_double<R> ? n * 1e-12 : double(float(n * 1e-5));
}

inline jex_int set_status(jex_int* ipar, jex_int* stat, jex_int value) {
  return *stat = ipar[last_status] = value;
}

}  // namespace jex::pdett
