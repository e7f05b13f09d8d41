// Transforms in bit-reversed order, the table behind them, and the exchange of the orders.
#include "dft/descriptor.h"

using namespace jex::test;

namespace {

uint32_t reversed(uint32_t i, int bits) {
  uint32_t r = 0;
  for (int b = 0; b < bits; ++b) r |= (i >> b & 1) << (bits - 1 - b);
  return r;
}

template <class T>
void bitrevn(T* x, jex_int order) {
  if constexpr (is_double<T>)
    jex_dft_zbitrevn(x, &order);
  else
    jex_dft_cbitrevn(x, &order);
}
template <class T>
void bitrevs(T* x, jex_int stride, jex_int order) {
  if constexpr (is_double<T>)
    jex_dft_zbitrevs(x, &stride, &order);
  else
    jex_dft_cbitrevs(x, &stride, &order);
}
template <class T>
void bitrevh(const T* x, T* y, jex_int order) {
  if constexpr (is_double<T>)
    jex_dft_zbitrevh(x, y, &order);
  else
    jex_dft_cbitrevh(x, y, &order);
}

template <class T>
class Scrambled : public testing::Test {};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(Scrambled, Both);

TYPED_TEST(Scrambled, BitReversal) {
  using T = TypeParam;
  for (jex_int order = 0; order <= 13; ++order) {
    const jex_int n = 1 << order;
    Array<T> x(n), y(n), z(n), spaced(3 * n - 2);
    for (jex_int i = 0; i < n; ++i) x[i] = spaced[3 * i] = z[i] = {Part<T>(i), Part<T>(-i)};
    bitrevh(x.data(), y.data(), order);
    bitrevn(z.data(), order);
    bitrevs(spaced.data(), 3, order);
    for (jex_int i = 0; i < n; ++i) {
      const Part<T> value = reversed(i, order);
      ASSERT_EQ(y[i].re, value) << order << " " << i;
      ASSERT_EQ(y[i].im, -value);
      ASSERT_TRUE(same(&z[i], &y[i], 1) && same(&spaced[3 * i], &y[i], 1)) << order << " " << i;
    }
  }
}

// Limits of the large kernel, and an ordered length beyond them that stays on the engine.
TYPED_TEST(Scrambled, WhoTakesWhat) {
  using T = TypeParam;
  const jex_int limit = is_double<T> ? 8192 : 32768;
  const struct {
    jex_int n, ordering, engine;
  } rows[] = {{limit, 49, 1},
              {limit + 2, 49, 1},
              {2 * limit, 48, 1},
              {2 * limit, 49, 0},
              {2 * limit, 0, 0}};
  for (const auto& r : rows) {
    Descriptor d = Descriptor::complex_1d<T>(r.n);
    d[JEX_DFT_ORDERING] = r.ordering;
    ASSERT_EQ(d.commit(), 0);
    EXPECT_EQ(d[JEX_DFT_USES_ENGINE], r.engine) << r.n << " " << r.ordering;
    EXPECT_EQ(d.get<void*>(JEX_DFT_AUX_BUFFER_B) != nullptr, r.engine == 0);
    const int plan = (is_double<T> ? 90 : 89) - (r.ordering == 48 ? 6 : 0);
    EXPECT_EQ(d.get<void*>(plan) != nullptr, r.engine == 1);
  }
}

// Forward to bit-reversed, backward from there; in place and not, strided and many.
TYPED_TEST(Scrambled, LargeKernel) {
  using T = TypeParam;
  for (int order = is_double<T> ? 14 : 16; order <= 19; ++order) {
    const jex_int n = 1 << order;
    const Spectrum values = random_values(n, order), reference = transform(values);
    for (const bool in_place : {true, false})
      for (const jex_int stride : {1, 3}) {
        Descriptor d = Descriptor::complex_1d<T>(n);
        d[JEX_DFT_ORDERING] = JEX_DFT_BACKWARD_SCRAMBLED;
        d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
        d[JEX_DFT_INPUT_STRIDE] = d[JEX_DFT_OUTPUT_STRIDE] = stride;
        d.set_scale(2, 0.5 / n);
        ASSERT_EQ(d.commit(), 0);
        Array<T> x(size_t(n) * stride), y(size_t(n) * stride), z(n);
        for (jex_int i = 0; i < n; ++i)
          x[i * stride] = {Part<T>(values[i].real()), Part<T>(values[i].imag())};
        T* const out = in_place ? x.data() : y.data();
        ASSERT_EQ(in_place ? d.compute(true, out) : d.compute(true, x.data(), out), 0);
        for (jex_int i = 0; i < n; ++i) {
          const T v = out[reversed(i, order) * stride];
          z[i] = {v.re / 2, v.im / 2};
        }
        EXPECT_LE(relative_error(z.data(), reference), allowed_error(n, epsilon<T>)) << n;
        T* const back = x.data();
        ASSERT_EQ(in_place ? d.compute(false, out) : d.compute(false, out, back), 0);
        for (jex_int i = 0; i < n; ++i) z[i] = back[i * stride];
        EXPECT_LE(relative_error(z.data(), values), 2 * allowed_error(n, epsilon<T>)) << n;
      }
  }
}

// Where the engine computes a scrambled transform, both sides are in natural order.
TYPED_TEST(Scrambled, EngineKeepsTheNaturalOrder) {
  using T = TypeParam;
  for (const jex_int n : {12, 64, 8192, 1009}) {
    const Spectrum values = random_values(n, n);
    Descriptor d = Descriptor::complex_1d<T>(n);
    d[JEX_DFT_ORDERING] = JEX_DFT_BACKWARD_SCRAMBLED;
    ASSERT_EQ(d.commit(), 0);
    Array<T> x(values);
    ASSERT_EQ(d.compute(true, x.data()), 0);
    EXPECT_LE(relative_error(x.data(), transform(values)), allowed_error(n, epsilon<T>)) << n;
  }
}

TYPED_TEST(Scrambled, Table) {
  using T = TypeParam;
  for (int order = 0; order <= 15; ++order) {
    const jex_int n = 1 << order;
    Descriptor d = Descriptor::complex_1d<T>(n);
    ASSERT_EQ(is_double<T> ? jex_dft_z_fft_init(d, d) : jex_dft_c_fft_init(d, d), 0);
    const auto* table = d.get<const Part<T>*>(JEX_DFT_AUX_BUFFER_B);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(table) % 64, 0u);
    EXPECT_EQ(table[0], n);
    EXPECT_EQ(table[1], 0);
    for (jex_int i = 1; i < n / 4; ++i) {
      const Wide w = root(reversed(i, order - 2), n);
      const auto is_rounded = [](Part<T> entry, long double exact) {
        return fabsl(entry - exact) <= 0.502L * epsilon<T> * fabsl(exact);
      };
      ASSERT_TRUE(is_rounded(table[2 * i], w.real())) << n << " " << i;
      ASSERT_TRUE(is_rounded(table[2 * i + 1], -w.imag())) << n << " " << i;
    }
    if (order == 3) {
      EXPECT_EQ(table[2], table[3]);
      EXPECT_EQ(table[2], Part<T>(std::sqrt(0.5)));
    }
  }
  Descriptor d = Descriptor::complex_1d<T>(1 << 27);
  EXPECT_EQ(is_double<T> ? jex_dft_z_fft_init(d, d) : jex_dft_c_fft_init(d, d), 9);
}

}  // namespace
