// Export shells of the solvers on the sphere, stamped from the list.

#include <jex/exports/pdepl/sphere.h>

#include "pdepl/sphere.h"
#include "serv/shell.h"

using namespace jex::pdepl;

#include "pdepl/sphere_exports.inc"
