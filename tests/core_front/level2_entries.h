// The front's level-2 entries by type, Fortran and C.
#pragma once

#include <jex/blas.h>

namespace jex::test {

template <class T>
struct Entries;

#define ENTRY(as, name)                      \
  static constexpr auto as = &jex_##name##_; \
  static constexpr auto c_##as = &jex_cblas_##name;
#define ENTRIES(T, t, sy, sb, sp, ger_name, gerc_name) \
  template <>                                          \
  struct Entries<T> {                                  \
    ENTRY(gemv, t##gemv)                               \
    ENTRY(gbmv, t##gbmv)                               \
    ENTRY(ger, t##ger_name)                            \
    ENTRY(gerc, t##gerc_name)                          \
    ENTRY(symv, t##sy##mv)                             \
    ENTRY(sbmv, t##sb##mv)                             \
    ENTRY(spmv, t##sp##mv)                             \
    ENTRY(syr, t##sy##r)                               \
    ENTRY(spr, t##sp##r)                               \
    ENTRY(syr2, t##sy##r2)                             \
    ENTRY(spr2, t##sp##r2)                             \
    ENTRY(trmv, t##trmv)                               \
    ENTRY(trsv, t##trsv)                               \
    ENTRY(tbmv, t##tbmv)                               \
    ENTRY(tbsv, t##tbsv)                               \
    ENTRY(tpmv, t##tpmv)                               \
    ENTRY(tpsv, t##tpsv)                               \
  };
ENTRIES(float, s, sy, sb, sp, ger, ger)
ENTRIES(double, d, sy, sb, sp, ger, ger)
ENTRIES(jex_scomplex, c, he, hb, hp, geru, gerc)
ENTRIES(jex_dcomplex, z, he, hb, hp, geru, gerc)
#undef ENTRIES
#undef ENTRY

}  // namespace jex::test
