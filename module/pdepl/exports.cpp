// Export shells of the Poisson and Helmholtz solvers, stamped from the list.

#include <jex/exports/pdepl.h>

#include "pdepl/cartesian.h"
#include "pdepl/diagnostics.h"
#include "serv/shell.h"

using namespace jex::pdepl;

#include "pdepl/exports.inc"
