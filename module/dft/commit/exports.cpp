// Export shells of the Fourier transforms, stamped from the list.

#include <jex/exports/dft/commit.h>

#include "dft/commit/commit.h"
#include "dft/engine/bitrev.h"
#include "serv/shell.h"

using namespace jex::dft;

#include "dft/commit/exports.inc"
