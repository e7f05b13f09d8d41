// Peer library: block matrices, which Eigen takes element by element, and sparse times sparse.
#include <algorithm>

#include <Eigen/Sparse>

#include "blocks_call.h"

namespace {

using Sparse = Eigen::SparseMatrix<double, Eigen::RowMajor, int>;
using Csr = Eigen::Map<const Sparse>;

}  // namespace

extern "C" __attribute__((visibility("default"))) void dbsr1ng__f__gemvout_par_(
    const jex::bench::BlockCall* c) {
  const Csr a(c->m, c->m, c->rows[c->m], c->rows, c->columns, c->values);
  Eigen::Map<Eigen::VectorXd>(c->y, c->m).noalias() =
      a * Eigen::Map<const Eigen::VectorXd>(c->x, c->m);
}

extern "C" __attribute__((visibility("default"))) void dmcsr_notr_(
    const jex::bench::SquareCall* c) {
  const Csr a(c->m, c->m, c->rows[c->m], c->rows, c->columns, c->a);
  const Sparse square = a * a;
  if (c->values) std::copy_n(square.valuePtr(), square.nonZeros(), c->values);
}
