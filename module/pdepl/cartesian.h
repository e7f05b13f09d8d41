// The solver on a rectangle (two dimensions) or a box (three).
#pragma once

#include "pdepl/state.h"

namespace jex::pdepl {

using Handle = jex_dft_dfti_handle;

// The parameter arrays of a call. Data, ends and letters come in pairs, axis by axis.
template <class T, int dimensions>
struct Solver {
  jex_int* ipar;
  T* dpar;
  jex_int* stat;

  void init(const T (&ends)[2 * dimensions], const jex_int (&n)[dimensions], const char* letters,
            T q) const;
  void commit(Handle* const (&handles)[dimensions - 1]) const;
  void solve(T* f, const T* const (&data)[2 * dimensions],
             Handle* const (&handles)[dimensions - 1]) const;
};

template <int dimensions>
void free(Handle* const (&handles)[dimensions - 1], jex_int* ipar, jex_int* stat);

}  // namespace jex::pdepl
