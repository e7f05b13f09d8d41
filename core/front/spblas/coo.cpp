// The users' COO entries for the four element types.

#include "front/spblas/coo.h"

#include "front/spblas/entries.h"

using namespace jex::front;

SPARSE_ENTRIES(s, float, coo, CooCall)
SPARSE_ENTRIES(d, double, coo, CooCall)
SPARSE_ENTRIES(c, jex_scomplex, coo, CooCall)
SPARSE_ENTRIES(z, jex_dcomplex, coo, CooCall)
