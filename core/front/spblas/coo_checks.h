// A user's list of entries: the operation of the kernels for it, and its checks.
#pragma once

#include "front/spblas/operation.h"

namespace jex::front {

// An operation on A, told as one of the two that the kernels have on a list, perhaps with rows and
// columns exchanged. negative is what this adds to the decoded one.
struct CooOperation : Operation {
  bool exchanged;
};
CooOperation coo_operation(const Operation& operation);

// Row and column of every entry; for a solve that is not unit also the diagonal.
jex_int check_entries(const jex_coo& a, int base, const Operation& operation, bool solve);

// Do the numbers never decrease?
bool ascends(const jex_int* numbers, jex_int count);

}  // namespace jex::front
