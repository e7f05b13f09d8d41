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

${prototypes}
#ifdef __cplusplus
}
#endif

#endif
")
