// Export shells of level 3, stamped from the list.

#include <jex/exports/blas/level3.h>

#include "blas/level3/options.h"
#include "blas/level3/rank_2k.h"
#include "blas/level3/symm.h"
#include "blas/level3/triangular.h"
#include "serv/shell.h"

using namespace jex::blas;

#include "blas/level3/exports.inc"
