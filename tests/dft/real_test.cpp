// Real transforms: every layout value by value, both ways, against extended precision.
#include "dft/real_descriptor.h"

using namespace jex::test;

namespace {

// A length of one has no rounding but that of the scale.
double allowed_real_error(jex_int n, double eps) { return std::max(allowed_error(n, eps), eps); }

template <class T>
class RealTransforms : public testing::Test {
 protected:
  using R = Part<T>;

  // An operand of one direction, with what it must become before scaling.
  struct Sample {
    std::vector<long double> in, out;
  };
  static Sample forward_sample(jex_int n, unsigned seed) {
    Spectrum x = random_values(n, seed);
    Sample s;
    for (Wide& v : x) s.in.push_back((v = v.real()).real());
    s.out = packed(transform(x), Packed::complex);
    return s;
  }
  static Sample backward_sample(jex_int n, unsigned seed) {
    const auto places = places_of(Packed::complex, n);
    const Spectrum values = random_values(places.size(), seed);
    Sample s;
    for (size_t i = 0; i < places.size(); ++i) s.in.push_back(places[i] < 0 ? 0 : values[i].real());
    for (const Wide& v : backward(transform(unpacked(s.in.data(), n, Packed::complex))))
      s.out.push_back(v.real());
    return s;
  }
  // The same spectrum in another layout.
  static std::vector<long double> as(const std::vector<long double>& values, jex_int n,
                                     Packed format) {
    return packed(unpacked(values.data(), n, Packed::complex), format);
  }

  struct Call {
    bool forward;
    Packed format;
    bool in_place;
    double scale;
    size_t offset;
  };
  // Root-mean-square error over the samples.
  static void check(jex_int n, const std::vector<Sample>& samples, const Call& c) {
    SCOPED_TRACE(testing::Message()
                 << "n " << n << " forward " << c.forward << " format " << int(c.format)
                 << " in place " << c.in_place << " scale " << c.scale << " offset " << c.offset);
    Descriptor d = real_1d<T>(n, c.format, c.in_place);
    d.set_scale(c.forward ? c.scale : NAN, c.forward ? NAN : c.scale);
    ASSERT_EQ(d.commit(), 0);
    double error = 0;
    for (const Sample& s : samples) {
      const auto from = c.forward ? s.in : as(s.in, n, c.format);
      auto expected = c.forward ? as(s.out, n, c.format) : s.out;
      for (long double& v : expected) v *= c.scale;
      const size_t most = std::max(from.size(), expected.size());
      Numbers<R> in(c.in_place ? most : from.size(), c.offset), out(expected.size(), c.offset);
      std::copy(from.begin(), from.end(), in.data());
      ASSERT_EQ(c.in_place ? d.compute(c.forward, in.data())
                           : d.compute(c.forward, in.data(), out.data()),
                0);
      const R* const result = c.in_place ? in.data() : out.data();
      const double e = relative_error(result, expected);
      error += e * e / samples.size();
      const auto places = places_of(c.format, n);
      for (size_t i = 0; c.forward && i < places.size(); ++i) {
        ASSERT_TRUE(places[i] >= 0 || result[i] == 0) << "place " << i;
      }
      ASSERT_TRUE(c.in_place || std::equal(from.begin(), from.end(), in.data())) << "operand";
    }
    ASSERT_LE(std::sqrt(error), allowed_real_error(n, epsilon<T>));
  }

  static void check(jex_int n) {
    const int count = n < 20 ? 12 : n < 200 ? 4 : 1;
    for (const bool forward : {true, false}) {
      std::vector<Sample> samples;
      for (int i = 0; i < count; ++i)
        samples.push_back(forward ? forward_sample(n, n + i) : backward_sample(n, n + i));
      for (const Packed format : all_packed)
        for (const bool in_place : {false, true})
          for (const double scale : {1.0, 0.3125})
            for (const size_t offset : {size_t(0), sizeof(R)})
              if (!testing::Test::HasFatalFailure())
                check(n, samples, {forward, format, in_place, scale, offset});
    }
  }
};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(RealTransforms, Both);

TYPED_TEST(RealTransforms, ShortLengths) {
  for (jex_int n = 1; n <= 70 && !this->HasFatalFailure(); ++n) this->check(n);
}

// Each path, and its neighbours: powers of two, split lengths over every complex path, levels of
// odd factors, odd lengths by the definition and beyond, chirps.
TYPED_TEST(RealTransforms, LongerLengths) {
  for (const jex_int n : {81,  105, 127, 128,  179,  180,  181,  191,  225,  302,  447,  512, 604,
                          899, 945, 999, 1024, 1155, 1331, 2018, 2197, 3003, 4096, 5005, 6561})
    if (!this->HasFatalFailure()) this->check(n);
  std::mt19937 random(11);
  for (int i = 0; i < 12 && !this->HasFatalFailure(); ++i)
    this->check(std::uniform_int_distribution<jex_int>(71, 9000)(random));
}

}  // namespace
