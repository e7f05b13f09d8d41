// The users' CSR entries for the four element types.

#include "front/spblas/csr.h"

#include "front/spblas/entries.h"

using namespace jex::front;

SPARSE_ENTRIES(s, float, csr, CsrCall)
SPARSE_ENTRIES(d, double, csr, CsrCall)
SPARSE_ENTRIES(c, jex_scomplex, csr, CsrCall)
SPARSE_ENTRIES(z, jex_dcomplex, csr, CsrCall)
