// The core's steps by the conditions of the transformed axes: 2 or 4 bits, as in the code of all
// sides.
#pragma once

#include "pdepl/weak_steps.h"

namespace jex::pdepl {

template <class T>
struct Steps2 {
  void (*ft)(T*, const T*, const T*, const T*, const T*, jex_dft_dfti_handle*, const jex_int*,
             const T*, jex_int*);
  void (*lu)(T*, const jex_int*, const T*, jex_int*);
  void (*inv_ft)(T*, jex_dft_dfti_handle*, const jex_int*, const T*, jex_int*);
};

template <class T>
struct Steps3 {
  void (*ft)(T*, const T*, const T*, const T*, const T*, const T*, const T*, jex_dft_dfti_handle*,
             jex_dft_dfti_handle*, const jex_int*, const T*, jex_int*);
  void (*lu)(T*, const jex_int*, const T*, jex_int*);
  void (*inv_ft)(T*, jex_dft_dfti_handle*, jex_dft_dfti_handle*, const jex_int*, const T*,
                 jex_int*);
};

#define JEX_ROW_2D(t, T, x) \
  {jex_pdepl_##t##_ft_##x, jex_pdepl_##t##_lu_2d_##x, jex_pdepl_##t##_inv_ft_##x},
#define JEX_ROW_3D(t, T, x, y) \
  {jex_pdepl_##t##_ft_##x##_##y, jex_pdepl_##t##_lu_3d_##x##_##y, jex_pdepl_##t##_inv_ft_##x##_##y},

template <class T>
const Steps2<T>& steps_2d(int code);
template <class T>
const Steps3<T>& steps_3d(int code);
#define JEX_STEPS(t, T)                                                   \
  template <>                                                             \
  inline const Steps2<T>& steps_2d(int code) {                            \
    static const Steps2<T> steps[] = {JEX_PDE_EACH_2D(JEX_ROW_2D, t, T)}; \
    return steps[code];                                                   \
  }                                                                       \
  template <>                                                             \
  inline const Steps3<T>& steps_3d(int code) {                            \
    static const Steps3<T> steps[] = {JEX_PDE_EACH_3D(JEX_ROW_3D, t, T)}; \
    return steps[code];                                                   \
  }
JEX_STEPS(d, double)
JEX_STEPS(s, float)
#undef JEX_STEPS
#undef JEX_ROW_2D
#undef JEX_ROW_3D

}  // namespace jex::pdepl
