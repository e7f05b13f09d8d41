/**
 * @file types.h
 * @brief Types that the module, the core and their callers share. Plain C.
 *
 * Integers are 32-bit signed: dimensions, increments, leading dimensions, indices and statuses.
 * The letters of the published BLAS name the element types:
 *
 * | letter | type         | bytes |
 * |--------|--------------|-------|
 * | s      | float        | 4     |
 * | d      | double       | 8     |
 * | c      | jex_scomplex | 8     |
 * | z      | jex_dcomplex | 16    |
 *
 * A complex number is its real part followed by its imaginary part. Arrays need the alignment of
 * 4 bytes only; vectors on 16-byte boundaries are the fastest.
 *
 * **Complex results** are returned by value, as these structs are by the C compiler of the target:
 * on Linux i386 both come back through a hidden pointer, which the callee removes from the stack
 * (`ret $4`); on Windows i686 jex_scomplex comes back in EDX:EAX and jex_dcomplex through a hidden
 * pointer, which the caller removes. C callers need do nothing. Callers in Fortran, and callers
 * that declare `float _Complex`, use the drop-in BLAS, which returns what they expect.
 */
#ifndef JEX_TYPES_H
#define JEX_TYPES_H

#include <stdint.h>

typedef int32_t jex_int;

typedef struct {
  float re, im;
} jex_scomplex;

typedef struct {
  double re, im;
} jex_dcomplex;

/** @brief Marks a symbol that a library exports. */
#if defined(_WIN32) && defined(JEX_EXPORTS_CORE)
#define JEX_API __declspec(dllexport)
#elif defined(_WIN32)
#define JEX_API
#else
#define JEX_API __attribute__((visibility("default")))
#endif

/** @brief Parameter list of an entry that takes any arguments and looks at none. */
#ifdef __cplusplus
#define JEX_ANY_ARGUMENTS ...
#else
#define JEX_ANY_ARGUMENTS
#endif

#endif
