// Operands of the dense cases: aligned memory, start values, and the distance of two outcomes.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

namespace jex::bench {

inline bool is_double(char type) { return type == 'd' || type == 'z'; }
inline int reals(char type) { return type == 'c' || type == 'z' ? 2 : 1; }

/// A real number as an element of any type.
template <class T>
T real(double r) {
  if constexpr (std::is_floating_point_v<T>)
    return T(r);
  else
    return {decltype(T::re)(r), 0};
}

/// Arrays cut from one piece of memory, each at a cache line, 16 lines between them: places that
/// differ within a page.
class Arrays {
 public:
  explicit Arrays(size_t bytes) {
    memory_.reset(static_cast<char*>(std::aligned_alloc(64, round(bytes) + 8 * 17 * 64)));
    if (!memory_) throw std::bad_alloc();
    next_ = memory_.get();
  }
  template <class R>
  R* take(size_t count) {
    char* const taken = next_;
    next_ += round(count * sizeof(R)) + 16 * 64;
    return reinterpret_cast<R*>(taken);
  }

 private:
  static size_t round(size_t bytes) { return (bytes + 63) / 64 * 64; }
  struct Free {
    void operator()(char* p) const { std::free(p); }
  };
  std::unique_ptr<char, Free> memory_;
  char* next_;
};

/// Magnitudes from half of scale to scale, of either sign; the same in every run.
class Random {
 public:
  template <class R>
  void fill(R* p, size_t count, R scale) {
    for (size_t i = 0; i < count; ++i) {
      state_ = state_ * 1664525u + 1013904223u;
      const R m = scale * (R(0.5) + R(state_ << 1 >> 9) * R(0x1p-24));
      p[i] = (state_ & 0x80000000u) ? -m : m;
    }
  }

 private:
  uint32_t state_ = 1;
};

/// The element at `place` becomes the i-th of a diagonal near 1, real where the elements are
/// complex.
template <class R>
void set_diagonal(R* a, size_t place, int i, int width) {
  R* const diagonal = a + place * width;
  std::fill(diagonal, diagonal + width, R(0));
  diagonal[0] = R(1) + R(i % 7) / 8;
}

/// Largest difference of two outcomes; infinite where one is NaN.
template <class R>
double largest_difference(const R* ours, const R* theirs, size_t count) {
  double worst = 0;
  for (size_t i = 0; i < count; ++i) {
    const double d = std::abs(double(ours[i]) - double(theirs[i]));
    if (!(d <= worst)) worst = std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
  }
  return worst;
}

}  // namespace jex::bench
