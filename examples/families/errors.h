// Measures of error that several families use.
#pragma once

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace jex::tour {

// Raises worst to error, if that is larger or a NaN; a NaN stays.
template <class T>
void keep_worst(T& worst, T error) {
  if (!(error <= worst) && !std::isnan(worst)) worst = error;
}

// The root-mean-square distance of computed numbers from exact ones, relative to the size of these,
// in units of eps.
class RelativeError {
 public:
  void add(long double computed, long double exact) {
    distance_ += (computed - exact) * (computed - exact);
    size_ += exact * exact;
  }
  double in_eps() const { return static_cast<double>(sqrtl(distance_ / size_)) / DBL_EPSILON; }

 private:
  long double distance_ = 0, size_ = 0;
};

// Elements whose bits differ; both have as many.
inline size_t differing(const std::vector<double>& a, const std::vector<double>& b) {
  size_t count = 0;
  for (size_t i = 0; i < a.size(); ++i)
    count += std::bit_cast<uint64_t>(a[i]) != std::bit_cast<uint64_t>(b[i]);
  return count;
}

}  // namespace jex::tour
