// Export shells of the triangular level-2 kernels, stamped from the list.

#include <jex/exports/blas/level2/triangular.h>

#include "blas/level2/options.h"
#include "blas/level2/triangular_storage.h"
#include "blas/level2/trmv.h"
#include "blas/level2/trsv.h"
#include "serv/shell.h"

using namespace jex::blas;

// The option characters as constants; call(uplo, op, diag) names the instance.
template <class T, class Call>
[[gnu::always_inline]] static inline void with_options(const char* uplo, const char* trans,
                                                       const char* diag, Call call) {
  with_uplo(uplo, [&](auto uplo) {
    with_op<is_complex<T>>(
        trans, [&](auto op) { with_diag(diag, [&](auto diag) { call(uplo, op, diag); }); });
  });
}

#include "blas/level2/triangular_exports.inc"
