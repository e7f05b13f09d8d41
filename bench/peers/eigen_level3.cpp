// Peer library: level 3 as a user of Eigen writes it, on maps that promise no alignment.
// The Fortran symbols let the benchmark treat it as any other BLAS.
#include "eigen_maps.h"

namespace {

using namespace jex::bench;

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
  scale(mc, beta);
  with_operand(transa, a, m, k, lda, [&](const auto& ma) {
    with_operand(transb, b, k, n, ldb, [&](const auto& mb) { mc.noalias() += alpha * (ma * mb); });
  });
}

/// Calls run with the triangle of matrix that uplo names, as a view with more of the mode.
template <int more, class M, class Run>
void with_triangle(const char* uplo, M& matrix, Run run) {
  if (is(uplo, 'U'))
    run(matrix.template triangularView<Eigen::Upper | more>());
  else
    run(matrix.template triangularView<Eigen::Lower | more>());
}

template <class T>
void syrk(const char* uplo, const char* trans, Int n, Int k, T alpha, const T* a, Int lda, T beta,
          T* c, Int ldc) {
  Matrix<T> mc(c, n, n, Eigen::OuterStride<>(ldc));
  with_triangle<0>(uplo, mc, [&](auto triangle) { triangle = beta * mc; });
  with_operand(trans, a, n, k, lda, [&](const auto& ma) {
    with_triangle<0>(uplo, mc, [&](auto triangle) { triangle += alpha * (ma * ma.transpose()); });
  });
}

template <class T>
void symm(const char* side, const char* uplo, Int m, Int n, T alpha, const T* a, Int lda,
          const T* b, Int ldb, T beta, T* c, Int ldc) {
  const Int order = is(side, 'L') ? m : n;
  const ConstMatrix<T> ma(a, order, order, Eigen::OuterStride<>(lda)),
      mb(b, m, n, Eigen::OuterStride<>(ldb));
  Matrix<T> mc(c, m, n, Eigen::OuterStride<>(ldc));
  scale(mc, beta);
  // Of a complex matrix Eigen knows the Hermitian view only: the whole is written out.
  Dense<T> whole = ma;
  if (is(uplo, 'U'))
    whole.template triangularView<Eigen::StrictlyLower>() = ma.transpose();
  else
    whole.template triangularView<Eigen::StrictlyUpper>() = ma.transpose();
  if (is(side, 'L'))
    mc.noalias() += alpha * (whole * mb);
  else
    mc.noalias() += alpha * (mb * whole);
}

/// trmm, or trsm with solve.
template <bool solve, class T>
void triangular(const char* side, const char* uplo, const char* trans, const char* diag, Int m,
                Int n, T alpha, const T* a, Int lda, T* b, Int ldb) {
  const Int order = is(side, 'L') ? m : n;
  const ConstMatrix<T> ma(a, order, order, Eigen::OuterStride<>(lda));
  Matrix<T> mb(b, m, n, Eigen::OuterStride<>(ldb));
  if (solve) scale(mb, alpha);
  const auto apply = [&](const auto& op) {
    if constexpr (solve) {
      if (is(side, 'L'))
        op.solveInPlace(mb);
      else
        op.template solveInPlace<Eigen::OnTheRight>(mb);
    } else {
      const Dense<T> product = is(side, 'L') ? Dense<T>(op * mb) : Dense<T>(mb * op);
      mb = alpha * product;
    }
  };
  const auto with_diag = [&](auto unit) {
    with_triangle<unit>(uplo, ma, [&](const auto& view) {
      if (is(trans, 'N'))
        apply(view);
      else if (is(trans, 'C'))
        apply(view.adjoint());
      else
        apply(view.transpose());
    });
  };
  if (is(diag, 'U'))
    with_diag(std::integral_constant<int, Eigen::UnitDiag>());
  else
    with_diag(std::integral_constant<int, 0>());
}

}  // namespace

#define ANY_TYPE(t, T)                                                                          \
  EXPORT void t##gemm_(const char* transa, const char* transb, const Int* m, const Int* n,      \
                       const Int* k, const T* alpha, const T* a, const Int* lda, const T* b,    \
                       const Int* ldb, const T* beta, T* c, const Int* ldc) {                   \
    gemm(transa, transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);                 \
  }                                                                                             \
  EXPORT void t##syrk_(const char* uplo, const char* trans, const Int* n, const Int* k,         \
                       const T* alpha, const T* a, const Int* lda, const T* beta, T* c,         \
                       const Int* ldc) {                                                        \
    syrk(uplo, trans, *n, *k, *alpha, a, *lda, *beta, c, *ldc);                                 \
  }                                                                                             \
  EXPORT void t##symm_(const char* side, const char* uplo, const Int* m, const Int* n,          \
                       const T* alpha, const T* a, const Int* lda, const T* b, const Int* ldb,  \
                       const T* beta, T* c, const Int* ldc) {                                   \
    symm(side, uplo, *m, *n, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);                         \
  }                                                                                             \
  EXPORT void t##trmm_(const char* side, const char* uplo, const char* trans, const char* diag, \
                       const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda,  \
                       T* b, const Int* ldb) {                                                  \
    triangular<false>(side, uplo, trans, diag, *m, *n, *alpha, a, *lda, b, *ldb);               \
  }                                                                                             \
  EXPORT void t##trsm_(const char* side, const char* uplo, const char* trans, const char* diag, \
                       const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda,  \
                       T* b, const Int* ldb) {                                                  \
    triangular<true>(side, uplo, trans, diag, *m, *n, *alpha, a, *lda, b, *ldb);                \
  }
ANY_TYPE(s, float)
ANY_TYPE(d, double)
ANY_TYPE(c, scomplex)
ANY_TYPE(z, dcomplex)
