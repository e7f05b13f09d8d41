// Export shells of the CSR kernels, stamped from the list. Compiled once for each element type.

#include <jex/exports/spblas/csr.h>

#include "serv/shell.h"
#include "spblas/csr/kernels.h"

using namespace jex::spblas;
using namespace jex::spblas::csr;

#include "spblas/csr/exports.inc"
