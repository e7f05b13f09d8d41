// Export shells of block sparse rows, stamped from the lists. Compiled once for each element type.

#include <jex/exports/spblas/bsr.h>
#include <jex/exports/spblas/bsr/utility.h>

#include "serv/shell.h"
#include "spblas/bsr/gauss.h"
#include "spblas/bsr/matrix_product.h"
#include "spblas/variant.h"

using namespace jex::spblas;
using namespace jex::spblas::bsr;

#include "spblas/bsr/exports.inc"
#include "spblas/bsr/utility_exports.inc"
