// Lengths taken apart.
#pragma once

#include <stdint.h>

namespace jex::dft {

// A stage of the mixed-radix path.
struct Factor {
  int32_t radix;
  int32_t rest;    // n / (product of this and earlier radices)
  int32_t before;  // product of earlier radices
  int32_t spare[3];
};

constexpr int most_factors = 32;

// The factors of n in the order of the stages: 4s, or one 2, then odd ones; a 4 or 2 goes to the
// last stage. 0 when a prime factor above 150 is left, or when n is itself such a prime.
int factorise(int32_t n, Factor (&factors)[most_factors]);

// What a list of passes is for: one transform; bundles of columns, read where the user's array has
// them; bundles of rows, whose results go to columns of the user's array.
enum class Use { alone, columns, rows };

// The radices of the passes that compute a length, in their order. 0 when there is no such list.
struct Radices {
  int count = 0;
  int radix[most_factors];
};
Radices choose_radices(int32_t n, Use use);

// n = columns * rows, both near the square root; columns is 1 when there is no good one.
int32_t split_length(int32_t n);

}  // namespace jex::dft
