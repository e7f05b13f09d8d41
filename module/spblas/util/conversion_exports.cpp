// Export shells of the conversions, stamped from the list.

#include <jex/exports/spblas/util/conversion.h>

#include "serv/shell.h"
#include "spblas/util/conversions.h"

using namespace jex::spblas::util;

#include "spblas/util/conversion_exports.inc"
