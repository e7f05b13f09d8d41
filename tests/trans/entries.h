// The module's matrix copies by element type.
#pragma once

#include "support/vectors.h"

#include <jex/exports.h>
#include <jex/trans.h>

namespace jex::test {

template <class T>
struct TransEntries;

#define JEX_TEST_TRANS(t, T)                                        \
  template <>                                                       \
  struct TransEntries<T> {                                          \
    static constexpr auto imatcopy = jex_trans_jex_##t##imatcopy;   \
    static constexpr auto omatcopy = jex_trans_jex_##t##omatcopy;   \
    static constexpr auto omatcopy2 = jex_trans_jex_##t##omatcopy2; \
    static constexpr auto omatadd = jex_trans_jex_##t##omatadd;     \
  };
JEX_TEST_TRANS(s, float)
JEX_TEST_TRANS(d, double)
JEX_TEST_TRANS(c, jex_scomplex)
JEX_TEST_TRANS(z, jex_dcomplex)

}  // namespace jex::test
