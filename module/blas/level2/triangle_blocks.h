// trmv and trsv cut the triangle into diagonal blocks, which stay in the first-level cache; the
// rest of each block's columns, the rectangle beside it, is one gemv.
//
//   upper   R R R         lower   D          D  diagonal block, width x width
//           R R R                 R D        R  rectangle: the rows above, or below, in the block's
//           D R R                 R R D         own columns, so that memory is read along columns
//             D R                 R R R
//               D
#pragma once

#include "blas/level2/gemv.h"
#include "blas/level2/triangle.h"

namespace jex::blas {

// step(j, width) for the blocks of a walk from the first or from the last column; the narrower
// block is the last of the walk.
template <bool forward, class Step>
[[gnu::always_inline]] inline void for_blocks(int n, int block, Step step) {
  for (int done = 0; done < n; done += block) {
    const int width = std::min(block, n - done);
    step(forward ? done : n - done - width, width);
  }
}

// kernel(block of the triangle, its elements of x side by side). Spread elements visit the stack.
template <int block, Uplo uplo, class T, class Kernel>
[[gnu::always_inline]] inline void on_diagonal_block(FullTriangle<uplo, const T> a, int j,
                                                     int width, Spread<T> x, Kernel kernel) {
  const FullTriangle<uplo, const T> diagonal = {a.column(j) + j, a.lda, width};
  T copy[block];
  Dense<T> dense = {copy};
  if (x.inc == 1)
    dense.p = x.p + j;
  else
    for (int i = 0; i < width; ++i) copy[i] = x[j + i];
  kernel(diagonal, dense);
  if (x.inc != 1)
    for (int i = 0; i < width; ++i) x[j + i] = copy[i];
}

// A itself: x(rows beside the block) += sign rectangle x(block).
// Transposed: x(block) += sign op(rectangle) x(rows beside the block).
template <Op op, Uplo uplo, class T>
[[gnu::always_inline]] inline void couple(FullTriangle<uplo, const T> a, int j, int width,
                                          Spread<T> x, Real<T> sign) {
  const T alpha = real_element<T>(sign), one = real_element<T>(1);
  const int row = uplo == Uplo::upper ? 0 : j + width;
  const int rows = uplo == Uplo::upper ? j : a.n - row;
  if (rows == 0) return;
  const T *const rectangle = a.column(j) + row;
  T *const beside = x.part(row, rows), *const inside = x.part(j, width);
  if constexpr (op == Op::none)
    gemv(op, rows, width, alpha, rectangle, a.lda, inside, x.inc, one, beside, x.inc);
  else
    gemv(op, rows, width, alpha, rectangle, a.lda, beside, x.inc, one, inside, x.inc);
}

}  // namespace jex::blas
