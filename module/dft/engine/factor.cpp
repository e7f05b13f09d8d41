#include "dft/engine/factor.h"

#include "dft/engine/odd.h"
#include "dft/engine/pass.h"

namespace jex::dft {
namespace {

void exchange(Factor& a, Factor& b) {
  const Factor keep = a;
  a = b;
  b = keep;
}

// In bundles the streams of a power of two meet in the same places of the first cache, the more so
// in the wide bundles of long columns.
constexpr Costs bundle_cost(bool is_wide) {
  Costs costs = pass_cost;
  costs.radix[16] = is_wide ? 3.6f : 3.2f;
  costs.radix[32] = is_wide ? 5.2f : 3.68f;
  return costs;
}
constexpr int32_t longest_narrow = 256;

// The cheapest list of radices: large primes, then none above the one before it.
class Search {
 public:
  Search(int32_t n, const Costs& costs, int largest) : costs_(costs) { descend(n, largest, 0, 0); }
  Radices best;

 private:
  void descend(int32_t rest, int limit, int depth, float cost) {
    if (best.count && cost >= best_cost_) return;
    if (rest == 1) {
      best.count = depth;
      for (int i = 0; i < depth; ++i) best.radix[i] = radix_[i];
      best_cost_ = cost;
      return;
    }
    for (int r = limit; r > largest_kernel_prime; --r)
      if (rest % r == 0 && is_prime(r)) {
        const int next = r < largest_kernel_radix ? largest_kernel_radix : r;
        return take(r, rest, next, depth, cost, 2.2f + 0.55f * r);
      }
    for (int r = limit < largest_kernel_radix ? limit : largest_kernel_radix; r > 1; --r)
      if (rest % r == 0 && costs_[r] > 0) take(r, rest, r, depth, cost, costs_[r]);
  }
  void take(int r, int32_t rest, int limit, int depth, float cost, float more) {
    if (depth == most_factors) return;
    radix_[depth] = r;
    descend(rest / r, limit, depth + 1, cost + more);
  }

  const Costs& costs_;
  int radix_[most_factors];
  float best_cost_ = 0;
};

}  // namespace

int factorise(int32_t n, Factor (&factors)[most_factors]) {
  int count = 0;
  int32_t rest = n;
  const auto record = [&](int32_t radix) {
    factors[count++] = {radix, 0, 0, {}};
    rest /= radix;
  };
  while (rest % 4 == 0) record(4);
  if (count == 0 && rest % 2 == 0) record(2);
  if (rest >= 9)
    for (int32_t d = 3; d * d <= rest;) {
      if (d > largest_radix) return 0;
      if (rest % d == 0)
        record(d);
      else
        d += 2;
    }
  if (count == 0 || rest > largest_radix) return 0;
  if (rest > 1) record(rest);

  const int last = count - 1;
  if (factors[0].radix == 4)
    exchange(factors[0], factors[last]);
  else if (count > 1 && factors[1].radix == 4)
    exchange(factors[1], factors[last]);
  else if (factors[0].radix == 2)
    exchange(factors[0], factors[last]);

  int32_t before = 1;
  rest = n;
  for (int i = 0; i < count; ++i) {
    rest /= factors[i].radix;
    factors[i].rest = rest;
    factors[i].before = before;
    before *= factors[i].radix;
  }
  return count;
}

// The distances in user memory are often large powers of two, which bring the elements of a column
// to one place of the first cache. There the smallest radix fits best: first over columns, last
// over rows. The last pass over the columns of a wide bundle has as many places to write to as it
// has columns: it too wants the smallest. Odd radices come after the even ones otherwise, which
// keeps the lanes of a register in use from the second pass on.
Radices choose_radices(int32_t n, Use use, int largest) {
  if (has_kernel(n)) return {1, {n}};
  const bool is_wide = use != Use::alone && n > longest_narrow;
  const Costs costs = use == Use::alone ? pass_cost : bundle_cost(is_wide);
  const Radices found = Search(n, costs, largest).best;
  if (use == Use::rows || is_wide) return found;
  Radices ordered;
  for (int parity = 0; parity < 2; ++parity)
    for (int i = found.count - 1; i >= 0; --i)
      if (found.radix[i] % 2 == parity) ordered.radix[ordered.count++] = found.radix[i];
  return ordered;
}

int32_t split_length(int32_t n) {
  int32_t best = 1;
  for (int32_t d = 2; d <= n / d; ++d)
    if (n % d == 0) best = d;
  return best;
}

}  // namespace jex::dft
