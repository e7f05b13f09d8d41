// A program may have set the x87 to 53 bits, as the system does for new threads on Windows: tables
// are made in extended precision all the same, and the program's setting is back after the commit.
#include "dft/descriptor.h"

using namespace jex::test;

namespace {

uint16_t control_word() {
  uint16_t word;
  asm volatile("fnstcw %0" : "=m"(word));
  return word;
}
void set_control_word(uint16_t word) { asm volatile("fldcw %0" : : "m"(word)); }

// Lengths of one pass, several, large primes, and two levels.
TEST(Precision, TablesAreExtendedWhateverTheProgramHasSet) {
  const uint16_t before = control_word(), narrow = (before & ~0x300) | 0x200;
  for (const jex_int n : {7, 60, 1009, 4099, 16384, 100000}) {
    const Spectrum values = random_values(n, n);
    std::vector<jex_dcomplex> results[2];
    for (const bool is_narrow : {false, true}) {
      Array<jex_dcomplex> x(values);
      Descriptor d = Descriptor::complex_1d<jex_dcomplex>(n);
      if (is_narrow) set_control_word(narrow);
      const jex_int status = d.commit();
      const uint16_t after = control_word();
      set_control_word(before);
      ASSERT_EQ(status, 0);
      if (is_narrow) {
        EXPECT_EQ(after, narrow);
      }
      ASSERT_EQ(d.compute(true, x.data()), 0);
      results[is_narrow] = x.copy();
    }
    EXPECT_TRUE(same(results[0].data(), results[1].data(), n)) << n;
  }
}

}  // namespace
