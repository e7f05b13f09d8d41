// jex::fft: kinds by element types, layouts, batches, and what it refuses.
#include <jex/jex.hpp>

#include <gtest/gtest.h>

#include <random>

#include "dft/reference.h"

using namespace jex;
using jex::test::Spectrum;
using jex::test::Wide;

namespace {

template <class R>
class Fft : public testing::Test {
 protected:
  using C = std::complex<R>;

  static std::vector<R> numbers(size_t n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-1, 1);
    std::vector<R> x(n);
    for (R& v : x) v = value(random);
    return x;
  }
  static std::vector<C> elements(size_t n, unsigned seed) {
    const auto parts = numbers(2 * n, seed);
    std::vector<C> x(n);
    for (size_t i = 0; i < n; ++i) x[i] = {parts[2 * i], parts[2 * i + 1]};
    return x;
  }
  template <class T>
  static Spectrum transformed(const std::vector<T>& x, size_t first, size_t n, size_t stride = 1) {
    Spectrum wide;
    for (size_t i = 0; i < n; ++i) wide.push_back(Wide(x[first + i * stride]));
    return test::transform(wide);
  }
  static void near(C ours, Wide expected) {
    const R bound = 300 * std::numeric_limits<R>::epsilon();
    ASSERT_NEAR(ours.real(), R(expected.real()), bound);
    ASSERT_NEAR(ours.imag(), R(expected.imag()), bound);
  }
};
using Both = testing::Types<double, float>;
TYPED_TEST_SUITE(Fft, Both);

TYPED_TEST(Fft, KindsByTheTypes) {
  using C = typename TestFixture::C;
  using R = TypeParam;
  for (const size_t n : {1, 2, 7, 60, 101}) {
    const auto z = this->elements(n, n);
    std::vector<C> w(n);
    fft(Direction::forward, z, w);
    const Spectrum expected = this->transformed(z, 0, n);
    for (size_t k = 0; k < n; ++k) this->near(w[k], expected[k]);
    std::vector<C> place = z;
    fft(Direction::backward, place, place, {.scale = 0.5});
    for (size_t k = 0; k < n; ++k) this->near(place[k], expected[(n - k) % n] * 0.5L);

    const auto x = this->numbers(n, n);
    std::vector<C> half(n / 2 + 1);
    std::vector<R> back(n), packed(n);
    fft(Direction::forward, x, half);
    const Spectrum spectrum = this->transformed(x, 0, n);
    for (size_t k = 0; k < half.size(); ++k) this->near(half[k], spectrum[k]);
    fft(Direction::backward, half, back, {.scale = 1.0 / double(n)});
    for (size_t k = 0; k < n; ++k) this->near(back[k], x[k]);
    fft(Direction::forward, x, packed, {.format = FftFormat::pack});
    this->near(packed[0], spectrum[0].real());
    this->near(packed[n - 1], n == 1       ? spectrum[0].real()
                              : n % 2 == 0 ? spectrum[n / 2].real()
                                           : spectrum[n / 2].imag());
  }
}

TYPED_TEST(Fft, BatchesAndLayouts) {
  using C = typename TestFixture::C;
  const auto x = this->elements(200, 3);
  std::vector<C> y(200, C(9, 9));
  // Columns of a 12 x 15 matrix, to rows with gaps.
  const FftSettings columns{.lengths = {12},
                            .batch = 15,
                            .in = {.strides = {15}, .distance = 1, .offset = 2},
                            .out = {.strides = {1}, .distance = 13},
                            .threads = 2};
  FftPlan<C, C> plan(Direction::forward, columns);
  EXPECT_EQ(plan.operands(), 182u);
  EXPECT_EQ(plan.results(), 194u);
  FftPlan<C, C> moved = std::move(plan);
  for (int twice = 0; twice < 2; ++twice) moved(x, y);
  for (size_t c = 0; c < 15; ++c) {
    const Spectrum expected = this->transformed(x, 2 + c, 12, 15);
    for (size_t k = 0; k < 12; ++k) this->near(y[13 * c + k], expected[k]);
    EXPECT_EQ(y[13 * c + 12], C(9, 9));
  }
}

TYPED_TEST(Fft, PlanesThereAndBack) {
  using C = typename TestFixture::C;
  using R = TypeParam;
  const auto x = this->numbers(3 * 20 * 18, 5);
  std::vector<C> half(3 * 20 * 10);
  std::vector<R> back(x.size());
  const FftSettings planes{.lengths = {20, 18}, .batch = 3};
  fft(Direction::forward, x, half, planes);
  // Result (0, 0) of each plane is its sum.
  for (size_t p = 0; p < 3; ++p) {
    long double sum = 0;
    for (size_t i = 0; i < 360; ++i) sum += x[360 * p + i];
    this->near(half[200 * p], sum);
  }
  FftSettings scaled = planes;
  scaled.scale = 1.0 / 360;
  fft(Direction::backward, half, back, scaled);
  for (size_t i = 0; i < x.size(); ++i) this->near(back[i], x[i]);
  for (const FftFormat format : {FftFormat::ccs, FftFormat::pack, FftFormat::perm}) {
    std::vector<R> packed(3 * 22 * 20), again(x.size());
    scaled.format = format;
    FftSettings forward = planes;
    forward.format = format;
    fft(Direction::forward, x, packed, forward);
    this->near(packed[0], half[0]);
    fft(Direction::backward, packed, again, scaled);
    for (size_t i = 0; i < x.size(); ++i) this->near(again[i], x[i]);
  }
}

TYPED_TEST(Fft, WrongCallsWriteNothing) {
  using C = typename TestFixture::C;
  using R = TypeParam;
  std::vector<C> z(30), w(30, C(7, 7));
  std::vector<R> x(30);
  const auto refuses = [&](FftSettings s) {
    EXPECT_THROW(fft(Direction::forward, z, w, s), std::invalid_argument);
  };
  refuses({.lengths = {31}});
  refuses({.lengths = {0}});
  refuses({.lengths = {10}, .batch = 0});
  refuses({.lengths = {10}, .batch = 4});
  refuses({.lengths = {5, 5}, .in = {.strides = {1}}});
  refuses({.lengths = {5}, .in = {.strides = {-1}}});
  refuses({.lengths = {5}, .out = {.offset = 26}});
  refuses({.lengths = {1, 1, 1, 1, 1, 1, 1, 1}});
  refuses({.lengths = {65536, 65536}});
  EXPECT_THROW(fft(Direction::backward, x, w), std::invalid_argument);
  EXPECT_THROW(fft(Direction::forward, z, z, {.lengths = {9}, .out = {.offset = 1}}),
               std::invalid_argument);
  EXPECT_THROW(fft(Direction::forward, x, x, {.lengths = {2, 2, 2}}), std::invalid_argument);
  for (const C v : w) EXPECT_EQ(v, C(7, 7));
}

}  // namespace
