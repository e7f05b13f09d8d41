// Export shells of matrix copy and transposition, stamped from the list.

#include "serv/shell.h"
#include "trans/matcopy.h"

#include "trans/exports.inc"
