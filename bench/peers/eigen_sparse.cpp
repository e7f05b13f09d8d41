// Peer library: the sparse cases as a user of Eigen writes them, on maps of the same arrays.
#include <Eigen/Sparse>

#include "eigen_maps.h"
#include "sparse_call.h"

namespace {

using jex::bench::ConstVector;
using jex::bench::SparseCall;
using jex::bench::Vector;
template <class T>
using Csr = Eigen::Map<const Eigen::SparseMatrix<T, Eigen::RowMajor, int>>;
template <class T, int order>
using Dense = Eigen::Map<Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic, order>>;
template <class T, int order>
using ConstDense = Eigen::Map<const Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic, order>>;

template <class T>
Csr<T> matrix(const SparseCall& c) {
  return Csr<T>(c.m, c.m, c.rows[c.m], c.rows, c.columns, static_cast<const T*>(c.values));
}
template <class T>
T alpha(const SparseCall& c) {
  return *static_cast<const T*>(c.alpha);
}
template <class T>
Vector<T> y(const SparseCall& c) {
  return Vector<T>(static_cast<T*>(c.y), c.m);
}
template <class T>
ConstVector<T> x(const SparseCall& c) {
  return ConstVector<T>(static_cast<const T*>(c.x), c.m);
}

template <class T, int order>
void multiply(const SparseCall& c) {
  Dense<T, order>(static_cast<T*>(c.y), c.m, c.n).noalias() +=
      alpha<T>(c) * (matrix<T>(c) * ConstDense<T, order>(static_cast<const T*>(c.x), c.m, c.n));
}

}  // namespace

#define COMMA ,
#define PEER(name, T, work)                                                             \
  extern "C" __attribute__((visibility("default"))) void name##_(const SparseCall* c) { \
    using Type = T;                                                                     \
    work;                                                                               \
  }

PEER(scsr1ng__f__mvout_par, float,
     y<Type>(*c).noalias() += alpha<Type>(*c) * (matrix<Type>(*c) * x<Type>(*c)))
PEER(dcsr1ng__f__mvout_par, double,
     y<Type>(*c).noalias() += alpha<Type>(*c) * (matrix<Type>(*c) * x<Type>(*c)))
PEER(zcsr1ng__f__mvout_par, std::complex<double>,
     y<Type>(*c).noalias() += alpha<Type>(*c) * (matrix<Type>(*c) * x<Type>(*c)))
PEER(dcsr1nslnf__mvout_par, double,
     y<Type>(*c).noalias() +=
     matrix<Type>(*c).selfadjointView<Eigen::Lower>() * (alpha<Type>(*c) * x<Type>(*c)))
PEER(dcsr1ng__f__mmout_par, double, (multiply<Type, Eigen::ColMajor>(*c)))
PEER(dcsr0ng__c__mmout_par, double, (multiply<Type, Eigen::RowMajor>(*c)))
PEER(dcsr1ntlnf__svout_seq, double, Vector<Type> side = y<Type>(*c);
     matrix<Type>(*c).triangularView<Eigen::Lower>().solveInPlace(side))
PEER(dcsr1ntlnf__smout_par, double,
     Dense<Type COMMA Eigen::ColMajor> side(static_cast<Type*>(c->y), c->m, c->n);
     matrix<Type>(*c).triangularView<Eigen::Lower>().solveInPlace(side))
// Eigen has no diagonal storage of several diagonals: its user has the same matrix in rows.
PEER(ddia1ng__f__mvout_par, double,
     y<Type>(*c).noalias() += alpha<Type>(*c) * (matrix<Type>(*c) * x<Type>(*c)))
PEER(ddia1nslnf__mvout_par, double,
     y<Type>(*c).noalias() +=
     matrix<Type>(*c).selfadjointView<Eigen::Lower>() * (alpha<Type>(*c) * x<Type>(*c)))
