// x := op(A) x for a triangular matrix A in full storage.
#pragma once

#include "blas/level2/triangle_blocks.h"
#include "blas/level2/triangle_multiply.h"

namespace jex::blas {

// The triangle of a block has to stay in the first-level cache beside x: 16 KB for 64 columns of
// 8-byte elements, 8 KB for 32 columns of 16-byte ones. Floats take 32 columns, eight registers of
// x, and leave the larger share to gemv.
template <class T>
inline constexpr int trmv_block = 64;
template <>
inline constexpr int trmv_block<float> = 32;
template <>
inline constexpr int trmv_block<jex_dcomplex> = 32;

// The walk is that of the solve, turned round: a block's own elements of x are multiplied when
// nothing needs their old values any more.
template <Uplo uplo, Op op, Diag diag, class T>
[[gnu::noinline]] void trmv(int n, const T* a, int lda, T* vector, int incx) {
  constexpr int block = trmv_block<T>;
  const FullTriangle<uplo, const T> triangle = {a, lda, n};
  const Spread<T> x = spread(vector, n, incx);
  for_blocks<!is_lower(uplo, op)>(n, block, [&](int j, int width) {
    if constexpr (op == Op::none) couple<op>(triangle, j, width, x, 1);
    on_diagonal_block<block>(triangle, j, width, x, [](auto diagonal, auto x) {
      multiply_triangle<op, diag>(diagonal, x);
    });
    if constexpr (op != Op::none) couple<op>(triangle, j, width, x, 1);
  });
}

}  // namespace jex::blas
