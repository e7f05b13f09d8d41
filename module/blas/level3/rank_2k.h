// C := alpha op(A) op(B)' + alpha op(B) op(A)' + beta C on the stored triangle; ' is the transpose,
// or the conjugate transpose of the Hermitian update, whose second term has conj(alpha).
#pragma once

#include "blas/level3/rank_k.h"

namespace jex::blas {

// c += s + s' on one triangle of a block, s whole in a scratch block: the second product is the
// mirror image of the first.
template <Conj conj, class T>
void add_with_mirror(const StoredTriangle<T>& c, const T* s, int lds) {
  for (int j = 0; j < c.n; ++j) {
    const int begin = c.begin(j);
    T* const column = c.column(j);
    const T *const down = s + j * lds + begin, *const across = s + begin * lds + j;
    add_terms(
        c.end(j) - begin, column + begin, [=](int i, auto load) __attribute__((always_inline)) {
          auto image = load(across + i * lds, lds);
          if constexpr (conj == Conj::yes) image.parts = image.parts * Lanes<T>::all({1, -1}).parts;
          return load(down + i, 1) + image;
        });
    settle_diagonal<conj>(column[j]);
  }
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
  scale_triangle<conj>(triangle, panel, beta);
  if (is_zero(alpha) || k <= 0) return;
  // Columns that lie 72 apart do not meet in a few sets of the cache when they are read across.
  constexpr int scratch_ld = diagonal_block + 8;
  alignas(16) T scratch[diagonal_block * scratch_ld];
  const Factors<conj, T> fa(transposed, a, lda), fb(transposed, b, ldb);
  const auto diagonal = [&](int first, int count) {
    product(count, count, k, alpha, fa.rows(first), fb.columns(first), T{}, scratch, scratch_ld);
    add_with_mirror<conj>(triangle.part(first, count), scratch, scratch_ld);
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
