// Option characters of level 3 as values: they become strides and branches, not templates.
#pragma once

#include "blas/level2/options.h"
#include "blas/level3/product.h"

namespace jex::blas {

// "L" is left, anything else right.
inline Side side_of(const char* side) { return is_option(side, 'L') ? Side::left : Side::right; }
// "U" is upper, anything else lower.
inline Uplo uplo_of(const char* uplo) {
  return with_uplo(uplo, [](auto uplo) { return uplo(); });
}
// "U" is unit, anything else not.
inline Diag diag_of(const char* diag) {
  return with_diag(diag, [](auto diag) { return diag(); });
}
template <class T>
inline Op op_of(const char* trans) {
  return with_op<is_complex<T>>(trans, [](auto op) { return op(); });
}
inline bool is_transposed(const char* trans) { return !is_option(trans, 'N'); }

}  // namespace jex::blas
