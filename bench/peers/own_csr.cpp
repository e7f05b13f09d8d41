// Peer library: block matrices by our own CSR product of the same elements.
#include <algorithm>

#include <jex/core.h>

#include "blocks_call.h"

extern "C" __attribute__((visibility("default"))) void dbsr1ng__f__gemvout_par_(
    const jex::bench::BlockCall* c) {
  const jex_int first = 1;
  const double alpha = 1;
  std::fill_n(c->y, c->m, 0.0);
  jex::module()->jex_spblas_dcsr0ng__c__mvout_par(&first, &c->m, &c->m, &alpha, c->values,
                                                  c->columns, c->rows, c->rows + 1, c->x, c->y);
}
