// Option words are equal where their first characters are, but for the case of ASCII letters.

#include <jex/exports/serv.h>

#include <gtest/gtest.h>

namespace {

int folded(int c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; }

TEST(Lsame, EveryPairOfCharacters) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const char x[] = {char(a), 'x', 0}, y[] = {char(b), 'y', 0};
      ASSERT_EQ(jex_serv_lsame(x, y), folded(a) == folded(b)) << a << " and " << b;
    }
  }
}

}  // namespace
