// Export shells of level 1, stamped from the list.

#include <jex/exports/blas/level1.h>

#include "blas/level1/copy.h"
#include "blas/level1/dot.h"
#include "blas/level1/extreme.h"
#include "blas/level1/norm.h"
#include "blas/level1/rot.h"
#include "blas/level1/rotg.h"
#include "blas/level1/update.h"
#include "serv/shell.h"

using namespace jex::blas;

#include "blas/level1/exports.inc"
