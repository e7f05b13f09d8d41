// Export shells of the matrix multiply, stamped from the list.

#include <jex/exports/blas/gemm.h>

#include "blas/gemm/mixed_helpers.h"
#include "blas/level2/options.h"
#include "serv/shell.h"

using namespace jex::blas;

template <class T>
static Op op_of(const char* trans) {
  return with_op<is_complex<T>>(trans, [](auto op) { return op(); });
}

#include "blas/gemm/exports.inc"
