/**
 * @file block_sparse.h
 * @brief Products with matrices in block sparse rows, told by a descriptor as in spblas.h.
 *
 * | entry         | result                                  |
 * |---------------|-----------------------------------------|
 * | jex_?bsrmv    | y := alpha op(A) x + beta y             |
 * | jex_?bsrmm    | C := alpha op(A) B + beta C             |
 *
 * op is 'N', 'T' or 'C', in either case; beta = 0 clears, whatever y held. Dense matrices are
 * stored by columns, ld apart, with either base. Arguments are checked; the result does not depend
 * on the number of threads.
 *
 * Kinds of the descriptor: 'G'; 'S' and 'A' (symmetric, skew-symmetric; 'H' for real types is 'S'),
 * of which the block triangle uplo is stored and the diagonal blocks whole, diag 'N'; 'T', the
 * elements of the triangle uplo, the diagonal ones if diag is 'U'; 'D', the diagonal blocks, or the
 * unit matrix. Others are JEX_SPARSE_WRONG_DESCRIPTOR.
 */
#ifndef JEX_BLOCK_SPARSE_H
#define JEX_BLOCK_SPARSE_H

#include <jex/spblas.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief A matrix of m x n square blocks.
 *
 * Block row i holds the blocks row_begin[i] - row_begin[0] up to, not including,
 * row_end[i] - row_begin[0]; element (r, c) of block k is values[k block block + c block + r].
 */
typedef struct {
  jex_int m, n, block;
  const void* values; /**< of the entry's element type */
  const jex_int *columns, *row_begin, *row_end;
} jex_bsr;

#define JEX_BSR_ENTRIES(E, T)                                                                      \
  JEX_API jex_int jex_##E##bsrmv(char op, const T* alpha, const jex_bsr* a,                        \
                                 const jex_sparse_descriptor* descriptor, const T* x,              \
                                 const T* beta, T* y);                                             \
  JEX_API jex_int jex_##E##bsrmm(char op, jex_int columns, const T* alpha, const jex_bsr* a,       \
                                 const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, \
                                 const T* beta, T* c, jex_int ldc);
JEX_BSR_ENTRIES(s, float)
JEX_BSR_ENTRIES(d, double)
JEX_BSR_ENTRIES(c, jex_scomplex)
JEX_BSR_ENTRIES(z, jex_dcomplex)

#ifdef __cplusplus
}
#endif

#endif
