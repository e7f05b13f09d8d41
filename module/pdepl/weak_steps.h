// The core's steps as weak references. The tables of steps hold addresses, which ELF binds at load:
// a core without the steps can load the module all the same, as one without the other imports can.
#pragma once

#include <jex/core_imports.h>

#ifndef _WIN32
#define JEX_WEAK(name) extern "C" decltype(::name) name [[gnu::weak]];
#define JEX_WEAK_2D(t, T, x)       \
  JEX_WEAK(jex_pdepl_##t##_ft_##x) \
  JEX_WEAK(jex_pdepl_##t##_lu_2d_##x) JEX_WEAK(jex_pdepl_##t##_inv_ft_##x)
#define JEX_WEAK_3D(t, T, x, y)          \
  JEX_WEAK(jex_pdepl_##t##_ft_##x##_##y) \
  JEX_WEAK(jex_pdepl_##t##_lu_3d_##x##_##y) JEX_WEAK(jex_pdepl_##t##_inv_ft_##x##_##y)
#define JEX_WEAK_SPHERE(t)               \
  JEX_WEAK(jex_pdepl_##t##_ft_pp)        \
  JEX_WEAK(jex_pdepl_##t##_inv_ft_pp)    \
  JEX_WEAK(jex_pdepl_##t##_sl_ft_dd)     \
  JEX_WEAK(jex_pdepl_##t##_inv_sl_ft_dd) \
  JEX_WEAK(jex_pdepl_##t##_sph_lu_2d_dd) JEX_WEAK(jex_pdepl_##t##_sph_lu_globe)
JEX_PDE_EACH_2D(JEX_WEAK_2D, d, double)
JEX_PDE_EACH_2D(JEX_WEAK_2D, s, float)
JEX_PDE_EACH_3D(JEX_WEAK_3D, d, double)
JEX_PDE_EACH_3D(JEX_WEAK_3D, s, float)
JEX_WEAK_SPHERE(d)
JEX_WEAK_SPHERE(s)
#undef JEX_WEAK_SPHERE
#undef JEX_WEAK_3D
#undef JEX_WEAK_2D
#undef JEX_WEAK
#endif
