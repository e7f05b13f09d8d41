// Behind jex/gmp.h GNU MP's own names are the module's entries.

#include <jex/gmp.h>

#include <gtest/gtest.h>

#include "support/dlfcn.h"

namespace {

// A program of Windows calls through a jump of its own, to the address that stands behind it.
template <class F>
void* called(F* function) {
#ifdef _WIN32
  const auto* code = reinterpret_cast<const unsigned char*>(function);
  return code[0] == 0xff && code[1] == 0x25 ? **reinterpret_cast<void** const*>(code + 2) : nullptr;
#else
  return reinterpret_cast<void*>(function);
#endif
}

TEST(GmpNames, AreTheModulesEntries) {
  void* const module = dlopen(JEX_MODULE_FILE, RTLD_LAZY | RTLD_NOLOAD);
  const auto entry = [&](const char* name) { return dlsym(module, name); };
  EXPECT_EQ(called(&mpz_powm), entry("jex_gmp___gmpz_powm"));
  EXPECT_EQ(called(&mpn_mul_n), entry("jex_gmp___gmpn_mul_n"));
  EXPECT_EQ(called(&gmp_printf), entry("jex_gmp___gmp_printf"));
  EXPECT_EQ(called(&mpz_out_str), entry("jex_gmp___gmpz_out_str"));
  EXPECT_NE(entry("jex_gmp___gmpz_powm"), nullptr);
}

TEST(GmpNames, Compute) {
  mpz_t x;
  mpz_init_set_ui(x, 2);
  mpz_pow_ui(x, x, 127);
  mpz_sub_ui(x, x, 1);
  EXPECT_GE(mpz_probab_prime_p(x, 25), 1);
  char text[64];
  gmp_snprintf(text, sizeof text, "%Zd", x);
  EXPECT_STREQ(text, "170141183460469231731687303715884105727");
  mpz_clear(x);
}

}  // namespace
