// The integer entries beside GNU MP itself, whose functions they jump to: what a jump costs.

#include <cstdint>
#include <limits>
#include <vector>

#include "case.h"

namespace jex::bench {
namespace {

// r = a op b on n limbs.
class LimbProblem : public Problem {
 public:
  explicit LimbProblem(long n) : n_(n), a_(n), b_(n), r_(2 * n) {}

  void fill() override {
    uint32_t state = 1;
    for (auto* array : {&a_, &b_})
      for (unsigned long& limb : *array) limb = state = state * 1664525u + 1013904223u;
  }

  void run(const Entry& entry, long calls) override {
    // A product returns nothing, a sum its carry, which nobody looks at.
    auto* f = entry.as<void(unsigned long*, const unsigned long*, const unsigned long*, long)>();
    for (; calls > 0; --calls) f(r_.data(), a_.data(), b_.data(), n_);
  }

  double deviation(const Problem& other) const override {
    return static_cast<const LimbProblem&>(other).r_ == r_
               ? 0
               : std::numeric_limits<double>::infinity();
  }

 private:
  long n_;
  std::vector<unsigned long> a_, b_, r_;
};

}  // namespace

void add_gmp(std::vector<Case>& cases) {
  for (const char* routine : {"__gmpn_add_n", "__gmpn_mul_n"})
    for (const long n : {4, 64, 1024}) {
      const double bytes = n * sizeof(unsigned long);
      const Work work{.read_bytes = 2 * bytes, .written_bytes = bytes, .footprint = 4 * bytes};
      cases.push_back({std::string(routine) + "/" + std::to_string(n), routine, "gmp", work,
                       n == 64, [n] { return std::make_unique<LimbProblem>(n); }});
    }
}

}  // namespace jex::bench
