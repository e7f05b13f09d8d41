// The module's exports on symmetric and Hermitian matrices by element type.
#pragma once

#include <jex/exports.h>

namespace jex::test {

template <class T>
struct SymmetricEntries;

#define JEX_TEST_SYMMETRIC(t, sy, sb, sp, rank1, packed1)    \
  static constexpr auto symv = jex_blas_##t##sy##mv;         \
  static constexpr auto symv_nb = jex_blas_##t##sy##mv_nb;   \
  static constexpr auto sbmv = jex_blas_##t##sb##mv;         \
  static constexpr auto spmv = jex_blas_##t##sp##mv;         \
  static constexpr auto syr = jex_blas_##t##rank1;           \
  static constexpr auto spr = jex_blas_##t##packed1;         \
  static constexpr auto syr2 = jex_blas_##t##rank1##2;       \
  static constexpr auto syr2_nb = jex_blas_##t##rank1##2_nb; \
  static constexpr auto spr2 = jex_blas_##t##packed1##2;

template <>
struct SymmetricEntries<float> {
  JEX_TEST_SYMMETRIC(s, sy, sb, sp, syr, spr)
};
template <>
struct SymmetricEntries<double> {
  JEX_TEST_SYMMETRIC(d, sy, sb, sp, syr, spr)
};
template <>
struct SymmetricEntries<jex_scomplex> {
  JEX_TEST_SYMMETRIC(c, he, hb, hp, her, hpr)
};
template <>
struct SymmetricEntries<jex_dcomplex> {
  JEX_TEST_SYMMETRIC(z, he, hb, hp, her, hpr)
};

}  // namespace jex::test
