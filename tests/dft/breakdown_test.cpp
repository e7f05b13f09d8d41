// Ready-made cases: which lengths and scales they take, what they compute, what they release.
#include "dft/descriptor.h"

using namespace jex::test;

namespace {

template <class T>
jex_int apply(Descriptor& d) {
  return is_double<T> ? jex_dft_apply_bkdowns_d_c2c_1d(d) : jex_dft_apply_bkdowns_s_c2c_1d(d);
}

template <class T>
class Breakdowns : public testing::Test {};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(Breakdowns, Both);

TYPED_TEST(Breakdowns, LengthsAndScales) {
  using T = TypeParam;
  const auto exact = [](double x) { return is_double<T> ? x : double(float(x)); };
  for (const jex_int n : {1, 2, 3, 4, 8, 15, 16, 17, 31, 32, 64, 100, 127, 128, 149, 360, 4096}) {
    const struct {
      double forward, backward;
      bool applies;
    } rows[] = {{1, 1, true},
                {exact(1.0 / n), 1, true},
                {1, exact(1.0 / n), true},
                {exact(1 / std::sqrt(double(n))), exact(1 / std::sqrt(double(n))), true},
                {0.3, 1, false},
                {1, exact(1.0 / n) * 7.5, false}};
    for (const auto& r : rows) {
      Descriptor d = Descriptor::complex_1d<T>(n);
      d.set_scale(r.forward, r.backward);
      // Plans up to here need no more than 2048 bytes, but for the prime 127: 16 n + 32.
      const bool is_small = is_double<T> ? n <= 128 && n != 127 : n <= 150;
      ASSERT_EQ(apply<T>(d), r.applies && is_small ? 0 : 100)
          << n << " " << r.forward << " " << r.backward;
      if (!(r.applies && is_small)) {
        EXPECT_EQ(d[JEX_DFT_COMMIT_STATE], 31);
        EXPECT_EQ(d.get<void*>(JEX_DFT_FORWARD_ENTRY), nullptr);
        continue;
      }
      EXPECT_EQ(d[JEX_DFT_COMMIT_STATE], 30);
      d[JEX_DFT_NIO_ARGS] = jex_dft_determine_nioargs(d);
      for (const bool forward : {true, false})
        for (const size_t offset : {0, 4}) {
          const Spectrum values = random_values(n, n);
          Spectrum reference = transform(values);
          if (!forward) reference = backward(reference);
          for (Wide& v : reference) v *= forward ? r.forward : r.backward;
          Array<T> x(values, offset);
          ASSERT_EQ(d.compute(forward, x.data()), 0);
          // The plan holds 1/sqrt(n) in double, the reference in the precision of the transform.
          ASSERT_LE(relative_error(x.data(), reference), 4 * epsilon<T> * (1 + std::log2(n))) << n;
        }
    }
  }
}

TYPED_TEST(Breakdowns, OtherSettingsAreNotTheirs) {
  using T = TypeParam;
  const struct {
    int word;
    jex_int value;
  } rows[] = {{JEX_DFT_INPUT_OFFSET, 1},
              {JEX_DFT_INPUT_STRIDE, 2},
              {JEX_DFT_NUMBER_OF_TRANSFORMS, 2},
              {JEX_DFT_COMPLEX_STORAGE, JEX_DFT_SEPARATE},
              {JEX_DFT_FORWARD_DOMAIN, JEX_DFT_REAL},
              {JEX_DFT_RANK, 2}};
  for (const auto& [word, value] : rows)
    for (const jex_int n : {8, 2, 60}) {
      Descriptor d = Descriptor::complex_1d<T>(n);
      d[word] = value;
      EXPECT_EQ(apply<T>(d), 100) << word << " " << n;
    }
  // In place, the output's layout has no meaning.
  for (const bool in_place : {true, false}) {
    Descriptor d = Descriptor::complex_1d<T>(60);
    d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
    d[JEX_DFT_OUTPUT_STRIDE] = 2;
    d[JEX_DFT_OUTPUT_OFFSET] = 3;
    EXPECT_EQ(apply<T>(d), in_place ? 0 : 100);
  }
}

// From plan to plan, plan to table and back: the cache follows.
TYPED_TEST(Breakdowns, TakeOverFromEachOther) {
  using T = TypeParam;
  Descriptor d = Descriptor::complex_1d<T>(60);
  ASSERT_EQ(apply<T>(d), 0);
  void* const cache = d.get<void*>(JEX_DFT_BREAKDOWN_CACHE);
  ASSERT_NE(cache, nullptr);
  void* const plan = *static_cast<void**>(cache);
  ASSERT_EQ(apply<T>(d), 0);
  EXPECT_EQ(d.get<void*>(JEX_DFT_BREAKDOWN_CACHE), cache);
  EXPECT_EQ(*static_cast<void**>(cache), plan) << "same length and mode, same plan";
  d.set_scale(1.0 / 60, 1);
  ASSERT_EQ(apply<T>(d), 0);
  d[JEX_DFT_LENGTH] = 32;
  d.set_scale(1, 1);
  ASSERT_EQ(apply<T>(d), 0);
  EXPECT_EQ(d.get<void*>(JEX_DFT_BREAKDOWN_CACHE), nullptr);
  d[JEX_DFT_LENGTH] = 4096;
  EXPECT_EQ(apply<T>(d), 100);
  EXPECT_EQ(d.get<void*>(JEX_DFT_BREAKDOWN_CACHE), nullptr) << "too much work space";
}

TEST(EmptyBreakdowns, ReturnTheirStatus) {
  Descriptor d = Descriptor::complex_1d<jex_dcomplex>(8);
  for (auto* entry : {jex_dft_apply_bkdowns_d_c2c_md, jex_dft_apply_bkdowns_d_r2c_1d,
                      jex_dft_apply_bkdowns_d_r2c_md, jex_dft_apply_bkdowns_s_c2c_md,
                      jex_dft_apply_bkdowns_s_r2c_1d, jex_dft_apply_bkdowns_s_r2c_md})
    EXPECT_EQ(entry(d), 100);
}

}  // namespace
