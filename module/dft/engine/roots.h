// Roots of unity in extended precision: constants of the compiler, and tables made at plan time.
#pragma once

#include <stdint.h>

#include "simd/extended.h"

namespace jex::dft {

// cos and sin of 2 pi k / n.
struct Root {
  long double c, s;
};

// The angle of k / n turns, taken to the first octant: x / (8 n) turns with 0 <= x <= n, and how to
// come back from there.
struct Octant {
  uint64_t x;
  bool exchanged, negative_c, negative_s;

  constexpr Octant(uint64_t k, uint64_t n) : x(8 * k), exchanged(), negative_c(), negative_s() {
    if (x > 4 * n) x = 8 * n - x, negative_s = true;
    if (x > 2 * n) x = 4 * n - x, negative_c = true;
    if (x > n) x = 2 * n - x, exchanged = true;
  }
  constexpr Root place(Root r) const {
    if (exchanged) r = {r.s, r.c};
    return {negative_c ? -r.c : r.c, negative_s ? -r.s : r.s};
  }
};

// The root by Taylor's series, for constants.
constexpr Root constant_root(int k, int n) {
  const Octant octant((k % n + n) % n, n);
  const long double angle = 0.785398163397448309615660845819875721L * octant.x / n;
  long double c = 0, s = 0, term = 1;
  long double terms[24] = {};
  for (int i = 0; i < 24; ++i) {
    terms[i] = term;
    term = term * angle / (i + 1);
  }
  // Small terms first.
  for (int i = 22; i >= 0; i -= 2) {
    c += i % 4 ? -terms[i] : terms[i];
    s += i % 4 ? -terms[i + 1] : terms[i + 1];
  }
  return octant.place({c, s});
}

// The roots of one order, each from two factors: the turns of x / (8 n) split into whole steps and
// the rest of a step. All sums of products are of positive terms, so that both parts are within a
// few units of the extended precision. Whoever makes tables of roots, constant ones too, has an
// object of this class meanwhile.
class Roots {
 public:
  Roots() = default;
  Roots(const Roots &) = delete;
  ~Roots();
  // False when there is no memory.
  bool make(uint32_t n);
  Root operator()(uint32_t k) const;

 private:
  simd::ExtendedPrecision extended_;
  uint32_t n_ = 0;
  int shift_ = 0;
  Root *steps_ = nullptr, *rests_ = nullptr;
};

}  // namespace jex::dft
