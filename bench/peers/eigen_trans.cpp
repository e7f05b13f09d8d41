// Peer library: transposition of column-major matrices as a user of Eigen writes it.
#include "eigen_maps.h"

namespace {

using namespace jex::bench;

template <class T>
void transpose(Int m, Int n, const T* a, Int lda, T* b, Int ldb) {
  Matrix<T>(b, n, m, Eigen::OuterStride<>(ldb)) =
      ConstMatrix<T>(a, m, n, Eigen::OuterStride<>(lda)).transpose();
}

}  // namespace

#define ANY_TYPE(t, T)                                                                           \
  EXPORT void t##omatcopy_(const char*, const char*, const Int* m, const Int* n, const T*,       \
                           const T* a, const Int* lda, T* b, const Int* ldb) {                   \
    transpose(*m, *n, a, *lda, b, *ldb);                                                         \
  }                                                                                              \
  EXPORT void t##imatcopy_(const char*, const char*, const Int* m, const Int* n, const T*, T* a, \
                           const Int* lda, const Int*) {                                         \
    Matrix<T>(a, *m, *n, Eigen::OuterStride<>(*lda)).transposeInPlace();                         \
  }
ANY_TYPE(s, float)
ANY_TYPE(d, double)
ANY_TYPE(c, std::complex<float>)
ANY_TYPE(z, std::complex<double>)
