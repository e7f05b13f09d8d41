// Behind jex/gmp.h GNU MP's own names are the module's entries.

#include <jex/gmp.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

TEST(GmpNames, AreTheModulesEntries) {
  const auto entry = [](const char* name) { return dlsym(RTLD_DEFAULT, name); };
  EXPECT_EQ(reinterpret_cast<void*>(&mpz_powm), entry("jex_gmp___gmpz_powm"));
  EXPECT_EQ(reinterpret_cast<void*>(&mpn_mul_n), entry("jex_gmp___gmpn_mul_n"));
  EXPECT_EQ(reinterpret_cast<void*>(&gmp_printf), entry("jex_gmp___gmp_printf"));
  EXPECT_EQ(reinterpret_cast<void*>(&mpz_out_str), entry("jex_gmp___gmpz_out_str"));
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
