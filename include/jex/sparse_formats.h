/**
 * @file sparse_formats.h
 * @brief Sparse matrices in double precision from one storage format to another.
 *
 * | format | storage                | values         | indices         | pointers                 |
 * |--------|------------------------|----------------|-----------------|--------------------------|
 * | 'R'    | compressed rows (CSR)  | entries        | columns         | m + 1, of the rows       |
 * | 'C'    | compressed columns     | entries        | rows            | n + 1, of the columns    |
 * | 'O'    | coordinates            | entries        | rows            | columns of the entries   |
 * | 'B'    | blocks by rows (BSR)   | by columns     | block columns   | ceil(m / block) + 1      |
 * | 'D'    | diagonals              | ld x count     | column less row | none                     |
 * | 'L'    | skyline, lower         | rows           | none            | m + 1, of the rows       |
 * | 'U'    | skyline, upper         | columns        | none            | m + 1, of the columns    |
 * | 'F'    | dense                  | all elements   | none            | none                     |
 *
 * base, 0 or 1, is that of indices and pointers; pointers begin with it. A dense matrix is stored
 * by rows with base 0 and by columns with base 1, lines ld apart. Element (i, j), from 0, of a
 * diagonal is values[d ld + i]. Lines of a skyline run from the first element to the diagonal.
 *
 * A CSR matrix whose columns ascend and which stores no zeros goes to any format that can hold it
 * and comes back bit for bit.
 */
#ifndef JEX_SPARSE_FORMATS_H
#define JEX_SPARSE_FORMATS_H

#include <jex/spblas.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @brief A matrix in one of the formats. Arrays that a format does not have are not looked at. */
typedef struct {
  char format; /**< a letter of the table, in either case */
  jex_int base;
  jex_int m, n;
  jex_int block; /**< side of the blocks of 'B' */
  jex_int ld;    /**< of 'D', at least m, and 'F' */
  jex_int count; /**< entries of 'R', 'C', 'O'; blocks; diagonals; elements of 'L', 'U' */
  double* values;
  jex_int *indices, *pointers;
} jex_sparse_matrix;

/**
 * @brief Makes the matrix `to`, in new arrays, of another one.
 *
 * The source is checked. Its count is read for 'O' and 'D' alone. Entries that name an element
 * twice add up in formats with one place for it. Elements equal to zero of 'B', 'D', 'L', 'U' and
 * 'F' have no entry in other formats; 'L' and 'U' store what lies between a line's first element
 * and the diagonal, and 'B' whole blocks, with zeros for what is not there.
 *
 * @param from    the matrix to convert
 * @param format  the letter of the new format
 * @param base    its base
 * @param block   side of its blocks, at least 1, for 'B' alone
 * @param to      receives the matrix; untouched unless the status is JEX_SPARSE_OK. Released by
 *                jex_sparse_release().
 * @return JEX_SPARSE_OK, NO_MODULE, NULL_ARGUMENT, WRONG_DESCRIPTOR (a letter or a base),
 *         WRONG_SIZE (a negative size, a block below 1, a skyline that is not square, or that is
 *         to hold what lies outside its triangle), WRONG_LEADING_DIMENSION, WRONG_ROW_POINTER,
 *         WRONG_COLUMN (an index out of range, or a diagonal named twice), or NO_MEMORY.
 */
JEX_API jex_int jex_dsparse_convert(const jex_sparse_matrix* from, char format, jex_int base,
                                    jex_int block, jex_sparse_matrix* to);

/** @brief Releases the arrays that jex_dsparse_convert() made, and sets them to null. */
JEX_API void jex_sparse_release(jex_sparse_matrix* matrix);

#ifdef __cplusplus
}
#endif

#endif
