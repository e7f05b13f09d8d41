// Export shells of the sparse utilities, stamped from the list.

#include <jex/exports/spblas/util.h>

#include "serv/shell.h"
#include "spblas/util/skyline.h"
#include "spblas/util/sort.h"
#include "spblas/util/sparse_product.h"
#include "spblas/util/symmetric.h"

using namespace jex::spblas::util;

#include "spblas/util/exports.inc"
