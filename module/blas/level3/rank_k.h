// C := alpha op(A) op(A)' + beta C on the stored triangle; ' is the transpose, or the conjugate
// transpose of the Hermitian update.
#pragma once

#include "blas/level3/stored_triangle.h"

namespace jex::blas {

template <class T, class S>
inline T widened(S alpha) {
  if constexpr (is_complex<T> && !is_complex<S>)
    return {alpha, 0};
  else
    return alpha;
}

// op(A) and op(A)', from row or column i on.
template <Conj conj, class T>
struct Factors {
  Operand<T> plain, mirrored;
  Factors(bool transposed, const T* a, int lda)
      : plain{a, lda, transposed ? mirror(conj) : Op::none},
        mirrored{a, lda, transposed ? Op::none : mirror(conj)} {}
  Operand<T> rows(int i) const { return plain.from(i, 0); }
  Operand<T> columns(int j) const { return mirrored.from(0, j); }
};

// op(A) is n x k: A itself, or its transpose. alpha and beta are real in the Hermitian update.
template <Conj conj, class T, class S>
[[gnu::noinline]] void rank_k(Uplo uplo, bool transposed, int n, int k, const S& alpha, const T* a,
                              int lda, const S& beta, T* c, int ldc) {
  if (n <= 0) return;
  const StoredTriangle<T> triangle{uplo, n, c, ldc};
  // A single block is scaled when its product is added.
  const bool is_block = n <= diagonal_block, is_done = is_zero(alpha) || k <= 0;
  if (is_done || !is_block) scale_triangle<conj>(triangle, {0, n}, beta);
  if (is_done) return;
  const S factor_of_block = is_block ? beta : one_of<S>;
  const Wanted wanted = uplo == Uplo::upper ? Wanted::upper : Wanted::lower;
  constexpr int scratch_ld = 128;
  alignas(16) T scratch[diagonal_block * scratch_ld];
  const Factors<conj, T> factors(transposed, a, lda);
  const T factor = widened<T>(alpha);
  const auto diagonal = [&](int first, int count) {
    product(count, count, k, factor, factors.rows(first), factors.columns(first), T{}, scratch,
            scratch_ld, wanted);
    add_terms<conj>(
        triangle.part(first, count),
        factor_of_block, [&](int i, int j, auto load) __attribute__((always_inline)) {
          return load(scratch + i + j * scratch_ld, 1);
        });
  };
  const auto rectangle = [&](int i, int rows, int j, int columns) {
    product(rows, columns, k, factor, factors.rows(i), factors.columns(j), one_of<T>,
            triangle.column(j) + i, ldc);
  };
  split_triangle(uplo, 0, n, diagonal, rectangle);
}

}  // namespace jex::blas
