// Strides, offsets, distances, storage and placement: every driver gives the bits of the plain one.
#include "dft/descriptor.h"

using namespace jex::test;

namespace {

// Many transforms, spread over an array whose other elements are NaN and must stay so.
struct Layout {
  jex_int count, stride, offset, distance;

  size_t span(jex_int n) const {
    size_t last = 0;
    for (const jex_int t : {0, count - 1})
      for (const jex_int j : {0, n - 1}) last = std::max<size_t>(last, place(t, j));
    return last + 1;
  }
  size_t place(jex_int t, jex_int j) const { return offset + t * distance + j * stride; }
};

template <class T>
T nothing() {
  return {Part<T>(NAN), Part<T>(NAN)};
}

template <class T>
std::vector<T> spread(const std::vector<std::vector<T>>& x, const Layout& at) {
  std::vector<T> all(at.span(jex_int(x[0].size())), nothing<T>());
  for (size_t t = 0; t < x.size(); ++t)
    for (size_t j = 0; j < x[t].size(); ++j) all[at.place(jex_int(t), jex_int(j))] = x[t][j];
  return all;
}

template <class T>
class Layouts : public testing::Test {
 protected:
  static std::vector<T> plain(jex_int n, std::vector<T> x, bool forward) {
    Descriptor d = Descriptor::complex_1d<T>(n);
    d.set_scale(0.5, 0.25);
    EXPECT_EQ(d.commit(), 0);
    Array<T> data(n, 0);
    std::copy(x.begin(), x.end(), data.data());
    EXPECT_EQ(d.compute(forward, data.data()), 0);
    return data.copy();
  }
  static void configure(Descriptor& d, const Layout& in, const Layout& out, bool in_place,
                        bool separate) {
    d.set_scale(0.5, 0.25);
    d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
    d[JEX_DFT_COMPLEX_STORAGE] = separate ? JEX_DFT_SEPARATE : JEX_DFT_INTERLEAVED;
    d.set_layouts(in.count, in, out);
  }

  // An array of T, or its two halves when the parts are apart, each against the guard page.
  struct Operand {
    Operand(const std::vector<T>& values, bool separate)
        : separate(separate),
          whole(separate ? 0 : values.size()),
          re(values.size()),
          im(values.size()) {
      for (size_t i = 0; i < values.size(); ++i)
        if (separate)
          re[i] = values[i].re, im[i] = values[i].im;
        else
          whole[i] = values[i];
    }
    T at(size_t i) { return separate ? T{re[i], im[i]} : whole[i]; }
    bool separate;
    Array<T> whole;
    struct Reals {
      explicit Reals(size_t n)
          : memory(n * sizeof(Part<T>) + 32),
            p(static_cast<Part<T>*>(memory.place(n * sizeof(Part<T>), 4, Against::back))) {}
      Part<T>& operator[](size_t i) { return p[i]; }
      Guarded memory;
      Part<T>* p;
    } re, im;
  };

  static void check(jex_int n, const Layout& in, const Layout& out, bool in_place, bool separate,
                    bool forward) {
    std::vector<std::vector<T>> x, y;
    for (jex_int t = 0; t < in.count; ++t) {
      x.push_back(Array<T>(random_values(n, n + 1000 * t)).copy());
      y.push_back(plain(n, x[t], forward));
    }
    Descriptor d = Descriptor::complex_1d<T>(n);
    configure(d, in, out, in_place, separate);
    ASSERT_EQ(d.commit(), 0);
    const auto expected = spread(y, in_place ? in : out);
    Operand a(spread(x, in), separate), b(std::vector<T>(out.span(n), nothing<T>()), separate);
    jex_int status;
    if (in_place)
      status = separate ? d.compute(forward, a.re.p, a.im.p) : d.compute(forward, a.whole.data());
    else
      status = separate ? d.compute(forward, a.re.p, a.im.p, b.re.p, b.im.p)
                        : d.compute(forward, a.whole.data(), b.whole.data());
    ASSERT_EQ(status, 0);
    Operand& result = in_place ? a : b;
    for (size_t i = 0; i < expected.size(); ++i) {
      const T ours = result.at(i);
      const bool is_empty = std::isnan(expected[i].re);
      ASSERT_TRUE(is_empty ? std::isnan(ours.re) && std::isnan(ours.im)
                           : same(&ours, &expected[i], 1))
          << "n = " << n << ", element " << i << (in_place ? ", in place" : "")
          << (separate ? ", parts apart" : "") << ", stride " << in.stride << " count " << in.count;
    }
  }
};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(Layouts, Both);

TYPED_TEST(Layouts, AllGiveTheBitsOfThePlainOne) {
  for (const jex_int n : {1, 2, 16, 17, 128, 150, 151, 360, 1009, 8192}) {
    const Layout layouts[][2] = {{{1, 1, 3, 0}, {1, 1, 1, 0}},
                                 {{1, 2, 0, 0}, {1, 3, 5, 0}},
                                 {{3, 1, 0, n + 2}, {3, 1, 2, n}},
                                 {{3, 3, 1, 1}, {3, 1, 0, n}},
                                 {{2, -1, n - 1, n}, {2, -2, 2 * n - 2, 2 * n}}};
    for (const auto& [in, out] : layouts)
      for (const bool in_place : {true, false})
        for (const bool separate : {true, false})
          for (const bool forward : {true, false})
            if (!this->HasFatalFailure()) this->check(n, in, out, in_place, separate, forward);
  }
}

// Fixed lengths have kernels of their own for aligned arrays; for others the engine's.
TYPED_TEST(Layouts, ArraysOffTheBoundary) {
  using T = TypeParam;
  for (jex_int n = 2; n <= 64; ++n) {
    Descriptor d = Descriptor::complex_1d<T>(n);
    d[JEX_DFT_PLACEMENT] = JEX_DFT_NOT_IN_PLACE;
    ASSERT_EQ(d.commit(), 0);
    const Spectrum values = random_values(n, n), reference = transform(values);
    for (const size_t in : {0, 4, 8})
      for (const size_t out : {0, 4, 12}) {
        Array<T> x(values, in), y(n, out);
        ASSERT_EQ(d.compute(true, x.data(), y.data()), 0);
        ASSERT_LE(relative_error(y.data(), reference), allowed_error(n, epsilon<T>))
            << n << " " << in << " " << out;
      }
  }
}

}  // namespace
