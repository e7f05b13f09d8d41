// Export shells of the parallel pieces, stamped from the list.

#include <jex/exports/dft/multi.h>

#include "dft/multi/parallel.h"
#include "serv/shell.h"

using namespace jex::dft;

#include "dft/multi/exports.inc"
