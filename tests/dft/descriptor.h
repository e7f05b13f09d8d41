// Descriptors for tests: made, set, committed and released through the module's exports.
#pragma once

#include <gtest/gtest.h>
#include <jex/core.h>
#include <jex/dft.h>

#include <cstring>
#include <initializer_list>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "dft/reference.h"
#include "support/guarded.h"

namespace jex::test {

template <class T>
inline constexpr bool is_double = std::is_same_v<T, jex_dcomplex>;
template <class T>
using Part = decltype(T::re);
template <class T>
inline constexpr double epsilon = std::numeric_limits<Part<T>>::epsilon();

class Descriptor {
 public:
  Descriptor(jex_int precision, jex_int domain, const std::vector<jex_int>& lengths) {
    EXPECT_EQ(jex_dft_create_descriptor_md(&first_, precision, domain, jex_int(lengths.size()),
                                           lengths.data()),
              0);
  }
  template <class T>
  static Descriptor complex_1d(jex_int n) {
    return {is_double<T> ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE, JEX_DFT_COMPLEX, {n}};
  }
  Descriptor(Descriptor&& other) : first_(std::exchange(other.first_, nullptr)) {}
  ~Descriptor() {
    if (!first_) return;
    if (const auto* active = get<const jex_dft_breakdown*>(JEX_DFT_ACTIVE_BREAKDOWN))
      active->release(first_);
    EXPECT_EQ(jex_dft_free_allocated_buffers(first_), 0);
    jex_serv_jex_free(first_);
  }

  jex_int& operator[](int word) { return first_->word[word]; }
  template <class V>
  V get(int word, int record = 0) const {
    V value;
    memcpy(&value, &first_[record].word[word], sizeof value);
    return value;
  }
  template <class V>
  void set(int word, V value) {
    memcpy(&first_->word[word], &value, sizeof value);
  }
  void set_scale(double forward, double backward) {
    set(JEX_DFT_FORWARD_SCALE_D, forward);
    set(JEX_DFT_BACKWARD_SCALE_D, backward);
    set(JEX_DFT_FORWARD_SCALE_S, float(forward));
    set(JEX_DFT_BACKWARD_SCALE_S, float(backward));
  }
  // Layouts of both sides: stride, offset and distance of what goes in and what comes out.
  template <class Layout>
  void set_layouts(jex_int count, const Layout& in, const Layout& out) {
    set(JEX_DFT_NUMBER_OF_TRANSFORMS, count);
    set(JEX_DFT_INPUT_STRIDE, in.stride);
    set(JEX_DFT_INPUT_OFFSET, in.offset);
    set(JEX_DFT_INPUT_DISTANCE, in.distance);
    set(JEX_DFT_OUTPUT_STRIDE, out.stride);
    set(JEX_DFT_OUTPUT_OFFSET, out.offset);
    set(JEX_DFT_OUTPUT_DISTANCE, out.distance);
  }
  jex_dft_descriptor* pointer() { return first_; }
  operator jex_dft_descriptor*() { return first_; }

  jex_int commit() { return jex_dft_commit_descriptor_core(first_, nullptr); }
  // One, two or four arrays.
  template <class... A>
  jex_int compute(bool forward, A*... arrays) {
    EXPECT_EQ(get<jex_int>(JEX_DFT_NIO_ARGS), jex_int(sizeof...(A)));
    using Entry = jex_int (*)(jex_dft_descriptor*, decltype((void*)arrays)...);
    const auto entry = get<Entry>(forward ? JEX_DFT_FORWARD_ENTRY : JEX_DFT_BACKWARD_ENTRY);
    return entry(first_, (void*)(arrays)...);
  }

 private:
  jex_dft_descriptor* first_ = nullptr;
};

// Values that both precisions hold exactly.
inline Spectrum random_values(size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> value(-1, 1);
  Spectrum x(n);
  for (Wide& v : x) v = {value(random), value(random)};
  return x;
}

// n elements against an unreadable page, offset beyond a 16-byte boundary.
template <class T>
class Array {
 public:
  Array(size_t n, size_t offset = 0, Against side = Against::back)
      : n_(n),
        memory_(n * sizeof(T) + 32),
        p_(static_cast<T*>(memory_.place(n * sizeof(T), offset, side))) {}
  Array(const Spectrum& x, size_t offset = 0, Against side = Against::back)
      : Array(x.size(), offset, side) {
    for (size_t i = 0; i < n_; ++i) p_[i] = {Part<T>(x[i].real()), Part<T>(x[i].imag())};
  }
  T* data() { return p_; }
  T& operator[](size_t i) { return p_[i]; }
  std::vector<T> copy() const { return {p_, p_ + n_}; }

 private:
  size_t n_;
  Guarded memory_;
  T* p_;
};

template <class T>
bool same(const T* a, const T* b, size_t n) {
  return memcmp(a, b, n * sizeof(T)) == 0;
}

// Accuracy that every length must reach.
inline double allowed_error(jex_int n, double eps) {
  jex_int rest = n;
  for (const jex_int p : {2, 3, 5, 7, 11, 13})
    while (rest % p == 0) rest /= p;
  const double order = std::log2(double(n));
  return rest == 1 ? 0.5 * eps * std::sqrt(order) : 1.5 * eps * order;
}

}  // namespace jex::test
