/**
 * @file dfti.h
 * @brief Fourier transforms for users of the core: create, set, commit, compute, free. Plain C.
 *
 * @code
 * jex_dft_dfti_handle h = 0;
 * jex_dft_dfti_create_descriptor_d_1d(&h, JEX_DFT_DOUBLE, JEX_DFT_COMPLEX, 1, n);
 * jex_dft_dfti_commit_descriptor_external(h);
 * jex_dft_dfti_compute_forward(h, x);                 // in place
 * jex_dft_dfti_free_descriptor_external(&h);
 * @endcode
 *
 * Every function returns a status; jex_dft_dfti_error_message_external() has its text. Nothing
 * prints, and a wrong argument changes nothing. A handle may be used by one thread at a time,
 * except that after a commit with user threads that many threads may compute on it.
 *
 * | status | meaning |
 * |--------|---------|
 * | 0 | success |
 * | 1 | no memory |
 * | 2 | no such parameter, or a value that it cannot have |
 * | 3 | settings that do not fit together (*); not committed |
 * | 5 | no handle |
 * | 6 | not offered: a real transform of four or more dimensions |
 * | 7 | the kernel module is missing |
 * | 8 | more threads compute than were announced |
 * | 9 | a length beyond the engine |
 *
 * (*) Several transforms in one place; of real transforms: parts apart, a packed format with three
 * dimensions, rows in place that have no room for their complex elements.
 *
 * jex/dft.h tells the layouts of real transforms and what their strides count. One transform of
 * several dimensions, or a long one of one dimension (a real one if its length is even), is shared
 * by the core's threads too; the bits of a result do not depend on their number.
 */
#ifndef JEX_DFTI_H
#define JEX_DFTI_H

#include <jex/dft.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief A transform of the user's; 0 for none. The first word behind it is the address of its first
 *        record (jex/dft.h), where the kernel module finds the compute entries.
 */
typedef struct jex_dft_dfti_transform* jex_dft_dfti_handle;

/** @brief Statuses beyond those of jex/dft.h. */
enum {
  JEX_DFTI_INVALID_CONFIGURATION = 2,
  JEX_DFTI_INCONSISTENT_CONFIGURATION = 3,
  JEX_DFTI_BAD_DESCRIPTOR = 5
};

/**
 * @brief Parameters of the set and get functions, with the kind of their value: int, real, or an
 *        array of int. Those marked "read" cannot be set.
 */
enum {
  JEX_DFTI_FORWARD_DOMAIN = 0,          /**< int, read: JEX_DFT_COMPLEX or JEX_DFT_REAL */
  JEX_DFTI_DIMENSION = 1,               /**< int, read */
  JEX_DFTI_LENGTHS = 2,                 /**< array, read; the last one varies fastest */
  JEX_DFTI_PRECISION = 3,               /**< int, read: JEX_DFT_SINGLE or JEX_DFT_DOUBLE */
  JEX_DFTI_FORWARD_SCALE = 4,           /**< real; 1 */
  JEX_DFTI_BACKWARD_SCALE = 5,          /**< real; 1 */
  JEX_DFTI_NUMBER_OF_TRANSFORMS = 7,    /**< int; 1 */
  JEX_DFTI_COMPLEX_STORAGE = 8,         /**< int: JEX_DFT_INTERLEAVED or JEX_DFT_SEPARATE */
  JEX_DFTI_CONJUGATE_EVEN_STORAGE = 10, /**< int: JEX_DFT_INTERLEAVED or JEX_DFT_REAL_ELEMENTS */
  JEX_DFTI_PLACEMENT = 11,              /**< int: JEX_DFT_IN_PLACE or JEX_DFT_NOT_IN_PLACE */
  JEX_DFTI_INPUT_STRIDES = 12,          /**< array: offset, then a stride for each length */
  JEX_DFTI_OUTPUT_STRIDES = 13,
  JEX_DFTI_INPUT_DISTANCE = 14, /**< int: elements from one transform to the next; 0 */
  JEX_DFTI_OUTPUT_DISTANCE = 15,
  JEX_DFTI_ORDERING = 18,      /**< int: JEX_DFT_ORDERED or JEX_DFT_BACKWARD_SCRAMBLED */
  JEX_DFTI_PACKED_FORMAT = 21, /**< int: JEX_DFT_CCS, JEX_DFT_PACK or JEX_DFT_PERM */
  JEX_DFTI_COMMIT_STATUS = 22, /**< int, read */
  JEX_DFTI_NUMBER_OF_USER_THREADS =
      26,                    /**< int; 1: threads of yours that compute at the same time */
  JEX_DFTI_THREAD_LIMIT = 27 /**< int: threads of the core for one call; all processors */
};

/**
 * @brief Makes a descriptor of one dimension.
 * @param handle    receives it
 * @param precision JEX_DFT_SINGLE or JEX_DFT_DOUBLE
 * @param domain    JEX_DFT_COMPLEX or JEX_DFT_REAL
 * @param dimension 1
 * @param length    1 or more
 */
JEX_API jex_int jex_dft_dfti_create_descriptor_d_1d(jex_dft_dfti_handle* handle, jex_int precision,
                                                    jex_int domain, jex_int dimension,
                                                    jex_int length);

/** @brief Makes a descriptor of dimension 1 to 7; the last of the lengths varies fastest. */
JEX_API jex_int jex_dft_dfti_create_descriptor_d_md(jex_dft_dfti_handle* handle, jex_int precision,
                                                    jex_int domain, jex_int dimension,
                                                    const jex_int* lengths);

/** @brief Sets a parameter; a change takes effect at the next commit, until which nothing computes.
 */
JEX_API jex_int jex_dft_dfti_set_value_intval(jex_dft_dfti_handle handle, jex_int parameter,
                                              jex_int value);
JEX_API jex_int jex_dft_dfti_set_value_dblval(jex_dft_dfti_handle handle, jex_int parameter,
                                              double value);
JEX_API jex_int jex_dft_dfti_set_value_intarray(jex_dft_dfti_handle handle, jex_int parameter,
                                                const jex_int* values);

/** @brief Reads a parameter. */
JEX_API jex_int jex_dft_dfti_get_value_intval(jex_dft_dfti_handle handle, jex_int parameter,
                                              jex_int* value);
JEX_API jex_int jex_dft_dfti_get_value_dblval(jex_dft_dfti_handle handle, jex_int parameter,
                                              double* value);
JEX_API jex_int jex_dft_dfti_get_value_intarray(jex_dft_dfti_handle handle, jex_int parameter,
                                                jex_int* values);

/** @brief Makes the plan. Tries the module's ready-made cases first. */
JEX_API jex_int jex_dft_dfti_commit_descriptor_external(jex_dft_dfti_handle handle);

/**
 * @brief Computes all transforms of the descriptor.
 *
 * The arrays follow, as jex/dft.h lists them by placement and storage: one, two or four pointers.
 * Several transforms, or the pieces of one, are shared out among the core's threads where that
 * pays.
 */
JEX_API jex_int jex_dft_dfti_compute_forward(jex_dft_dfti_handle handle, void* array, ...);
JEX_API jex_int jex_dft_dfti_compute_backward(jex_dft_dfti_handle handle, void* array, ...);

/** @brief Frees the descriptor and sets the handle to 0. */
JEX_API jex_int jex_dft_dfti_free_descriptor_external(jex_dft_dfti_handle* handle);

/** @brief The text of a status; one line, never null. */
JEX_API const char* jex_dft_dfti_error_message_external(jex_int status);

#ifdef __cplusplus
}
#endif

#endif
