// Export shells of the extended-precision products, stamped from the list.

#include <jex/exports/xblas.h>

#include "serv/shell.h"
#include "xblas/routines.h"

#include "xblas/exports.inc"
