// The stored triangle of C, which the rank-k updates change, and nothing beside it.
#pragma once

#include "blas/level2/rank_update.h"
#include "blas/level3/product.h"

namespace jex::blas {

template <class T>
struct StoredTriangle {
  Uplo uplo;
  int n;
  T* c;
  int ldc;

  T* column(int j) const { return c + ptrdiff_t(j) * ldc; }
  int begin(int j) const { return uplo == Uplo::upper ? 0 : j; }
  int end(int j) const { return uplo == Uplo::upper ? j + 1 : n; }
  // The triangle of rows and columns first .. first + count - 1.
  StoredTriangle part(int first, int count) const {
    return {uplo, count, column(first) + first, ldc};
  }
};

// The triangle of columns of C := beta C. beta = 0 stores zeros unread. A Hermitian diagonal
// becomes real; beta is then real, and the parts are scaled by themselves.
template <Conj conj, class T, class S>
[[gnu::noinline]] void scale_triangle(const StoredTriangle<T>& c, Panel panel, S beta) {
  if (is_one(beta)) return;
  for (int j = panel.first; j < panel.last; ++j) {
    T* const column = c.column(j);
    const int begin = c.begin(j), count = c.end(j) - begin;
    if constexpr (is_complex<T> && !is_complex<S>)
      scale_y(2 * count, beta, &column[begin].re, 1);
    else
      scale_y(count, beta, column + begin, 1);
    settle_diagonal<conj>(column[j]);
  }
}

// c := beta c + term on the triangle, column by column; beta = 0 does not read c. term(i, j, load)
// reads its streams by load, a register or one element.
template <Conj conj, class T, class S, class Term>
[[gnu::always_inline]] inline void add_terms(const StoredTriangle<T>& c, const S& beta, Term term) {
  using L = Lanes<T>;
  const Factor<S> factor(beta);
  const auto run = [&](auto old) __attribute__((always_inline)) {
    for (int j = 0; j < c.n; ++j) {
      T* const column = c.column(j);
      const int end = c.end(j);
      int i = c.begin(j);
      for (; i + L::count <= end; i += L::count)
        (old(column + i, [](const T* p) { return L::load(p); }) +
         term(i, j, [](const T* p, ptrdiff_t inc) {
           return inc == 1 ? L::load(p) : L::gather(p, inc);
         })).store(column + i);
      for (; i < end; ++i)
        (old(column + i, [](const T* p) { return L::load_first(p); }) +
         term(i, j, [](const T* p, ptrdiff_t) {
           return L::load_first(p);
         })).store_first(column + i);
      settle_diagonal<conj>(column[j]);
    }
  };
  if (is_zero(beta))
    run([](const T*, auto) __attribute__((always_inline)) { return L::zero(); });
  else if (is_one(beta))
    run([](const T* p, auto load) __attribute__((always_inline)) { return load(p); });
  else
    run([=](const T* p, auto load) __attribute__((always_inline)) { return load(p) * factor; });
}

// One block on the diagonal is computed in a scratch block, of which only the triangle is
// added to C: the multiply itself would write the half that must not change.
inline constexpr int diagonal_block = 64;

// Runs diagonal(first, count) for the diagonal blocks of rows and columns first .. last - 1 and
// rectangle(rows from, rows, columns from, columns) for what stands between them. The halves of
// each part meet in one rectangle, so that most of the work is in a few large ones. The second half
// is no smaller than the first: only the last block alone can be so narrow that the multiply adds
// in another order, as it does beside single blocks.
template <class Diagonal, class Rectangle>
void split_triangle(Uplo uplo, int first, int last, const Diagonal& diagonal,
                    const Rectangle& rectangle) {
  const int n = last - first;
  if (n <= diagonal_block) return diagonal(first, n);
  const int half = std::max(1, n / 2 / diagonal_block) * diagonal_block;
  const int middle = first + half;
  split_triangle(uplo, first, middle, diagonal, rectangle);
  if (uplo == Uplo::lower)
    rectangle(middle, last - middle, first, half);
  else
    rectangle(first, half, middle, last - middle);
  split_triangle(uplo, middle, last, diagonal, rectangle);
}

}  // namespace jex::blas
