// C := alpha op(A) op(B)' + alpha op(B) op(A)' + beta C on the stored triangle; ' is the transpose,
// or the conjugate transpose of the Hermitian update, whose second term has conj(alpha).
#pragma once

#include "blas/level3/rank_k.h"

namespace jex::blas {

// c := beta c + (s + s') on one triangle of a block, s whole in a scratch block: the second product
// is the mirror image of the first.
template <Conj conj, class T, class S>
void add_with_mirror(const StoredTriangle<T>& c, const S& beta, const T* s, int lds) {
  add_terms<conj>(
      c, beta, [=](int i, int j, auto load) __attribute__((always_inline)) {
        auto image = load(s + i * lds + j, lds);
        if constexpr (conj == Conj::yes) image.parts = image.parts * Lanes<T>::all({1, -1}).parts;
        return load(s + j * lds + i, 1) + image;
      });
}

// op(A) and op(B) are n x k. Only the columns of the panel change: the first nb of a lower
// triangle, the last nb of an upper one.
template <Conj conj, class T, class S>
[[gnu::noinline]] void rank_2k(Uplo uplo, bool transposed, int n, int nb, int k, T alpha,
                               const T* a, int lda, const T* b, int ldb, S beta, T* c, int ldc) {
  if (n <= 0 || nb <= 0) return;
  const StoredTriangle<T> triangle{uplo, n, c, ldc};
  const Panel panel =
      uplo == Uplo::upper ? panel_of<Uplo::upper>(n, nb) : panel_of<Uplo::lower>(n, nb);
  // A single block is scaled when its product is added.
  const bool is_block = n <= diagonal_block && nb >= n, is_done = is_zero(alpha) || k <= 0;
  if (is_done || !is_block) scale_triangle<conj>(triangle, panel, beta);
  if (is_done) return;
  const S factor_of_block = is_block ? beta : one_of<S>;
  // Columns that lie 72 apart do not meet in a few sets of the cache when they are read across.
  constexpr int scratch_ld = diagonal_block + 8;
  alignas(16) T scratch[diagonal_block * scratch_ld];
  const Factors<conj, T> fa(transposed, a, lda), fb(transposed, b, ldb);
  const auto diagonal = [&](int first, int count) {
    product(count, count, k, alpha, fa.rows(first), fb.columns(first), T{}, scratch, scratch_ld);
    add_with_mirror<conj>(triangle.part(first, count), factor_of_block, scratch, scratch_ld);
  };
  const auto rectangle = [&](int i, int rows, int j, int columns) {
    T* const to = triangle.column(j) + i;
    product(rows, columns, k, alpha, fa.rows(i), fb.columns(j), one_of<T>, to, ldc);
    product(rows, columns, k, conjugate_if<conj>(alpha), fb.rows(i), fa.columns(j), one_of<T>, to,
            ldc);
  };
  const int width = panel.last - panel.first;
  if (uplo == Uplo::lower && width < n) rectangle(width, n - width, 0, width);
  if (uplo == Uplo::upper && width < n) rectangle(0, n - width, panel.first, width);
  split_triangle(uplo, panel.first, panel.last, diagonal, rectangle);
}

}  // namespace jex::blas
