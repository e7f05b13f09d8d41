# Writes jex/blas.h: the prototypes of the front's entries, with the docstrings of the lists.
# Arguments: CXX (compiler), LISTS, OUT (the header).
set(prototypes "")
foreach(list ${LISTS})
  execute_process(
    COMMAND "${CXX}" -m32 -E -P -C -x c++ -ffreestanding
            -imacros "${CMAKE_CURRENT_LIST_DIR}/prototype_rows.inc" "${list}"
    OUTPUT_VARIABLE text RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${list} does not preprocess.")
  endif()
  string(APPEND prototypes "${text}\n")
endforeach()

file(WRITE "${OUT}" "/**
 * @file blas.h
 * @brief The BLAS of the core, in its Fortran 77 and C forms. Made from the front's lists.
 *
 * A published name is exported with jex_ before it, so that a program may use another BLAS beside
 * this one: jex_daxpy_ is the Fortran form (everything by address), jex_cblas_daxpy the C form. The
 * drop-in library exports the same entries under the published names themselves.
 */
#ifndef JEX_BLAS_H
#define JEX_BLAS_H

#include <jex/types.h>

#include <stddef.h>

#ifdef __cplusplus
extern \"C\" {
#endif

/** @brief Complex results of Fortran functions. */
__extension__ typedef float _Complex jex_f77_c;
__extension__ typedef double _Complex jex_f77_z;

/** @brief Index of an element for C, counted from 0. */
typedef size_t jex_cblas_index;

/** @brief How C stores a matrix: rows or columns one after the other. */
typedef jex_int jex_cblas_order;
enum { JEX_CBLAS_ROW_MAJOR = 101, JEX_CBLAS_COL_MAJOR = 102 };

/** @brief The operation on a matrix of a C call. */
typedef jex_int jex_cblas_transpose;
enum { JEX_CBLAS_NO_TRANS = 111, JEX_CBLAS_TRANS = 112, JEX_CBLAS_CONJ_TRANS = 113 };

/** @brief The triangle of a matrix that a C call reads or writes. */
typedef jex_int jex_cblas_uplo;
enum { JEX_CBLAS_UPPER = 121, JEX_CBLAS_LOWER = 122 };

/** @brief Whether the diagonal of a triangular matrix is stored, or all ones. */
typedef jex_int jex_cblas_diag;
enum { JEX_CBLAS_NON_UNIT = 131, JEX_CBLAS_UNIT = 132 };

/** @brief The side from which a C call multiplies by the symmetric or triangular matrix. */
typedef jex_int jex_cblas_side;
enum { JEX_CBLAS_LEFT = 141, JEX_CBLAS_RIGHT = 142 };

${prototypes}
#ifdef __cplusplus
}
#endif

#endif
")
