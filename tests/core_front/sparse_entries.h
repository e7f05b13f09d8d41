// The users' sparse entries by element type and format.
#pragma once

#include "support/vectors.h"

#include <jex/block_sparse.h>
#include <jex/core.h>

#include <gtest/gtest.h>

#include <string>

namespace jex::test {

using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;

template <class T, class Storage>
struct Entries;
#define JEX_TEST_PRODUCTS(E, FORMAT)              \
  static constexpr auto mv = jex_##E##FORMAT##mv; \
  static constexpr auto mm = jex_##E##FORMAT##mm;
#define JEX_TEST_FORMAT(E, T, FORMAT)               \
  template <>                                       \
  struct Entries<T, jex_##FORMAT> {                 \
    JEX_TEST_PRODUCTS(E, FORMAT)                    \
    static constexpr auto sv = jex_##E##FORMAT##sv; \
    static constexpr auto sm = jex_##E##FORMAT##sm; \
  };
#define JEX_TEST_FORMATS(E, T) \
  JEX_TEST_FORMAT(E, T, csr)   \
  JEX_TEST_FORMAT(E, T, coo)   \
  JEX_TEST_FORMAT(E, T, dia)   \
  template <>                  \
  struct Entries<T, jex_bsr> { \
    JEX_TEST_PRODUCTS(E, bsr)  \
  };
JEX_TEST_FORMATS(s, float)
JEX_TEST_FORMATS(d, double)
JEX_TEST_FORMATS(c, jex_scomplex)
JEX_TEST_FORMATS(z, jex_dcomplex)
#undef JEX_TEST_FORMATS
#undef JEX_TEST_FORMAT
#undef JEX_TEST_PRODUCTS

// The letters of a descriptor as they stand in the middle of a kernel's name.
inline std::string kernel_letters(char kind, char uplo, char diag) {
  return std::string("n") + char(tolower(kind)) +
         (kind == 'G' || kind == 'D' ? '_' : char(tolower(uplo))) +
         (kind == 'G' || kind == 'A' ? '_' : char(tolower(diag)));
}

// The letters of a call, and the seed of its operands.
struct CallLetters {
  char kind, uplo, diag, op;
  int base;
  unsigned seed;
};

// Every combination that the front serves; solves take triangles and stored diagonals.
template <class Body>
void for_letters(bool solve, Body body) {
  for (const char kind : {'G', 'S', 'H', 'T', 'D', 'A'})
    for (const char uplo : {'L', 'U'})
      for (const char diag : {'N', 'U'})
        for (const char op : {'N', 'T', 'C'})
          for (const int base : {0, 1})
            for (const unsigned seed : case_seeds(4)) {
              if (solve && !(kind == 'T' || (kind == 'D' && diag == 'N'))) continue;
              body(CallLetters{kind, uplo, diag, op, base, seed});
              if (testing::Test::HasFailure())
                FAIL() << "JEX_CASE=" << seed << " " << kind << uplo << diag << op << base
                       << (solve ? " solve" : "");
            }
}

template <class T>
T number(double re) {
  T value = {};
  if constexpr (is_complex<T>)
    value.re = Real<T>(re);
  else
    value = T(re);
  return value;
}

}  // namespace jex::test
