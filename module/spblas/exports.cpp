// Export shells of the sparse services, stamped from the list.

#include <jex/exports/spblas.h>

#include "serv/shell.h"
#include "spblas/scalars.h"
#include "spblas/split.h"

using namespace jex::spblas;

#include "spblas/exports.inc"
