// Real transforms by strides, offsets and distances, each with the bits of the plain one; and the
// statuses of the kernels.
#include "dft/real_descriptor.h"

using namespace jex::test;

namespace {

// One side of a call. Elements are numbers, or pairs of them.
struct Layout {
  jex_int stride, offset, distance;
};

template <class T>
class RealLayouts : public testing::Test {
 protected:
  using R = Part<T>;
  static constexpr int count = 3;

  static std::vector<R> plain(jex_int n, const std::vector<R>& x, size_t results, Packed format,
                              bool forward) {
    Descriptor d = real_1d<T>(n, format, false);
    d.set_scale(0.5, 0.25);
    EXPECT_EQ(d.commit(), 0);
    Numbers<R> in(x.size()), out(results);
    std::copy(x.begin(), x.end(), in.data());
    EXPECT_EQ(d.compute(forward, in.data(), out.data()), 0);
    return {out.data(), out.data() + results};
  }

  // Place of number i of transform t. The elements of a complex side are pairs; in place the offset
  // and the distance count numbers all the same.
  static size_t place(const Layout& at, int t, size_t i, bool pairs, bool in_place) {
    const size_t unit = pairs && !in_place ? 2 : 1;
    const size_t start = unit * (at.offset + t * at.distance);
    return start + (pairs ? i / 2 * 2 * at.stride + i % 2 : i * at.stride);
  }

  static void check(jex_int n, Packed format, bool forward, bool in_place, const Layout& in,
                    const Layout& out) {
    SCOPED_TRACE(testing::Message()
                 << "n " << n << " format " << int(format) << " forward " << forward << " in place "
                 << in_place << " stride " << in.stride << ", " << out.stride);
    const size_t spectrum = places_of(format, n).size();
    const size_t operands = forward ? n : spectrum, results = forward ? spectrum : n;
    const bool pairs_in = format == Packed::complex && !forward,
               pairs_out = format == Packed::complex && forward;
    const Layout& to = in_place ? in : out;
    const auto last = [&](const Layout& at, size_t numbers, bool pairs) {
      return place(at, count - 1, numbers - 1, pairs, in_place) + 1;
    };
    const size_t span = last(in, operands, pairs_in), span_out = last(to, results, pairs_out);
    Numbers<R> x(in_place ? std::max(span, span_out) : span), y(span_out);
    Numbers<R>& target = in_place ? x : y;
    std::vector<std::vector<R>> each(count);
    for (int t = 0; t < count; ++t) {
      for (const Wide& v : random_values(operands, n + t)) each[t].push_back(R(v.real()));
      for (size_t i = 0; i < operands; ++i) x[place(in, t, i, pairs_in, in_place)] = each[t][i];
    }
    Descriptor d = real_1d<T>(n, format, in_place);
    d.set_scale(0.5, 0.25);
    d.set_layouts(count, in, out);
    ASSERT_EQ(d.commit(), 0);
    ASSERT_EQ(in_place ? d.compute(forward, x.data()) : d.compute(forward, x.data(), y.data()), 0);
    std::vector<bool> is_result(target.size());
    for (int t = 0; t < count; ++t) {
      const auto expected = plain(n, each[t], results, format, forward);
      for (size_t i = 0; i < results; ++i) {
        const size_t at = place(to, t, i, pairs_out, in_place);
        ASSERT_TRUE(same(&target[at], &expected[i], 1)) << "transform " << t << " number " << i;
        is_result[at] = true;
      }
    }
    for (size_t i = 0; !in_place && i < target.size(); ++i) {
      ASSERT_TRUE(is_result[i] || std::isnan(target[i])) << "a gap was written";
    }
  }
};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(RealLayouts, Both);

TYPED_TEST(RealLayouts, ManyGiveTheBitsOfOne) {
  for (const jex_int n : {1, 2, 9, 16, 20, 61, 105, 191, 256, 302, 1001}) {
    const Layout layouts[][2] = {{{1, 0, n + 2}, {1, 3, n + 2}},
                                 {{3, 1, 3 * n + 6}, {2, 0, 2 * n + 4}},
                                 {{4, 2, 1}, {5, 0, 1}},
                                 {{6, 0, 2}, {3, 1, 1}}};
    for (const auto& [in, out] : layouts)
      for (const Packed format : all_packed)
        for (const bool in_place : {false, true})
          for (const bool forward : {false, true}) {
            // Transforms side by side in place: pairs take two places.
            if (in_place && format == Packed::complex && in.distance == 1) continue;
            if (!this->HasFatalFailure()) this->check(n, format, forward, in_place, in, out);
          }
  }
}

// The kernels in the words, as other code may call them.
TEST(RealKernels, RefuseNothingAndPlansOfAnotherKind) {
  for (const jex_int n : {8, 45, 64, 1009}) {
    Descriptor d = real_1d<jex_dcomplex>(n, Packed::perm, true);
    ASSERT_EQ(d.commit(), 0);
    using Kernel = jex_int (*)(const void*, void*, jex_dft_descriptor*, void*);
    std::vector<double> x(n + 2, 1.0), y(n + 2);
    for (const int word : {int(JEX_DFT_PACK_KERNELS_D), JEX_DFT_PACK_KERNELS_D + 1}) {
      const auto kernel = d.get<Kernel>(word);
      EXPECT_EQ(kernel(x.data(), y.data(), d, d.get<void*>(JEX_DFT_WORK_BUFFERS)), 0);
      EXPECT_EQ(kernel(nullptr, y.data(), d, nullptr), 7);
      EXPECT_EQ(kernel(x.data(), nullptr, d, nullptr), 7);
      const int real_plan = JEX_DFT_ENGINE_PLANS + 5, complex_plan = JEX_DFT_ENGINE_PLANS + 1;
      void* const own = d.get<void*>(real_plan);
      d.set<void*>(real_plan, nullptr);
      EXPECT_EQ(kernel(x.data(), y.data(), d, nullptr), 7) << "no plan";
      d.set(real_plan, d.get<void*>(complex_plan));
      const std::vector<double> before = y;
      EXPECT_EQ(kernel(x.data(), y.data(), d, nullptr), 7) << "a complex plan";
      EXPECT_EQ(y, before);
      d.set(real_plan, own);
    }
    // Forward then backward, the work area a kernel's own.
    const auto forward = d.get<Kernel>(JEX_DFT_PACK_KERNELS_D + 1),
               backward = d.get<Kernel>(JEX_DFT_PACK_KERNELS_D);
    for (jex_int j = 0; j < n; ++j) x[j] = j % 7 - 3;
    EXPECT_EQ(forward(x.data(), y.data(), d, nullptr), 0);
    EXPECT_EQ(backward(y.data(), y.data(), d, nullptr), 0);
    for (jex_int j = 0; j < n; ++j) ASSERT_NEAR(y[j] / n, x[j], 1e-13) << n;
  }
}

}  // namespace
