// Export shells of the COO kernels, stamped from the list. Compiled once for each element type.

#include <jex/exports/spblas/coo.h>

#include "serv/shell.h"
#include "spblas/coo/kernels.h"

using namespace jex::spblas;
using namespace jex::spblas::coo;

#include "spblas/coo/exports.inc"
