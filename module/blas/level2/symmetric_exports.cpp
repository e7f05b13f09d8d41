// Export shells of the level-2 kernels on symmetric and Hermitian matrices, stamped from the list.

#include <jex/exports/blas/level2/symmetric.h>

#include "blas/level2/options.h"
#include "blas/level2/rank_update.h"
#include "blas/level2/symv.h"
#include "serv/shell.h"

using namespace jex::blas;

#include "blas/level2/symmetric_exports.inc"
