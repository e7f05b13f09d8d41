#include "dft/engine/roots.h"

#include <math.h>

#include "serv/memory_aligned.h"

namespace jex::dft {

bool Roots::make(uint32_t n) {
  n_ = n;
  while ((uint64_t(1) << (2 * shift_)) < n) ++shift_;
  const uint32_t rests = 1u << shift_, steps = (n >> shift_) + 1;
  steps_ = static_cast<Root*>(serv::aligned_malloc((steps + rests) * sizeof(Root), 64));
  if (!steps_) return false;
  rests_ = steps_ + steps;
  const long double unit = 0.785398163397448309615660845819875721L;
  for (uint32_t i = 0; i < steps; ++i) {
    const long double angle = unit * (i << shift_) / n;
    steps_[i] = {cosl(angle), sinl(angle)};
  }
  for (uint32_t i = 0; i < rests; ++i) {
    const long double angle = unit * i / n;
    rests_[i] = {cosl(angle), sinl(angle)};
  }
  return true;
}

Roots::~Roots() { serv::aligned_free(steps_); }

Root Roots::operator()(uint32_t k) const {
  const Octant octant(k, n_);
  const uint32_t x = octant.x;
  const Root a = steps_[x >> shift_], b = rests_[x & ((1u << shift_) - 1)];
  return octant.place({a.c * b.c - a.s * b.s, a.s * b.c + a.c * b.s});
}

}  // namespace jex::dft
