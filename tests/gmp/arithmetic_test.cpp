// The entries beside GNU MP itself on random operands: each kind of signature, with every function
// group of the manual; variable arguments of mixed types; results in all the places that a C
// function has for them.

#include "support/cases.h"

#include <jex/core.h>

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstring>
#include <string>
#include <vector>

#include <gmp.h>

namespace {

using jex::test::case_seeds;
using jex::test::Random;

struct Integer {
  mpz_t z;
  Integer() { mpz_init(z); }
  Integer(const Integer&) = delete;
  ~Integer() { mpz_clear(z); }
  // Up to so many bits, of either sign; now and then 0 or 1.
  void set_random(Random& random, int bits) {
    mpz_set_ui(z, random.between(0, 15) ? 1 : 0);
    const int length = random.between(0, bits);
    for (int i = 0; i < length; i += 16) {
      mpz_mul_2exp(z, z, 16);
      mpz_add_ui(z, z, random.between(0, 65535));
    }
    if (random.between(0, 1)) mpz_neg(z, z);
  }
};

class Gmp : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(module, nullptr) << jex_core_error(); }
  // Runs body(random, a, b, c) with fresh operands; b is not 0.
  template <class Body>
  void for_operands(Body body) {
    for (const unsigned seed : case_seeds(60)) {
      Random random(seed);
      Integer a, b, c;
      for (Integer* x : {&a, &b, &c}) x->set_random(random, random.pick({40, 300, 3000}));
      if (mpz_sgn(b.z) == 0) mpz_set_ui(b.z, 7);
      body(random, a.z, b.z, c.z);
      if (HasFailure()) FAIL() << "JEX_CASE=" << seed;
    }
  }
  const jex::Module* module = jex::module();
};

// A row runs the entry on r and GNU MP on s, which begin alike, and compares these and the results.
#define BOTH(name, ...)                              \
  {                                                  \
    Integer r, s;                                    \
    mpz_set(r.z, c);                                 \
    mpz_set(s.z, c);                                 \
    module->jex_gmp___gmpz_##name(r.z, __VA_ARGS__); \
    __gmpz_##name(s.z, __VA_ARGS__);                 \
    EXPECT_EQ(mpz_cmp(r.z, s.z), 0) << #name;        \
  }
#define RESULT(name, ...) \
  EXPECT_EQ(module->jex_gmp___gmpz_##name(__VA_ARGS__), __gmpz_##name(__VA_ARGS__)) << #name;

TEST_F(Gmp, ArithmeticAndDivision) {
  for_operands([&](Random& random, mpz_t a, mpz_t b, mpz_t c) {
    const unsigned long u = random.between(1, INT32_MAX), bits = random.between(0, 200);
    BOTH(add, a, b)
    BOTH(sub, a, b)
    BOTH(mul, a, b) BOTH(addmul, a, b) BOTH(submul, a, b) BOTH(add_ui, a, u) BOTH(sub_ui, a, u)
        BOTH(ui_sub, u, a) BOTH(mul_ui, a, u) BOTH(mul_si, a, -long(u)) BOTH(addmul_ui, a, u)
            BOTH(submul_ui, a, u) BOTH(mul_2exp, a, bits) BOTH(neg, a) BOTH(abs, a) BOTH(set, a)
                BOTH(cdiv_q, a, b) BOTH(cdiv_r, a, b) BOTH(fdiv_q, a, b) BOTH(fdiv_r, a, b)
                    BOTH(tdiv_q, a, b) BOTH(tdiv_r, a, b) BOTH(mod, a, b) BOTH(cdiv_q_2exp, a, bits)
                        BOTH(fdiv_r_2exp, a, bits) BOTH(tdiv_q_2exp, a, bits) RESULT(cdiv_ui, a, u)
                            RESULT(fdiv_ui, a, u) RESULT(tdiv_ui, a, u) RESULT(divisible_p, a, b)
                                RESULT(congruent_p, a, b, c) RESULT(divisible_ui_p, a, u) Integer q,
        r, p, s;
    module->jex_gmp___gmpz_tdiv_qr(q.z, r.z, a, b);
    mpz_tdiv_qr(p.z, s.z, a, b);
    EXPECT_TRUE(mpz_cmp(q.z, p.z) == 0 && mpz_cmp(r.z, s.z) == 0);
    mpz_mul(p.z, a, b);
    BOTH(divexact, p.z, b)
  });
}

TEST_F(Gmp, PowersRootsAndNumberTheory) {
  for_operands([&](Random& random, mpz_t a, mpz_t b, mpz_t c) {
    const unsigned long u = random.between(1, 30);
    Integer e, m;
    mpz_abs(e.z, c);
    mpz_fdiv_r_2exp(e.z, e.z, 64);
    mpz_abs(m.z, b);
    BOTH(powm, a, e.z, m.z)
    BOTH(powm_ui, a, u, m.z) BOTH(pow_ui, a, u) BOTH(ui_pow_ui, u, u) mpz_abs(e.z, a);
    BOTH(sqrt, e.z)
    BOTH(root, e.z, u)
    RESULT(perfect_square_p, a) RESULT(perfect_power_p, e.z) BOTH(gcd, a, b) BOTH(lcm, a, b)
        BOTH(gcdext, nullptr, nullptr, a, b) BOTH(invert, a, m.z) BOTH(remove, a, m.z)
            BOTH(fac_ui, u) BOTH(bin_uiui, 40, u) BOTH(fib_ui, u) BOTH(lucnum_ui, u)
                RESULT(jacobi, a, (mpz_setbit(m.z, 0), m.z)) RESULT(kronecker_si, a, -long(u))
                    mpz_fdiv_r_2exp(e.z, e.z, 90);
    RESULT(probab_prime_p, e.z, 20) BOTH(nextprime, e.z)
  });
}

TEST_F(Gmp, ComparisonBitsAndConversion) {
  for_operands([&](Random& random, mpz_t a, mpz_t b, mpz_t c) {
    const unsigned long u = random.between(0, 100);
    RESULT(cmp, a, b)
    RESULT(cmpabs, a, b)
    RESULT(cmp_ui, a, u) RESULT(cmp_si, a, -long(u)) RESULT(cmp_d, a, 1.5e10) BOTH(and, a, b)
        BOTH(ior, a, b) BOTH(xor, a, b) BOTH(com, a) RESULT(popcount, a) RESULT(hamdist, a, b)
            RESULT(scan0, a, u) RESULT(scan1, a, u) RESULT(tstbit, a, u) BOTH(setbit, u)
                BOTH(clrbit, u) BOTH(combit, u) RESULT(get_ui, a) RESULT(get_si, a) RESULT(get_d, a)
                    RESULT(sizeinbase, a, 10) RESULT(fits_slong_p, a) RESULT(size, a)
                        RESULT(getlimbn, a, 0) BOTH(set_d, -1e70) BOTH(set_si, -long(u))
                            BOTH(set_ui, u) long exponent,
        expected;
    EXPECT_EQ(module->jex_gmp___gmpz_get_d_2exp(&exponent, a), mpz_get_d_2exp(&expected, a));
    EXPECT_EQ(exponent, expected);
    std::vector<char> text(mpz_sizeinbase(a, 36) + 2), own(text.size());
    EXPECT_EQ(module->jex_gmp___gmpz_get_str(text.data(), 36, a), text.data());
    EXPECT_STREQ(text.data(), mpz_get_str(own.data(), 36, a));
    BOTH(set_str, text.data(), 36)
    std::vector<unsigned char> bytes(mpz_sizeinbase(a, 256));
    size_t count = 0;
    module->jex_gmp___gmpz_export(bytes.data(), &count, 1, 1, 1, 0, a);
    BOTH(import, count, 1, 1, 1, 0, bytes.data())
  });
}

TEST_F(Gmp, LowLevelFunctions) {
  for (const unsigned seed : case_seeds(60)) {
    Random random(seed);
    const int n = random.between(2, 60);
    const auto limbs = [&] {
      std::vector<unsigned long> x(n);
      for (auto& limb : x) limb = (unsigned long)(random.between(INT32_MIN, INT32_MAX));
      x[n - 1] |= 0x80000000u;
      return x;
    };
    const auto a = limbs(), b = limbs();
    std::vector<unsigned long> r(2 * n + 2), s(r);
    const unsigned long u = random.between(1, INT32_MAX);
#define LIMBS(name, ...)                                            \
  {                                                                 \
    EXPECT_EQ(module->jex_gmp___gmpn_##name(r.data(), __VA_ARGS__), \
              __gmpn_##name(s.data(), __VA_ARGS__))                 \
        << #name;                                                   \
    EXPECT_EQ(r, s) << #name;                                       \
  }
    LIMBS(add_n, a.data(), b.data(), n)
    LIMBS(sub_n, a.data(), b.data(), n)
    LIMBS(mul, a.data(), n, b.data(), n - 1) LIMBS(mul_1, a.data(), n, u) LIMBS(
        addmul_1, a.data(), n, u) LIMBS(submul_1, a.data(), n, u) LIMBS(lshift, a.data(), n, 5)
        LIMBS(rshift, a.data(), n, 31) LIMBS(divrem_1, 1, a.data(), n, u)
            LIMBS(sqrtrem, nullptr, a.data(), n) LIMBS(neg, a.data(), n) EXPECT_EQ(
                module->jex_gmp___gmpn_cmp(a.data(), b.data(), n), mpn_cmp(a.data(), b.data(), n));
    EXPECT_EQ(module->jex_gmp___gmpn_gcd_1(a.data(), n, u), mpn_gcd_1(a.data(), n, u));
    EXPECT_EQ(module->jex_gmp___gmpn_popcount(a.data(), n), mpn_popcount(a.data(), n));
    module->jex_gmp___gmpn_mul_n(r.data(), a.data(), b.data(), n);
    mpn_mul_n(s.data(), a.data(), b.data(), n);
    EXPECT_EQ(r, s);
    if (HasFailure()) FAIL() << "JEX_CASE=" << seed;
  }
}

TEST_F(Gmp, RandomStates) {
  gmp_randstate_t ours, theirs;
  module->jex_gmp___gmp_randinit_default(ours);
  gmp_randinit_default(theirs);
  for (const unsigned seed : {1u, 99u}) {
    module->jex_gmp___gmp_randseed_ui(ours, seed);
    gmp_randseed_ui(theirs, seed);
    Integer r, s;
    for (int i = 0; i < 50; ++i) {
      module->jex_gmp___gmpz_urandomb(r.z, ours, 500);
      mpz_urandomb(s.z, theirs, 500);
      EXPECT_EQ(mpz_cmp(r.z, s.z), 0);
      EXPECT_EQ(module->jex_gmp___gmp_urandomm_ui(ours, 1000), gmp_urandomm_ui(theirs, 1000));
    }
  }
  module->jex_gmp___gmp_randclear(ours);
  gmp_randclear(theirs);
}

int formatted(const jex::Module* module, char* text, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = module->jex_gmp___gmp_vsnprintf(text, size, format, arguments);
  va_end(arguments);
  return length;
}

TEST_F(Gmp, VariableArguments) {
  mpz_t a, b;  // a list of any length, ended by null
  module->jex_gmp___gmpz_inits(a, b, nullptr);
  mpz_set_str(a, "-123456789012345678901234567890", 10);
  char text[200], again[200];
  const std::string expected = "5 -123456789012345678901234567890 0.25 -9000000000 x abc 1e+300";
  EXPECT_EQ(module->jex_gmp___gmp_snprintf(text, sizeof text, "%d %Zd %g %lld %c %s %g", 5, a, 0.25,
                                           -9000000000LL, 'x', "abc", 1e300),
            int(expected.size()));
  EXPECT_EQ(text, expected);
  formatted(module, again, sizeof again, "%d %Zd %g %lld %c %s %g", 5, a, 0.25, -9000000000LL, 'x',
            "abc", 1e300);
  EXPECT_EQ(again, expected);
  int i = 0;
  double d = 0;
  long long q = 0;
  char word[20];
  EXPECT_EQ(module->jex_gmp___gmp_sscanf(text, "%d %Zd %lf %lld x %19s", &i, b, &d, &q, word), 5);
  EXPECT_TRUE(i == 5 && mpz_cmp(a, b) == 0 && d == 0.25 && q == -9000000000LL);
  EXPECT_STREQ(word, "abc");
  char* allocated = nullptr;
  EXPECT_EQ(module->jex_gmp___gmp_asprintf(&allocated, "%Zx/%d", a, 7), 28);
  EXPECT_STREQ(allocated, "-18ee90ff6c373e0ee4e3f0ad2/7");
  void (*release)(void*, size_t);
  mp_get_memory_functions(nullptr, nullptr, &release);
  release(allocated, strlen(allocated) + 1);
  module->jex_gmp___gmpz_clears(a, b, nullptr);
}

int allocations = 0;
void* counted(size_t size) {
  ++allocations;
  return malloc(size);
}

TEST_F(Gmp, AllocationHooks) {
  void* (*allocate)(size_t);
  void* (*reallocate)(void*, size_t, size_t);
  void (*release)(void*, size_t);
  module->jex_gmp___gmp_get_memory_functions(&allocate, &reallocate, &release);
  module->jex_gmp___gmp_set_memory_functions(counted, reallocate, release);
  Integer a;
  mpz_ui_pow_ui(a.z, 3, 1000);
  module->jex_gmp___gmp_set_memory_functions(allocate, reallocate, release);
  EXPECT_GT(allocations, 0);
}

}  // namespace
