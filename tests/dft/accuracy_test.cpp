// Every length against extended precision, and the properties that a transform has by definition.
#include "dft/descriptor.h"

#include <cstdio>

using namespace jex::test;

namespace {

TEST(Reference, AgreesWithTheDefinition) {
  // By hand: the transform of (1, 2i, 3, 4).
  const Spectrum y = transform_by_definition({1, Wide(0, 2), 3, 4});
  const Spectrum hand = {Wide(8, 2), Wide(0, 4), Wide(0, -2), Wide(-4, -4)};
  for (int k = 0; k < 4; ++k) EXPECT_LT(std::abs(y[k] - hand[k]), 1e-18L) << k;
  for (size_t n = 1; n <= 130; ++n) {
    const Spectrum x = random_values(n, n);
    const Spectrum a = transform_by_definition(x), b = transform(x);
    for (size_t k = 0; k < n; ++k) ASSERT_LT(std::abs(a[k] - b[k]), 1e-16L) << n << " " << k;
  }
}

TEST(Reference, ErrorsShow) {
  const Spectrum reference = transform(random_values(64, 1));
  Array<jex_dcomplex> y(reference);
  EXPECT_LE(relative_error(y.data(), reference), allowed_error(64, epsilon<jex_dcomplex>));
  y[63].im += 1e-13;
  EXPECT_FALSE(relative_error(y.data(), reference) <= allowed_error(64, epsilon<jex_dcomplex>));
  y[63].im = NAN;
  EXPECT_FALSE(relative_error(y.data(), reference) <= 1);
}

class Accuracy : public testing::Test {
 protected:
  // Both precisions and directions, in place and not, with scales; operands against a guard page.
  void check(jex_int n) {
    const Spectrum x = random_values(n, n), forward = transform(x);
    check<jex_dcomplex>(n, x, forward);
    check<jex_scomplex>(n, x, forward);
  }
  void TearDown() override {
    printf("largest error: %.2f of what is allowed, n = %d\n", worst_, worst_n_);
  }

 private:
  template <class T>
  void check(jex_int n, const Spectrum& x, const Spectrum& forward) {
    for (const bool in_place : {true, false}) {
      Descriptor d = Descriptor::complex_1d<T>(n);
      d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
      d.set_scale(0.5, 0.25);
      ASSERT_EQ(d.commit(), 0) << n;
      check<T>(d, n, true, in_place, x, forward, 0.5L);
      check<T>(d, n, false, in_place, x, backward(forward), 0.25L);
    }
  }
  template <class T>
  void check(Descriptor& d, jex_int n, bool is_forward, bool in_place, const Spectrum& values,
             Spectrum reference, long double scale) {
    for (Wide& v : reference) v *= scale;
    Array<T> x(values, n % 2 ? 8 : 0, n % 3 ? Against::back : Against::front), y(n);
    const std::vector<T> before = x.copy();
    ASSERT_EQ(
        in_place ? d.compute(is_forward, x.data()) : d.compute(is_forward, x.data(), y.data()), 0);
    if (!in_place) {
      ASSERT_TRUE(same(x.data(), before.data(), n)) << "operand changed, n = " << n;
    }
    const double error = relative_error(in_place ? x.data() : y.data(), reference);
    const double allowed = n > 1 ? allowed_error(n, epsilon<T>) : epsilon<T>;
    ASSERT_LE(error, allowed) << "n = " << n << (is_double<T> ? " double" : " single")
                              << (is_forward ? " forward" : " backward")
                              << (in_place ? " in place" : " not in place");
    if (error > worst_ * allowed) worst_ = error / allowed, worst_n_ = n;
  }
  double worst_ = 0;
  jex_int worst_n_ = 0;
};

TEST_F(Accuracy, EveryLength) {
  for (jex_int n = 1; n <= 2100 && !HasFatalFailure(); ++n) check(n);
}

TEST_F(Accuracy, Limits) {
  // Round the levels and the largest factors; primes; powers of the odd radices; mixtures.
  for (const jex_int n :
       {3071,  3072,          3073,         4095,  4096,  4097,   6143,  6144,    8191,
        8192,  8193,          16384,        32768, 65536, 131072, 2187,  6561,    15625,
        16807, 14641,         28561,        5040,  30030, 44100,  99225, 1000000, 22801,
        22499, 2 * 149 * 151, 17 * 19 * 23, 10007, 20011, 17389})
    if (!HasFatalFailure()) check(n);
}

TEST_F(Accuracy, LargePowersOfTwo) {
  for (const int order : {18, 19, 21, 22})
    if (!HasFatalFailure()) check(1 << order);
}

template <class T>
class Properties : public testing::Test {
 protected:
  // What the transform makes of x, unit strides, not in place.
  static std::vector<T> run(Descriptor& d, const std::vector<T>& x, bool forward = true) {
    std::vector<T> from = x, to(x.size());
    EXPECT_EQ(d.compute(forward, from.data(), to.data()), 0);
    return to;
  }
  static std::vector<T> random(jex_int n, unsigned seed) {
    return Array<T>(random_values(n, seed)).copy();
  }
  static double distance(const std::vector<T>& a, const Spectrum& b) {
    return relative_error(a.data(), b);
  }
  static Spectrum wide(const std::vector<T>& x) {
    Spectrum y;
    for (const T& v : x) y.push_back({v.re, v.im});
    return y;
  }
};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(Properties, Both);

// As J. Ergün, "Testing Multivariate Linear Functions" (STOC 1995): linear, impulse to a constant,
// shift to a rotation; and there and back.
TYPED_TEST(Properties, LinearImpulseShiftInverse) {
  using T = TypeParam;
  for (const jex_int n :
       {2, 3, 7, 16, 30, 45, 61, 64, 97, 128, 360, 1000, 1009, 4096, 10010, 65536}) {
    Descriptor d = Descriptor::complex_1d<T>(n);
    d[JEX_DFT_PLACEMENT] = JEX_DFT_NOT_IN_PLACE;
    d.set_scale(1, 1.0 / n);
    ASSERT_EQ(d.commit(), 0);
    const double allowed = 4 * epsilon<T> * (2 + std::log2(double(n)));

    const auto a = this->random(n, 2 * n), b = this->random(n, 2 * n + 1);
    auto sum = a, shifted = a, impulse = std::vector<T>(n);
    for (jex_int i = 0; i < n; ++i) {
      sum[i] = {a[i].re + 2 * b[i].im, a[i].im - 2 * b[i].re};  // a - 2i b
      shifted[i] = a[(i + 1) % n];
    }
    impulse[n - 1] = {1, 0};
    const auto ya = this->run(d, a), yb = this->run(d, b);
    Spectrum combined(n), turned(n), constant(n);
    for (jex_int k = 0; k < n; ++k) {
      const Wide x(ya[k].re, ya[k].im), y(yb[k].re, yb[k].im);
      combined[k] = x - Wide(0, 2) * y;
      turned[k] = x * std::conj(root(k, n));
      constant[k] = std::conj(root(k, n));
    }
    EXPECT_LE(this->distance(this->run(d, sum), combined), allowed) << n;
    EXPECT_LE(this->distance(this->run(d, shifted), turned), allowed) << n;
    EXPECT_LE(this->distance(this->run(d, impulse), constant), allowed) << n;
    EXPECT_LE(this->distance(this->run(d, ya, false), this->wide(a)), allowed) << n;
  }
}

}  // namespace
