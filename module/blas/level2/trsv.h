// x := inverse(op(A)) x for a triangular matrix A in full storage.
#pragma once

#include "blas/level2/triangle_blocks.h"
#include "blas/level2/triangle_solve.h"

namespace jex::blas {

// A diagonal block is solved when everything before it in the walk has been subtracted: with A
// itself each block's solution is taken off all unknowns to come; transposed, each block takes off
// all that is known at once. Both read the columns of A downwards.
template <Uplo uplo, Op op, Diag diag, class T>
[[gnu::noinline]] void trsv(int n, const T* a, int lda, T* vector, int incx) {
  constexpr int block = 32;
  const FullTriangle<uplo, const T> triangle = {a, lda, n};
  const Spread<T> x = spread(vector, n, incx);
  for_blocks<is_lower(uplo, op)>(n, block, [&](int j, int width) {
    if constexpr (op != Op::none) couple<op>(triangle, j, width, x, -1);
    on_diagonal_block<block>(triangle, j, width, x,
                             [](auto diagonal, auto x) { solve_triangle<op, diag>(diagonal, x); });
    if constexpr (op == Op::none) couple<op>(triangle, j, width, x, -1);
  });
}

}  // namespace jex::blas
