// BLAS vectors for tests: random operands in guarded memory, and the same elements in the open for
// the model. Whatever lies between the elements of a spaced vector is NaN and must stay so.
#pragma once

#include "support/cases.h"
#include "support/guarded.h"

#include <jex/types.h>

#include <bit>
#include <cmath>
#include <limits>
#include <stdint.h>
#include <string.h>
#include <string>
#include <vector>

namespace jex::test {

template <class T>
struct Parts {
  using Real = T;
  static constexpr int count = 1;
};
template <>
struct Parts<jex_scomplex> {
  using Real = float;
  static constexpr int count = 2;
};
template <>
struct Parts<jex_dcomplex> {
  using Real = double;
  static constexpr int count = 2;
};
template <class T>
using Real = typename Parts<T>::Real;
template <class T>
inline constexpr bool is_complex = Parts<T>::count == 2;

template <class T>
inline constexpr char letter = std::is_same_v<T, float>          ? 's'
                               : std::is_same_v<T, double>       ? 'd'
                               : std::is_same_v<T, jex_scomplex> ? 'c'
                                                                 : 'z';

enum class Values {
  plain,    // -2 .. 2
  special,  // now and then NaN, an infinity, a zero of either sign, a denormal, a huge number
};

template <class R>
R random_real(Random& random, Values values) {
  using limits = std::numeric_limits<R>;
  if (values == Values::special && random.between(0, 11) == 0)
    return random.pick({limits::quiet_NaN(), limits::infinity(), -limits::infinity(), R(0), R(-0.0),
                        limits::denorm_min(), -limits::min() / 4, limits::max(), R(1e-20)});
  return R(random.real(-2, 2));
}

template <class T>
T random_value(Random& random, Values values) {
  Real<T> parts[Parts<T>::count];
  for (auto& part : parts) part = random_real<Real<T>>(random, values);
  T value;
  memcpy(&value, parts, sizeof value);
  return value;
}

// Elements in guarded memory, and the same in the open for the model. All are NaN at first.
template <class T>
class GuardedElements {
 public:
  GuardedElements(int count, size_t offset, Against side)
      : bytes_(count * sizeof(T)),
        memory_(bytes_ + 32),
        p_(static_cast<T*>(memory_.place(bytes_, offset, side))),
        model_(count) {
    if (count > 0) memset(static_cast<void*>(model_.data()), 0xff, bytes_);
  }
  // At a random place.
  GuardedElements(Random& random, int count)
      : GuardedElements(count, 4 * random.between(0, 3),
                        random.pick({Against::front, Against::back})) {}

  T* data() { return p_; }
  const T* data() const { return p_; }
  T& model(int i) { return model_[i]; }
  // The operand gets the model's elements.
  void publish() {
    if (bytes_ > 0) memcpy(static_cast<void*>(p_), model_.data(), bytes_);
  }

  // The first part of the operand that differs from the model's; two NaN are alike.
  std::string difference() const {
    using R = Real<T>;
    for (size_t i = 0; i < bytes_ / sizeof(R); ++i) {
      R ours, model;
      memcpy(&ours, reinterpret_cast<const char*>(p_) + i * sizeof(R), sizeof(R));
      memcpy(&model, reinterpret_cast<const char*>(model_.data()) + i * sizeof(R), sizeof(R));
      if (memcmp(&ours, &model, sizeof(R)) != 0 && !(std::isnan(ours) && std::isnan(model)))
        return "part " + std::to_string(i) + ": " + std::to_string(ours) + " for " +
               std::to_string(model);
    }
    return {};
  }

 private:
  size_t bytes_;
  Guarded memory_;
  T* p_;
  std::vector<T> model_;
};

template <class T>
class Vector {
 public:
  // n elements at the given increment and offset from a 16-byte boundary.
  Vector(Random& random, int n, int inc, size_t offset, Against side, Values values)
      : n_(n), inc_(inc), elements_(n < 1 ? 0 : (n - 1) * std::abs(inc) + 1, offset, side) {
    for (int i = 0; i < n; ++i) at(i) = random_value<T>(random, values);
    elements_.publish();
  }

  T* data() { return elements_.data(); }
  int inc() const { return inc_; }
  const int* inc_address() const { return &inc_; }

  // The model's element i of the walk.
  T& at(int i) { return elements_.model((inc_ < 0 ? (1 - n_) * inc_ : 0) + i * inc_); }
  std::string difference() const { return elements_.difference(); }

 private:
  int n_, inc_;
  GuardedElements<T> elements_;
};

// Bit for bit, but for the payload of NaN.
template <class R>
bool same_bits(R a, R b) {
  return memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b);
}
template <class T>
requires is_complex<T>
bool same_bits(T a, T b) { return same_bits(a.re, b.re) && same_bits(a.im, b.im); }

// One random call: length, increments, places and values. Vectors made from it share its stream.
struct Case {
  unsigned seed;
  Random random;
  int n;
  Values values;
  std::string text;

  Case(unsigned seed, int longest)
      : seed(seed),
        random(seed),
        n(random.between(0, 3) ? random.between(0, longest) : random.between(-1, 20)),
        values(random.between(0, 2) ? Values::plain : Values::special),
        text("JEX_CASE=" + std::to_string(seed) + " n=" + std::to_string(n)) {}

  template <class T>
  Vector<T> vector(int inc) {
    const size_t offset = 4 * random.between(0, 3);
    const Against side = random.pick({Against::front, Against::back});
    text += std::string(" ") + letter<T> + "(inc=" + std::to_string(inc) +
            " offset=" + std::to_string(offset) + (side == Against::front ? " front)" : " back)");
    return Vector<T>(random, n, inc, offset, side, values);
  }
  // Increment 1 half of the time, for all vectors of the call.
  template <class T>
  Vector<T> vector() {
    return vector<T>(unit() ? 1 : random.between(-3, 3));
  }
  template <class T>
  T value() {
    return random_value<T>(random, values);
  }

 private:
  bool unit() {
    if (unit_ < 0) unit_ = random.between(0, 1);
    return unit_;
  }
  int unit_ = -1;
};

}  // namespace jex::test
