/**
 * @file gmp.h
 * @brief GNU MP's own names on the module's entries.
 *
 * Behind this header `mpz_add(r, a, b)` calls jex_gmp___gmpz_add() of the module, with the types
 * that gmp.h declares: the integer functions (mpz), the low-level ones (mpn), random states,
 * formatted input and output, and the allocation hooks. Rational and floating-point functions, and
 * those of the C++ class interface, stay GNU MP's own. A program that includes it links the module
 * (-ljex_q7t) and needs the header of GNU MP; functions that gmp.h defines inline may still be
 * compiled in place there.
 *
 * Programs that reach the module through the core call the table instead, which needs neither:
 * `jex::module()->jex_gmp___gmpz_add(r, a, b)`.
 */
#ifndef JEX_GMP_H
#define JEX_GMP_H

#include <stdarg.h>
#include <stdio.h>

#include <gmp.h>

#include <jex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#define JEX_GMP_TEXT_(text) #text
#define JEX_GMP_TEXT(text) JEX_GMP_TEXT_(text)
/* The module's entry with the type of GNU MP's function, by a name of its own. */
#define JEX_GMP_TYPED(name)                                     \
  extern JEX_API __typeof__(name) jex_gmp_typed_##name __asm__( \
      JEX_GMP_TEXT(__USER_LABEL_PREFIX__) "jex_gmp_" #name);
#include <jex/gmp_names.h>
#undef JEX_GMP_TYPED

#ifdef __cplusplus
}
#endif

#endif
