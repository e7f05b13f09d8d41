/**
 * @file trans.h
 * @brief Matrix copy, transposition and addition of the core: checked, then done by the module.
 *
 * ordering: 'R' row-major, 'C' column-major. trans: 'N' as it is, 'T' transposed, 'C'
 * conjugate-transposed, 'R' conjugated only; either case. rows and cols are those of A.
 *
 * Each function returns 0, or the position (from 1) of its first wrong argument, or -1 when the
 * kernel module cannot be loaded; the outputs are untouched then. Wrong are: a letter that is none
 * of these, a negative extent, a leading dimension that is too small for a line of its matrix, a
 * null matrix that has elements, a stride below 1, and an extent or leading dimension with which
 * the last element of the matrix lies beyond the addresses of a 32-bit program (that of the leading
 * dimension). Empty matrices need no memory.
 */
#ifndef JEX_TRANS_H
#define JEX_TRANS_H

#include <jex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief The four functions of an element type.
 *
 * - jex_?imatcopy: AB := alpha op(AB) in place; lines lda apart before, ldb apart after it. The
 * array holds whichever of both is longer.
 * - jex_?omatcopy: B := alpha op(A), out of place.
 * - jex_?omatcopy2: the same with distances stridea, strideb between the elements of a line; a
 *   leading dimension spans a whole line.
 * - jex_?omatadd: C := alpha op(A) + beta op(B). rows and cols are those of C; a transposed operand
 *   has cols rows and rows columns.
 */
#define JEX_MATRIX_COPY(t, T)                                                                 \
  JEX_API jex_int jex_##t##imatcopy(char ordering, char trans, jex_int rows, jex_int cols,    \
                                    T alpha, T* ab, jex_int lda, jex_int ldb);                \
  JEX_API jex_int jex_##t##omatcopy(char ordering, char trans, jex_int rows, jex_int cols,    \
                                    T alpha, const T* a, jex_int lda, T* b, jex_int ldb);     \
  JEX_API jex_int jex_##t##omatcopy2(char ordering, char trans, jex_int rows, jex_int cols,   \
                                     T alpha, const T* a, jex_int lda, jex_int stridea, T* b, \
                                     jex_int ldb, jex_int strideb);                           \
  JEX_API jex_int jex_##t##omatadd(char ordering, char transa, char transb, jex_int rows,     \
                                   jex_int cols, T alpha, const T* a, jex_int lda, T beta,    \
                                   const T* b, jex_int ldb, T* c, jex_int ldc);
JEX_MATRIX_COPY(s, float)
JEX_MATRIX_COPY(d, double)
JEX_MATRIX_COPY(c, jex_scomplex)
JEX_MATRIX_COPY(z, jex_dcomplex)
#undef JEX_MATRIX_COPY

#ifdef __cplusplus
}
#endif

#endif
