// Peer library: level 2 as a user of Eigen writes it, on maps that promise no alignment.
// Unit strides only. The Fortran symbols let the benchmark treat it as any other BLAS.
#include "eigen_maps.h"

namespace {

using namespace jex::bench;

template <class T>
void gemv(const char* trans, Int m, Int n, T alpha, const T* a, Int lda, const T* x, T beta, T* y) {
  const ConstMatrix<T> matrix(a, m, n, Eigen::OuterStride<>(lda));
  const bool plain = is(trans, 'N');
  const ConstVector<T> vx(x, plain ? n : m);
  Vector<T> vy(y, plain ? m : n);
  scale(vy, beta);
  if (plain)
    vy.noalias() += alpha * (matrix * vx);
  else if (is(trans, 'C'))
    vy.noalias() += alpha * (matrix.adjoint() * vx);
  else
    vy.noalias() += alpha * (matrix.transpose() * vx);
}

/// Complex outer products are not vectorised as one expression; column by column they are.
template <class T>
void rank_one(Int m, Int n, T alpha, const T* x, const T* y, T* a, Int lda) {
  Matrix<T> matrix(a, m, n, Eigen::OuterStride<>(lda));
  const ConstVector<T> vx(x, m);
  if constexpr (Eigen::NumTraits<T>::IsComplex) {
    for (Int j = 0; j < n; ++j) matrix.col(j) += (alpha * y[j]) * vx;
  } else {
    matrix.noalias() += alpha * vx * ConstVector<T>(y, n).transpose();
  }
}

/// Calls run with the symmetric or Hermitian matrix of which uplo names the stored triangle.
template <class T, class Run>
void with_symmetric(const char* uplo, T* a, Int n, Int lda, Run run) {
  Matrix<T> matrix(a, n, n, Eigen::OuterStride<>(lda));
  if (is(uplo, 'U'))
    run(matrix.template selfadjointView<Eigen::Upper>());
  else
    run(matrix.template selfadjointView<Eigen::Lower>());
}

/// Calls run with the triangle of the matrix that uplo and diag select, transposed as trans says.
template <class T, class Run>
void with_triangle(const char* uplo, const char* trans, const char* diag, const T* a, Int n,
                   Int lda, Run run) {
  const ConstMatrix<T> matrix(a, n, n, Eigen::OuterStride<>(lda));
  const auto transposed = [&](const auto view) {
    if (is(trans, 'N'))
      run(view);
    else if (is(trans, 'C'))
      run(view.adjoint());
    else
      run(view.transpose());
  };
  if (is(uplo, 'U')) {
    if (is(diag, 'U'))
      transposed(matrix.template triangularView<Eigen::UnitUpper>());
    else
      transposed(matrix.template triangularView<Eigen::Upper>());
  } else {
    if (is(diag, 'U'))
      transposed(matrix.template triangularView<Eigen::UnitLower>());
    else
      transposed(matrix.template triangularView<Eigen::Lower>());
  }
}

}  // namespace

#define ANY_TYPE(t, T, symv, geru, syr, syr2)                                                      \
  EXPORT void t##gemv_(const char* trans, const Int* m, const Int* n, const T* alpha, const T* a,  \
                       const Int* lda, const T* x, const Int*, const T* beta, T* y, const Int*) {  \
    gemv(trans, *m, *n, *alpha, a, *lda, x, *beta, y);                                             \
  }                                                                                                \
  EXPORT void symv(const char* uplo, const Int* n, const T* alpha, const T* a, const Int* lda,     \
                   const T* x, const Int*, const T* beta, T* y, const Int*) {                      \
    const ConstMatrix<T> matrix(a, *n, *n, Eigen::OuterStride<>(*lda));                            \
    const ConstVector<T> vx(x, *n);                                                                \
    Vector<T> vy(y, *n);                                                                           \
    scale(vy, *beta);                                                                              \
    if (is(uplo, 'U'))                                                                             \
      vy.noalias() += matrix.template selfadjointView<Eigen::Upper>() * (*alpha * vx);             \
    else                                                                                           \
      vy.noalias() += matrix.template selfadjointView<Eigen::Lower>() * (*alpha * vx);             \
  }                                                                                                \
  EXPORT void geru(const Int* m, const Int* n, const T* alpha, const T* x, const Int*, const T* y, \
                   const Int*, T* a, const Int* lda) {                                             \
    rank_one(*m, *n, *alpha, x, y, a, *lda);                                                       \
  }                                                                                                \
  EXPORT void t##trsv_(const char* uplo, const char* trans, const char* diag, const Int* n,        \
                       const T* a, const Int* lda, T* x, const Int*) {                             \
    Vector<T> vx(x, *n);                                                                           \
    with_triangle(uplo, trans, diag, a, *n, *lda,                                                  \
                  [&](const auto& view) { view.solveInPlace(vx); });                               \
  }                                                                                                \
  EXPORT void syr(const char* uplo, const Int* n, const Eigen::NumTraits<T>::Real* alpha,          \
                  const T* x, const Int*, T* a, const Int* lda) {                                  \
    with_symmetric(uplo, a, *n, *lda,                                                              \
                   [&](auto view) { view.rankUpdate(ConstVector<T>(x, *n), *alpha); });            \
  }                                                                                                \
  EXPORT void syr2(const char* uplo, const Int* n, const T* alpha, const T* x, const Int*,         \
                   const T* y, const Int*, T* a, const Int* lda) {                                 \
    with_symmetric(uplo, a, *n, *lda, [&](auto view) {                                             \
      view.rankUpdate(ConstVector<T>(x, *n), ConstVector<T>(y, *n), *alpha);                       \
    });                                                                                            \
  }                                                                                                \
  EXPORT void t##trmv_(const char* uplo, const char* trans, const char* diag, const Int* n,        \
                       const T* a, const Int* lda, T* x, const Int*) {                             \
    Vector<T> vx(x, *n);                                                                           \
    with_triangle(uplo, trans, diag, a, *n, *lda, [&](const auto& view) { vx = view * vx; });      \
  }
ANY_TYPE(s, float, ssymv_, sger_, ssyr_, ssyr2_)
ANY_TYPE(d, double, dsymv_, dger_, dsyr_, dsyr2_)
ANY_TYPE(c, scomplex, chemv_, cgeru_, cher_, cher2_)
ANY_TYPE(z, dcomplex, zhemv_, zgeru_, zher_, zher2_)
