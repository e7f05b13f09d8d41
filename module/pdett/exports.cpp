// Export shells of the trigonometric transforms, stamped from the list.

#include <jex/exports/pdett.h>

#include "pdett/lifecycle.h"
#include "serv/shell.h"

using namespace jex::pdett;

#include "pdett/exports.inc"
