// Export shells of the Fourier transforms, stamped from the list.

#include "dft/commit/commit.h"
#include "dft/engine/bitrev.h"
#include "serv/shell.h"

using namespace jex::dft;

#include "dft/commit/exports.inc"
