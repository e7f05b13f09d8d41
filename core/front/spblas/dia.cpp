// The users' DIA entries for the four element types.

#include "front/spblas/dia.h"

#include "front/spblas/entries.h"

using namespace jex::front;

SPARSE_ENTRIES(s, float, dia, DiaCall)
SPARSE_ENTRIES(d, double, dia, DiaCall)
SPARSE_ENTRIES(c, jex_scomplex, dia, DiaCall)
SPARSE_ENTRIES(z, jex_dcomplex, dia, DiaCall)
