// Random test cases. Every case has a seed of its own; a failure prints it, and JEX_CASE=<seed> in
// the environment runs that case alone.
#pragma once

#include <random>
#include <stdlib.h>
#include <vector>

namespace jex::test {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  double real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  template <class T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[between(0, int(values.size()) - 1)];
  }

 private:
  std::mt19937 engine_;
};

inline std::vector<unsigned> case_seeds(unsigned count) {
  if (const char* only = getenv("JEX_CASE")) return {unsigned(strtoul(only, nullptr, 10))};
  std::vector<unsigned> seeds(count);
  for (unsigned i = 0; i < count; ++i) seeds[i] = i + 1;
  return seeds;
}

}  // namespace jex::test
