// Lengths taken apart.
#pragma once

#include <stdint.h>

#include "dft/engine/pass.h"

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

constexpr int largest_prime(int n) {
  int largest = 1;
  for (int d = 2; n > 1; ++d)
    while (n % d == 0) n /= d, largest = d;
  return largest;
}
constexpr bool is_prime(int n) { return n > 1 && largest_prime(n) == n; }

constexpr int largest_kernel_prime = 13;

// What a pass costs for each element, in cycles of a clock a little slower than the processor's:
// reading, multiplying by a root and storing it, and its share of the butterfly. Measured within
// the first cache, both precisions together. 0 where there is no such pass.
struct Costs {
  float radix[largest_kernel_radix + 1];
  constexpr float operator[](int r) const { return radix[r]; }
};
inline constexpr Costs pass_cost = [] {
  Costs costs = {{0, 0, 1.25f, 1.5f, 1.65f, 2.2f, 1.95f, 2.9f, 2.05f, 3.1f, 2.7f, 4.7f, 2.5f, 5.15f,
                  3.3f, 3.2f, 2.75f}};
  costs.radix[20] = 3.0f;
  costs.radix[32] = 3.2f;
  return costs;
}();

// What a list of passes is for: one transform; bundles of columns, read where the user's array has
// them; bundles of rows, whose results go to columns of the user's array.
enum class Use { alone, columns, rows };

// The radices of the passes that compute a length, in their order, none above largest. 0 when there
// is no such list.
struct Radices {
  int count = 0;
  int radix[most_factors];
};
constexpr int largest_radix = 150;
Radices choose_radices(int32_t n, Use use, int largest = largest_radix);

// n = columns * rows, both near the square root; columns is 1 when there is no good one.
int32_t split_length(int32_t n);

}  // namespace jex::dft
