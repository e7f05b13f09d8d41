#include "dft/engine/factor.h"

#include "dft/engine/odd.h"
#include "dft/engine/pass.h"

namespace jex::dft {
namespace {

constexpr int last_small = 150;

void exchange(Factor& a, Factor& b) {
  const Factor keep = a;
  a = b;
  b = keep;
}

// What a pass costs for each element, in some unit: reading, multiplying by a root and storing it,
// and its share of the butterfly. Measured on lengths up to 4096. 0 where there is no such pass.
struct Costs {
  float radix[largest_kernel_radix + 1];
  constexpr float operator[](int r) const { return radix[r]; }
};
constexpr Costs pass_cost = {{0, 0, 8.0f, 8.3f, 8.0f, 9.3f, 9.5f, 11.5f, 9.0f, 10.6f, 10.9f, 17.0f,
                              10.5f, 19.0f, 13.0f, 12.0f, 9.9f}};
// In bundles the sixteen streams of the largest radix meet in the same places of the first cache.
constexpr Costs bundle_cost = [] {
  Costs costs = pass_cost;
  costs.radix[largest_kernel_radix] = 10.5f;
  return costs;
}();
constexpr Costs split_cost = {{0, 0, 1.2f, 0, 1.8f, 0, 0, 0, 2.5f, 0, 0, 0, 0, 0, 0, 0, 3.2f}};
constexpr int shortest_split = 128;

// The cheapest list of radices, none above the one before it.
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
    for (int r = limit; r > largest_kernel_radix; --r)
      if (rest % r == 0 && is_prime(r)) return take(r, rest, depth, cost, 8.0f + 2.0f * r);
    for (int r = limit < largest_kernel_radix ? limit : largest_kernel_radix; r > 1; --r)
      if (rest % r == 0 && costs_[r] > 0) take(r, rest, depth, cost, costs_[r]);
  }
  void take(int r, int32_t rest, int depth, float cost, float more) {
    if (depth == most_factors) return;
    radix_[depth] = r;
    descend(rest / r, r, depth + 1, cost + more);
  }
  static bool is_prime(int r) {
    for (int d = 2; d * d <= r; ++d)
      if (r % d == 0) return false;
    return true;
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
      if (d > last_small) return 0;
      if (rest % d == 0)
        record(d);
      else
        d += 2;
    }
  if (count == 0 || rest > last_small) return 0;
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

Radices choose_radices(int32_t n, bool single) {
  if (n > 1 && n <= largest_kernel_radix) return {1, {n}};
  const Radices found = Search(n, single ? pass_cost : bundle_cost, last_small).best;
  // Even ones first keeps the lanes of a register in use from the second pass on.
  Radices ordered;
  for (int parity = 0; parity < 2; ++parity)
    for (int i = 0; i < found.count; ++i)
      if (found.radix[i] % 2 == parity) ordered.radix[ordered.count++] = found.radix[i];
  return ordered;
}

Radices choose_split_radices(int32_t n) {
  if (n < shortest_split || (n & (n - 1))) return {};
  return Search(n, split_cost, largest_kernel_radix).best;
}

int32_t split_length(int32_t n) {
  int32_t best = 1;
  for (int32_t d = 2; d <= n / d; ++d)
    if (n % d == 0) best = d;
  return best;
}

}  // namespace jex::dft
