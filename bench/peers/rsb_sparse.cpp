// Peer library: the sparse cases on librsb, double. Its matrices are built once for each set of
// arrays and kept: building is not what a case measures.
#include <map>
#include <tuple>

#include <rsb.h>

#include "sparse_call.h"

namespace {

using jex::bench::SparseCall;

rsb_mtx_t* matrix(const SparseCall& c, rsb_flags_t flags) {
  static const bool ready = rsb_lib_init(RSB_NULL_INIT_OPTIONS) == RSB_ERR_NO_ERROR;
  if (!ready) return nullptr;
  static std::map<std::tuple<const void*, int, int, rsb_flags_t>, rsb_mtx_t*> built;
  rsb_mtx_t*& found = built[{c.values, c.m, c.rows[c.m], flags}];
  if (!found) {
    rsb_err_t error;
    found = rsb_mtx_alloc_from_csr_const(c.values, c.rows, c.columns, c.rows[c.m],
                                         RSB_NUMERICAL_TYPE_DOUBLE, c.m, c.m, 0, 0,
                                         flags | RSB_FLAG_DUPLICATES_SUM, &error);
  }
  return found;
}

void multiply(const SparseCall& c, rsb_flags_t flags) {
  const double one = 1;
  rsb_spmv(RSB_TRANSPOSITION_N, c.alpha, matrix(c, flags), c.x, 1, &one, c.y, 1);
}

void multiply_columns(const SparseCall& c, rsb_flags_t order) {
  const double one = 1;
  rsb_spmm(RSB_TRANSPOSITION_N, c.alpha, matrix(c, RSB_FLAG_NOFLAGS), c.n, order, c.x, c.ldx, &one,
           c.y, c.ldy);
}

void solve(const SparseCall& c) {
  const double one = 1;
  rsb_spsv(RSB_TRANSPOSITION_N, &one, matrix(c, RSB_FLAG_LOWER_TRIANGULAR), c.y, 1, c.y, 1);
}

}  // namespace

#define PEER(name, work) \
  extern "C" __attribute__((visibility("default"))) void name##_(const SparseCall* c) { work; }

PEER(dcsr1ng__f__mvout_par, multiply(*c, RSB_FLAG_NOFLAGS))
PEER(dcsr1nslnf__mvout_par, multiply(*c, RSB_FLAG_SYMMETRIC | RSB_FLAG_LOWER))
PEER(dcsr1ng__f__mmout_par, multiply_columns(*c, RSB_FLAG_WANT_COLUMN_MAJOR_ORDER))
PEER(dcsr0ng__c__mmout_par, multiply_columns(*c, RSB_FLAG_WANT_ROW_MAJOR_ORDER))
PEER(dcsr1ntlnf__svout_seq, solve(*c))
