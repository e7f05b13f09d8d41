/**
 * @file xblas.h
 * @brief Extended-precision matrix-vector products of the core: checked, then done by the module.
 *
 * y := alpha op(A) x + beta y, in the functions of two vectors y := alpha op(A) (head_x + tail_x) +
 * beta y; the internal precision is chosen by each call. Codes and argument order are those of the
 * C interface of the BLAS Technical Forum Standard (International Journal of High Performance
 * Computing Applications 16, 2002), without its order: matrices are column-major.
 *
 * Each function returns 0, or the position (from 1) of its first wrong argument, or -1 when the
 * kernel module cannot be loaded; y is untouched then. Besides unknown codes, negative extents,
 * zero increments, leading dimensions that are too small and null operands that have elements, a
 * leading dimension or increment is wrong with which the last element lies beyond the addresses of
 * a 32-bit program.
 */
#ifndef JEX_XBLAS_H
#define JEX_XBLAS_H

#include <jex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @brief The operation on the matrix. */
enum { JEX_XBLAS_NO_TRANS = 111, JEX_XBLAS_TRANS = 112, JEX_XBLAS_CONJ_TRANS = 113 };
/** @brief The triangle that is read. */
enum { JEX_XBLAS_UPPER = 121, JEX_XBLAS_LOWER = 122 };
/** @brief Internal precision: up to native in double, extra in double length. */
enum {
  JEX_XBLAS_SINGLE = 211,
  JEX_XBLAS_DOUBLE = 212,
  JEX_XBLAS_NATIVE = 213,
  JEX_XBLAS_EXTRA = 214
};

/**
 * @brief The products of an element type, V standing for one vector x or for its two parts.
 *
 * - jex_?gemv_x, jex_?gemv2_x: A is m x n.
 * - jex_?gbmv_x, jex_?gbmv2_x: a band of kl diagonals below and ku above the main one, element (i,
 * j) in row ku + i - j of column j.
 * - jex_?symv_x, jex_?symv2_x: A is symmetric of order n, one triangle read.
 * - jex_?hemv_x, jex_?hemv2_x: A is Hermitian; imaginary parts of its diagonal count as 0.
 */
#define JEX_XBLAS_GENERAL(t, T, two, V)                                                            \
  JEX_API jex_int jex_##t##gemv##two##_x(jex_int trans, jex_int m, jex_int n, T alpha, const T* a, \
                                         jex_int lda, V(T), jex_int incx, T beta, T* y,            \
                                         jex_int incy, jex_int prec);                              \
  JEX_API jex_int jex_##t##gbmv##two##_x(jex_int trans, jex_int m, jex_int n, jex_int kl,          \
                                         jex_int ku, T alpha, const T* a, jex_int lda, V(T),       \
                                         jex_int incx, T beta, T* y, jex_int incy, jex_int prec);
#define JEX_XBLAS_SYMMETRIC(t, T, name, two, V)                                         \
  JEX_API jex_int jex_##t##name##two##_x(jex_int uplo, jex_int n, T alpha, const T* a,  \
                                         jex_int lda, V(T), jex_int incx, T beta, T* y, \
                                         jex_int incy, jex_int prec);
#define JEX_XBLAS_ONE(T) const T* x
#define JEX_XBLAS_TWO(T) const T *head_x, const T *tail_x
#define JEX_XBLAS_REAL(t, T)                       \
  JEX_XBLAS_GENERAL(t, T, , JEX_XBLAS_ONE)         \
  JEX_XBLAS_GENERAL(t, T, 2, JEX_XBLAS_TWO)        \
  JEX_XBLAS_SYMMETRIC(t, T, symv, , JEX_XBLAS_ONE) \
  JEX_XBLAS_SYMMETRIC(t, T, symv, 2, JEX_XBLAS_TWO)
#define JEX_XBLAS_COMPLEX(t, T)                    \
  JEX_XBLAS_REAL(t, T)                             \
  JEX_XBLAS_SYMMETRIC(t, T, hemv, , JEX_XBLAS_ONE) \
  JEX_XBLAS_SYMMETRIC(t, T, hemv, 2, JEX_XBLAS_TWO)
JEX_XBLAS_REAL(s, float)
JEX_XBLAS_REAL(d, double)
JEX_XBLAS_COMPLEX(c, jex_scomplex)
JEX_XBLAS_COMPLEX(z, jex_dcomplex)
#undef JEX_XBLAS_GENERAL
#undef JEX_XBLAS_SYMMETRIC
#undef JEX_XBLAS_REAL
#undef JEX_XBLAS_COMPLEX
#undef JEX_XBLAS_ONE
#undef JEX_XBLAS_TWO

#ifdef __cplusplus
}
#endif

#endif
