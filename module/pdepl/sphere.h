// The solver on a part of the sphere: all longitudes, or a sector of them.
#pragma once

#include "pdepl/state.h"

namespace jex::pdepl {

enum class Longitudes { all, sector };

template <class T>
struct SphereSolver {
  jex_int* ipar;
  T* dpar;
  jex_int* stat;

  void init(T ap, T bp, T at, T bt, jex_int np, jex_int nt, T q) const;
  void commit(Longitudes longitudes, jex_dft_dfti_handle* handle) const;
  void solve(Longitudes longitudes, T* f, jex_dft_dfti_handle* handle) const;
};

void free_sphere(Longitudes longitudes, jex_dft_dfti_handle* handle, jex_int* ipar, jex_int* stat);

}  // namespace jex::pdepl
