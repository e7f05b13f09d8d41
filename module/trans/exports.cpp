// Export shells of matrix copy and transposition, stamped from the list.

#include <jex/exports/trans.h>

#include "serv/shell.h"
#include "trans/matcopy.h"

#include "trans/exports.inc"
