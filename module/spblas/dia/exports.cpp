// Export shells of the DIA kernels, stamped from the list. Compiled once for each element type.

#include <jex/exports/spblas/dia.h>

#include "serv/shell.h"
#include "spblas/dia/kernels.h"

using namespace jex::spblas;
using namespace jex::spblas::dia;

#include "spblas/dia/exports.inc"
