/**
 * @file spblas.h
 * @brief Sparse matrices for users: products and solves, told by a descriptor.
 *
 * The entries check their arguments, scale the result, choose the kernel of the module, and share
 * the work among threads. The result does not depend on how many there are.
 *
 * | entry         | result                                  |
 * |---------------|-----------------------------------------|
 * | jex_?csrmv    | y := alpha op(A) x + beta y             |
 * | jex_?csrmm    | C := alpha op(A) B + beta C             |
 * | jex_?csrsv    | y := alpha op(A)^-1 x                   |
 * | jex_?csrsm    | C := alpha op(A)^-1 B                   |
 *
 * and the same with coo and dia in place of csr, for the other ways to store A.
 *
 * op is 'N' for A, 'T' for its transpose, 'C' for its conjugate transpose, in either case. beta = 0
 * clears, whatever y held. In the solves x may be y, and B may be C. Dense matrices are stored by
 * rows when base is 0 and by columns when it is 1; ld is the distance of rows, or of columns.
 */
#ifndef JEX_SPBLAS_H
#define JEX_SPBLAS_H

#include <jex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @brief Status of an entry; jex_sparse_message() tells it in words. */
enum {
  JEX_SPARSE_OK = 0,
  JEX_SPARSE_NO_MODULE,
  JEX_SPARSE_WRONG_OPERATION,
  JEX_SPARSE_WRONG_DESCRIPTOR,
  JEX_SPARSE_WRONG_SIZE,
  JEX_SPARSE_WRONG_LEADING_DIMENSION,
  JEX_SPARSE_NULL_ARGUMENT,
  JEX_SPARSE_WRONG_ROW_POINTER,
  JEX_SPARSE_WRONG_COLUMN,
  JEX_SPARSE_UNSORTED_ROW,
  JEX_SPARSE_MISSING_DIAGONAL,
  JEX_SPARSE_NO_MEMORY,
  JEX_SPARSE_WRONG_ROW,
  JEX_SPARSE_UNSORTED_DISTANCES
};

/**
 * @brief What a stored matrix stands for.
 *
 * Products take a symmetric, Hermitian or skew-symmetric matrix from one triangle of it; solves
 * need kind 'T' or 'D'.
 */
typedef struct {
  char kind;       /**< 'G' general, 'S' symmetric, 'H' Hermitian, 'T' triangular, 'D' diagonal,
                        'A' skew-symmetric */
  char uplo;       /**< 'L' or 'U': the triangle that is stored; not read for 'G' and 'D' */
  char diag;       /**< 'N', or 'U' for a diagonal of ones; not read for 'G' and 'A' */
  jex_int base;    /**< number of the first row and column, 0 or 1; for diagonals 1 */
  jex_int trusted; /**< not 0: the arrays of the matrix are not checked */
} jex_sparse_descriptor;

/**
 * @brief A matrix of m rows and n columns in compressed sparse rows.
 *
 * Row i holds the entries row_begin[i] - row_begin[0] up to, not including,
 * row_end[i] - row_begin[0]. The classic form of three arrays has row_end = row_begin + 1.
 */
typedef struct {
  jex_int m, n;
  const void* values; /**< of the entry's element type */
  const jex_int *columns, *row_begin, *row_end;
} jex_csr;

/**
 * @brief A matrix of m rows and n columns as a list of entries in any order.
 *
 * Entry k is values[k] in row rows[k] and column columns[k]. Entries with the same place add up.
 */
typedef struct {
  jex_int m, n;
  const void* values; /**< of the entry's element type */
  const jex_int *rows, *columns;
  jex_int count;
} jex_coo;

/**
 * @brief A matrix of m rows and n columns by its diagonals.
 *
 * Element (i, i + distances[d]) is values[d ld + i], i and d from 0: the distance is 0 for the main
 * diagonal and negative below it. ld is at least m. Places outside the matrix are not read, and
 * diagonals with the same distance add up. A solve wants the distances to ascend.
 */
typedef struct {
  jex_int m, n;
  const void* values; /**< of the entry's element type */
  jex_int ld;
  const jex_int* distances;
  jex_int count;
} jex_dia;

#define JEX_SPARSE_ENTRIES(E, T, FORMAT)                                                          \
  JEX_API jex_int jex_##E##FORMAT##mv(char op, const T* alpha, const jex_##FORMAT* a,             \
                                      const jex_sparse_descriptor* descriptor, const T* x,        \
                                      const T* beta, T* y);                                       \
  JEX_API jex_int jex_##E##FORMAT##mm(char op, jex_int columns, const T* alpha,                   \
                                      const jex_##FORMAT* a,                                      \
                                      const jex_sparse_descriptor* descriptor, const T* b,        \
                                      jex_int ldb, const T* beta, T* c, jex_int ldc);             \
  JEX_API jex_int jex_##E##FORMAT##sv(char op, const T* alpha, const jex_##FORMAT* a,             \
                                      const jex_sparse_descriptor* descriptor, const T* x, T* y); \
  JEX_API jex_int jex_##E##FORMAT##sm(                                                            \
      char op, jex_int columns, const T* alpha, const jex_##FORMAT* a,                            \
      const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, T* c, jex_int ldc);
#define JEX_SPARSE_FORMATS(E, T) \
  JEX_SPARSE_ENTRIES(E, T, csr)  \
  JEX_SPARSE_ENTRIES(E, T, coo)  \
  JEX_SPARSE_ENTRIES(E, T, dia)
JEX_SPARSE_FORMATS(s, float)
JEX_SPARSE_FORMATS(d, double)
JEX_SPARSE_FORMATS(c, jex_scomplex)
JEX_SPARSE_FORMATS(z, jex_dcomplex)

/** @brief A status in words. */
JEX_API const char* jex_sparse_message(jex_int status);

#ifdef __cplusplus
}
#endif

#endif
