// Option characters become template parameters here, and nowhere else.
#pragma once

#include "blas/level2/storage.h"
#include "serv/lsame.h"

#include <type_traits>

namespace jex::blas {

// letter is one.
inline bool is_option(const char* word, char letter) { return (*word | 0x20) == (letter | 0x20); }

template <auto value>
using Constant = std::integral_constant<decltype(value), value>;

// "U" is upper, anything else lower.
template <class Call>
[[gnu::always_inline]] inline auto with_uplo(const char* uplo, Call call) {
  return is_option(uplo, 'U') ? call(Constant<Uplo::upper>()) : call(Constant<Uplo::lower>());
}

// "U" is unit, anything else not.
template <class Call>
[[gnu::always_inline]] inline auto with_diag(const char* diag, Call call) {
  return is_option(diag, 'U') ? call(Constant<Diag::unit>()) : call(Constant<Diag::non_unit>());
}

// "N" is no transpose; for complex T "C" is the conjugate transpose; anything else the transpose.
template <bool complex, class Call>
[[gnu::always_inline]] inline auto with_op(const char* trans, Call call) {
  if (is_option(trans, 'N')) return call(Constant<Op::none>());
  if constexpr (complex)
    if (is_option(trans, 'C')) return call(Constant<Op::conj_transpose>());
  return call(Constant<Op::transpose>());
}

}  // namespace jex::blas
