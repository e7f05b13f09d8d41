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

// The radices of the passes that compute a length, fewest operations first; the even ones stand in
// front. For one transform, or for bundles of them. 0 when there is no such list.
struct Radices {
  int count = 0;
  int radix[most_factors];
};
Radices choose_radices(int32_t n, bool single);

// The same for bundles whose passes have split blocks: two radices or more. These are faster for
// powers of two that do not fit the first cache, and slower where a factor is 3, 5 or 7, whose
// butterflies want more registers than there are.
Radices choose_split_radices(int32_t n);

// n = columns * rows, both near the square root; columns is 1 when there is no good one.
int32_t split_length(int32_t n);

}  // namespace jex::dft
