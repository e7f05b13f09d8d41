// Export shells of the LAPACK support kernels, stamped from the list.

#include <jex/exports/blas/lapack.h>

#include "blas/lapack/lasr.h"
#include "blas/lapack/potrf.h"
#include "blas/lapack/reflect.h"
#include "blas/lapack/sytrf.h"
#include "blas/lapack/tridiagonal.h"
#include "blas/level3/options.h"
#include "blas/level3/rank_2k.h"
#include "serv/shell.h"

using namespace jex::blas;

#include "blas/lapack/exports.inc"
