// Export shells of the level-2 kernels on general and band matrices, stamped from the list.

#include <jex/exports/blas/level2/general.h>

#include "blas/level2/gbmv.h"
#include "blas/level2/gemv.h"
#include "blas/level2/ger.h"
#include "blas/level2/options.h"
#include "serv/shell.h"

using namespace jex::blas;

template <class T>
static Op op_of(const char* trans) {
  return with_op<is_complex<T>>(trans, [](auto op) { return op(); });
}

#include "blas/level2/general_exports.inc"
