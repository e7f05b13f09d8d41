// The module's level-1 exports by element type, so that one test body serves all four.
#pragma once

#include <jex/exports.h>

namespace jex::test {

template <class T>
struct Entries;

#define JEX_TEST_COMMON(t)                            \
  static constexpr auto axpy = jex_blas_##t##axpy;    \
  static constexpr auto scal = jex_blas_##t##scal;    \
  static constexpr auto copy = jex_blas_##t##copy;    \
  static constexpr auto swap = jex_blas_##t##swap;    \
  static constexpr auto rot2 = jex_blas_##t##rot2;    \
  static constexpr auto rot3 = jex_blas_##t##rot3;    \
  static constexpr auto rotg = jex_blas_##t##rotg;    \
  static constexpr auto amax = jex_blas_i##t##amax;   \
  static constexpr auto amin = jex_blas_i##t##amin;   \
  static constexpr auto axpyi = jex_blas_##t##axpyi;  \
  static constexpr auto gthr = jex_blas_##t##gthr;    \
  static constexpr auto gthrz = jex_blas_##t##gthrz;  \
  static constexpr auto sctr = jex_blas_##t##sctr;

#define JEX_TEST_REAL(t)                              \
  JEX_TEST_COMMON(t)                                  \
  static constexpr auto dot = jex_blas_##t##dot;      \
  static constexpr auto nrm2 = jex_blas_##t##nrm2;    \
  static constexpr auto asum = jex_blas_##t##asum;    \
  static constexpr auto rot = jex_blas_##t##rot;      \
  static constexpr auto rotm = jex_blas_##t##rotm;    \
  static constexpr auto rotmg = jex_blas_##t##rotmg;  \
  static constexpr auto roti = jex_blas_##t##roti;    \
  static constexpr auto doti = jex_blas_##t##doti;

#define JEX_TEST_COMPLEX(t, r)                          \
  JEX_TEST_COMMON(t)                                    \
  static constexpr auto dotu = jex_blas_##t##dotu;      \
  static constexpr auto dotc = jex_blas_##t##dotc;      \
  static constexpr auto nrm2 = jex_blas_##r##t##nrm2;   \
  static constexpr auto asum = jex_blas_##r##t##asum;   \
  static constexpr auto rot = jex_blas_##t##rot;        \
  static constexpr auto real_rot = jex_blas_##t##r##rot; \
  static constexpr auto real_scal = jex_blas_##t##r##scal; \
  static constexpr auto dotui = jex_blas_##t##dotui;    \
  static constexpr auto dotci = jex_blas_##t##dotci;

template <>
struct Entries<float> {
  JEX_TEST_REAL(s)
};
template <>
struct Entries<double> {
  JEX_TEST_REAL(d)
};
template <>
struct Entries<jex_scomplex> {
  JEX_TEST_COMPLEX(c, s)
};
template <>
struct Entries<jex_dcomplex> {
  JEX_TEST_COMPLEX(z, d)
};

}  // namespace jex::test
