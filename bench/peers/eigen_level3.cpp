// Peer library: level 3 as a user of Eigen writes it, on maps that promise no alignment.
// The Fortran symbols let the benchmark treat it as any other BLAS.
#include <complex>
#include <cstdint>

#include <Eigen/Core>

namespace {

using Int = int32_t;
using scomplex = std::complex<float>;
using dcomplex = std::complex<double>;

template <class T>
using Dense = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;
template <class T>
using Matrix = Eigen::Map<Dense<T>, 0, Eigen::OuterStride<>>;
template <class T>
using ConstMatrix = Eigen::Map<const Dense<T>, 0, Eigen::OuterStride<>>;

bool is(const char* option, char letter) { return (*option & ~0x20) == letter; }

/// Calls run with op(a), a stored rows x columns before the operation.
template <class T, class Run>
void with_operand(const char* trans, const T* a, Int rows, Int columns, Int lda, Run run) {
  const bool plain = is(trans, 'N');
  const ConstMatrix<T> matrix(a, plain ? rows : columns, plain ? columns : rows,
                              Eigen::OuterStride<>(lda));
  if (plain)
    run(matrix);
  else if (is(trans, 'C'))
    run(matrix.adjoint());
  else
    run(matrix.transpose());
}

template <class T>
void gemm(const char* transa, const char* transb, Int m, Int n, Int k, T alpha, const T* a, Int lda,
          const T* b, Int ldb, T beta, T* c, Int ldc) {
  Matrix<T> mc(c, m, n, Eigen::OuterStride<>(ldc));
  if (beta == T(0))
    mc.setZero();
  else if (beta != T(1))
    mc *= beta;
  with_operand(transa, a, m, k, lda, [&](const auto& ma) {
    with_operand(transb, b, k, n, ldb, [&](const auto& mb) { mc.noalias() += alpha * (ma * mb); });
  });
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

#define ANY_TYPE(t, T)                                                                       \
  EXPORT void t##gemm_(const char* transa, const char* transb, const Int* m, const Int* n,   \
                       const Int* k, const T* alpha, const T* a, const Int* lda, const T* b, \
                       const Int* ldb, const T* beta, T* c, const Int* ldc) {                \
    gemm(transa, transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);              \
  }
ANY_TYPE(s, float)
ANY_TYPE(d, double)
ANY_TYPE(c, scomplex)
ANY_TYPE(z, dcomplex)
