// GNU MP's stream functions under the library's names. The core has them and not the module,
// because a stream belongs to one C library: that of the program, which the core shares.

#include <jex/core_imports.h>
#include <jex/exports.h>

#include <stdarg.h>
#include <stdio.h>

#include <gmp.h>

int jex_gmp___gmp_fprintf(void* stream, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int written = gmp_vfprintf(static_cast<FILE*>(stream), format, arguments);
  va_end(arguments);
  return written;
}

uint32_t jex_gmp___gmpz_inp_raw(void* x, void* stream) {
  return mpz_inp_raw(static_cast<mpz_ptr>(x), static_cast<FILE*>(stream));
}

uint32_t jex_gmp___gmpz_inp_str(void* x, void* stream, int base) {
  return mpz_inp_str(static_cast<mpz_ptr>(x), static_cast<FILE*>(stream), base);
}

uint32_t jex_gmp___gmpz_out_raw(void* stream, const void* x) {
  return mpz_out_raw(static_cast<FILE*>(stream), static_cast<mpz_srcptr>(x));
}

uint32_t jex_gmp___gmpz_out_str(void* stream, int base, const void* x) {
  return mpz_out_str(static_cast<FILE*>(stream), base, static_cast<mpz_srcptr>(x));
}
