// Calls of the module's GNU MP stream entries arrive in the core with every argument in place.

#include <jex/core.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <gmp.h>

namespace {

struct Integer {
  mpz_t value;
  explicit Integer(const char* digits) { mpz_init_set_str(value, digits, 10); }
  ~Integer() { mpz_clear(value); }
};

class Forward : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(jex::module(), nullptr) << jex_core_error(); }
  const jex::Module* module = jex::module();
  FILE* file = tmpfile();
  void TearDown() override { fclose(file); }

  std::string content() {
    rewind(file);
    std::string text;
    for (int c; (c = fgetc(file)) != EOF;) text += char(c);
    return text;
  }
};

const char* const numbers[] = {"0", "1", "-1", "4294967296", "-123456789012345678901234567890"};

TEST_F(Forward, FormattedOutputOfMixedArguments) {
  const Integer big(numbers[4]);
  const std::string expected =
      "i 42, d 0.125, q -1234567890123, Z -123456789012345678901234567890, s word, c x, e 1e+300";
  for (int round = 0; round < 2; ++round) {  // the first call looks the target up
    rewind(file);
    EXPECT_EQ(module->jex_gmp___gmp_fprintf(file, "i %d, d %g, q %lld, Z %Zd, s %s, c %c, e %g", 42,
                                            0.125, -1234567890123LL, big.value, "word", 'x', 1e300),
              int(expected.size()));
    EXPECT_EQ(content(), expected);
  }
}

TEST_F(Forward, DigitsGoOutAndComeIn) {
  for (const char* digits : numbers)
    for (int base : {2, 10, 16, 62}) {
      const Integer x(digits);
      Integer y("77");
      rewind(file);
      char text[200];
      mpz_get_str(text, base, x.value);
      const uint32_t length = std::string(text).size();
      EXPECT_EQ(module->jex_gmp___gmpz_out_str(file, base, x.value), length);
      EXPECT_EQ(content().substr(0, length), text);
      rewind(file);
      fwrite(text, 1, length, file);
      fputs(" end", file);
      rewind(file);
      EXPECT_EQ(module->jex_gmp___gmpz_inp_str(y.value, file, base), length);
      EXPECT_EQ(mpz_cmp(x.value, y.value), 0) << digits << " in base " << base;
    }
}

TEST_F(Forward, RawBytesGoOutAndComeIn) {
  for (const char* digits : numbers) {
    const Integer x(digits);
    Integer y("77");
    const uint32_t magnitude = mpz_sgn(x.value) ? (mpz_sizeinbase(x.value, 2) + 7) / 8 : 0;
    rewind(file);
    EXPECT_EQ(module->jex_gmp___gmpz_out_raw(file, x.value), 4 + magnitude) << digits;
    rewind(file);
    EXPECT_EQ(module->jex_gmp___gmpz_inp_raw(y.value, file), 4 + magnitude) << digits;
    EXPECT_EQ(mpz_cmp(x.value, y.value), 0) << digits;
  }
  // Four bytes of signed length, then the magnitude, most significant byte first.
  rewind(file);
  module->jex_gmp___gmpz_out_raw(file, Integer("-258").value);
  EXPECT_EQ(content().substr(0, 6), std::string("\xff\xff\xff\xfe\x01\x02", 6));
}

TEST_F(Forward, ErrorsComeBack) {
  Integer x("5");
  fputs("no digits", file);
  rewind(file);
  EXPECT_EQ(module->jex_gmp___gmpz_inp_str(x.value, file, 10), 0u);
  fclose(file);
#ifdef _WIN32
  file = fopen("NUL", "r");
#else
  file = fopen("/dev/null", "r");
#endif
  EXPECT_EQ(module->jex_gmp___gmpz_inp_raw(x.value, file), 0u);
  EXPECT_EQ(module->jex_gmp___gmpz_out_str(file, 10, x.value), 0u) << "the stream is not writable";
}

TEST_F(Forward, FromManyThreadsAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int> right(4);
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      FILE* own = tmpfile();
      for (int i = 0; i < 500; ++i)
        right[t] += module->jex_gmp___gmp_fprintf(own, "%d %s\n", 100 + t, "abc") == 8;
      fclose(own);
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, std::vector<int>(4, 500));
}

}  // namespace
