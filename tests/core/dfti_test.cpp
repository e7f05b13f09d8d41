// The descriptor interface of the core: life, parameters, threads, wrong arguments.
#include <jex/core.h>
#include <jex/dfti.h>

#include <gtest/gtest.h>

#include <thread>

#include "dft/descriptor.h"

using namespace jex::test;

namespace {

class Handle {
 public:
  template <class T>
  static Handle complex_1d(jex_int n) {
    Handle h;
    EXPECT_EQ(jex_dft_dfti_create_descriptor_d_1d(
                  &h.h_, is_double<T> ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE, JEX_DFT_COMPLEX, 1, n),
              0);
    return h;
  }
  Handle() = default;
  Handle(Handle&& other) : h_(std::exchange(other.h_, nullptr)) {}
  ~Handle() {
    if (h_) {
      EXPECT_EQ(jex_dft_dfti_free_descriptor_external(&h_), 0);
      EXPECT_EQ(h_, nullptr);
    }
  }
  void set(jex_int parameter, jex_int value) {
    EXPECT_EQ(jex_dft_dfti_set_value_intval(h_, parameter, value), 0) << parameter;
  }
  void scale(double forward, double backward) {
    EXPECT_EQ(jex_dft_dfti_set_value_dblval(h_, JEX_DFTI_FORWARD_SCALE, forward), 0);
    EXPECT_EQ(jex_dft_dfti_set_value_dblval(h_, JEX_DFTI_BACKWARD_SCALE, backward), 0);
  }
  jex_int get(jex_int parameter) {
    jex_int value = -1;
    EXPECT_EQ(jex_dft_dfti_get_value_intval(h_, parameter, &value), 0) << parameter;
    return value;
  }
  jex_int commit() { return jex_dft_dfti_commit_descriptor_external(h_); }
  operator jex_dft_dfti_handle() { return h_; }
  jex_dft_dfti_handle* address() { return &h_; }

 private:
  jex_dft_dfti_handle h_ = nullptr;
};

template <class T>
class Dfti : public testing::Test {};
using Both = testing::Types<jex_dcomplex, jex_scomplex>;
TYPED_TEST_SUITE(Dfti, Both);

// Ready-made cases, plans, strides and parts apart, through one door.
TYPED_TEST(Dfti, Computes) {
  using T = TypeParam;
  for (const jex_int n : {1, 2, 8, 60, 128, 360, 1009}) {
    const Spectrum values = random_values(n, n);
    Spectrum reference = transform(values);
    Handle h = Handle::complex_1d<T>(n);
    Array<T> x(values);
    ASSERT_EQ(h.commit(), 0);
    ASSERT_EQ(jex_dft_dfti_compute_forward(h, x.data()), 0);
    const double allowed = 4 * epsilon<T> * (1 + std::log2(n));
    EXPECT_LE(relative_error(x.data(), reference), allowed) << n;

    h.set(JEX_DFTI_PLACEMENT, JEX_DFT_NOT_IN_PLACE);
    h.scale(0.5, 1.0 / n);
    const jex_int in[] = {3, 2}, out[] = {1, 3};
    ASSERT_EQ(jex_dft_dfti_set_value_intarray(h, JEX_DFTI_INPUT_STRIDES, in), 0);
    ASSERT_EQ(jex_dft_dfti_set_value_intarray(h, JEX_DFTI_OUTPUT_STRIDES, out), 0);
    ASSERT_EQ(h.commit(), 0);
    Array<T> a(2 * n + 2), b(3 * n - 1), y(n);
    for (jex_int i = 0; i < n; ++i)
      a[3 + 2 * i] = {Part<T>(values[i].real()), Part<T>(values[i].imag())};
    ASSERT_EQ(jex_dft_dfti_compute_forward(h, a.data(), b.data()), 0);
    for (jex_int i = 0; i < n; ++i) y[i] = {2 * b[1 + 3 * i].re, 2 * b[1 + 3 * i].im};
    EXPECT_LE(relative_error(y.data(), reference), allowed) << n;

    Handle parts = Handle::complex_1d<T>(n);
    parts.set(JEX_DFTI_COMPLEX_STORAGE, JEX_DFT_SEPARATE);
    ASSERT_EQ(parts.commit(), 0);
    std::vector<Part<T>> re(n), im(n);
    for (jex_int i = 0; i < n; ++i) re[i] = values[i].real(), im[i] = values[i].imag();
    ASSERT_EQ(jex_dft_dfti_compute_backward(parts, re.data(), im.data()), 0);
    for (jex_int i = 0; i < n; ++i) y[i] = {re[i], im[i]};
    EXPECT_LE(relative_error(y.data(), backward(reference)), allowed) << n;
  }
}

// The same bits for every number of threads.
TYPED_TEST(Dfti, SharesTransformsAmongThreads) {
  using T = TypeParam;
  for (const jex_int n : {17, 360, 1009}) {
    constexpr jex_int count = 101;
    std::vector<T> expected;
    for (const jex_int limit : {1, 2, 3, 8}) {
      Handle h = Handle::complex_1d<T>(n);
      h.set(JEX_DFTI_NUMBER_OF_TRANSFORMS, count);
      h.set(JEX_DFTI_INPUT_DISTANCE, n + 1);
      h.set(JEX_DFTI_THREAD_LIMIT, limit);
      ASSERT_EQ(h.commit(), 0);
      Array<T> x(random_values((n + 1) * count, n));
      ASSERT_EQ(jex_dft_dfti_compute_forward(h, x.data()), 0);
      if (limit == 1)
        expected = x.copy();
      else
        EXPECT_TRUE(same(x.data(), expected.data(), expected.size())) << n << " " << limit;
    }
    const Spectrum all = random_values((n + 1) * count, n);
    const Spectrum last(all.end() - n - 1, all.end() - 1);
    EXPECT_LE(relative_error(&expected[(n + 1) * (count - 1)], transform(last)),
              4 * epsilon<T> * std::log2(n));
  }
}

TEST(DftiParameters, DefaultsAndValues) {
  jex_dft_dfti_handle h = nullptr;
  const jex_int lengths[] = {4, 6, 10};
  ASSERT_EQ(jex_dft_dfti_create_descriptor_d_md(&h, JEX_DFT_SINGLE, JEX_DFT_COMPLEX, 3, lengths),
            0);
  const struct {
    jex_int parameter, value;
  } defaults[] = {
      {JEX_DFTI_FORWARD_DOMAIN, JEX_DFT_COMPLEX}, {JEX_DFTI_DIMENSION, 3},
      {JEX_DFTI_PRECISION, JEX_DFT_SINGLE},       {JEX_DFTI_NUMBER_OF_TRANSFORMS, 1},
      {JEX_DFTI_PLACEMENT, JEX_DFT_IN_PLACE},     {JEX_DFTI_COMMIT_STATUS, JEX_DFT_UNCOMMITTED},
      {JEX_DFTI_NUMBER_OF_USER_THREADS, 1}};
  for (const auto& [parameter, value] : defaults) {
    jex_int found = -1;
    EXPECT_EQ(jex_dft_dfti_get_value_intval(h, parameter, &found), 0);
    EXPECT_EQ(found, value) << parameter;
  }
  jex_int strides[4] = {}, found[3] = {};
  EXPECT_EQ(jex_dft_dfti_get_value_intarray(h, JEX_DFTI_INPUT_STRIDES, strides), 0);
  const jex_int natural[4] = {0, 60, 10, 1};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(strides[i], natural[i]);
  EXPECT_EQ(jex_dft_dfti_get_value_intarray(h, JEX_DFTI_LENGTHS, found), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(found[i], lengths[i]);
  EXPECT_EQ(jex_dft_dfti_set_value_dblval(h, JEX_DFTI_BACKWARD_SCALE, 0.25), 0);
  double scale = 0;
  EXPECT_EQ(jex_dft_dfti_get_value_dblval(h, JEX_DFTI_BACKWARD_SCALE, &scale), 0);
  EXPECT_EQ(scale, 0.25);
  EXPECT_EQ(jex_dft_dfti_commit_descriptor_external(h), 0);
  std::vector<jex_scomplex> x(240);
  EXPECT_EQ(jex_dft_dfti_compute_forward(h, x.data()), 0);
  EXPECT_EQ(jex_dft_dfti_free_descriptor_external(&h), 0);
}

TEST(DftiParameters, WrongOnesChangeNothing) {
  Handle h = Handle::complex_1d<jex_dcomplex>(360);
  const struct {
    jex_int parameter, value;
  } rows[] = {{JEX_DFTI_PRECISION, JEX_DFT_SINGLE},
              {JEX_DFTI_DIMENSION, 2},
              {JEX_DFTI_NUMBER_OF_TRANSFORMS, 0},
              {JEX_DFTI_PLACEMENT, 45},
              {JEX_DFTI_COMPLEX_STORAGE, 40},
              {JEX_DFTI_NUMBER_OF_USER_THREADS, 0},
              {JEX_DFTI_PACKED_FORMAT, 53},
              {JEX_DFTI_THREAD_LIMIT, 0},
              {JEX_DFTI_FORWARD_SCALE, 1},
              {99, 1},
              {-1, 1}};
  ASSERT_EQ(h.commit(), 0);
  for (const auto& [parameter, value] : rows)
    EXPECT_EQ(jex_dft_dfti_set_value_intval(h, parameter, value), 2) << parameter;
  const jex_int zero_stride[] = {0, 0};
  EXPECT_EQ(jex_dft_dfti_set_value_intarray(h, JEX_DFTI_INPUT_STRIDES, zero_stride), 2);
  EXPECT_EQ(jex_dft_dfti_set_value_dblval(h, JEX_DFTI_FORWARD_SCALE, NAN), 2);
  EXPECT_EQ(h.get(JEX_DFTI_COMMIT_STATUS), JEX_DFT_COMMITTED);
  EXPECT_EQ(h.get(JEX_DFTI_PLACEMENT), JEX_DFT_IN_PLACE);

  jex_dcomplex x[360] = {};
  EXPECT_EQ(jex_dft_dfti_compute_forward(h, nullptr), 2);
  h.set(JEX_DFTI_NUMBER_OF_TRANSFORMS, 2);
  EXPECT_EQ(jex_dft_dfti_compute_forward(h, x), 3) << "not committed since";
  EXPECT_EQ(h.commit(), 3) << "two transforms in one place";
}

TEST(DftiHandles, WrongOnes) {
  jex_dft_dfti_handle none = nullptr;
  jex_int value;
  double real;
  EXPECT_EQ(jex_dft_dfti_create_descriptor_d_1d(nullptr, 36, 32, 1, 4), 5);
  const jex_int bad[][4] = {
      {34, 32, 1, 4}, {36, 34, 1, 4}, {36, 32, 2, 4}, {36, 32, 1, 0}, {36, 32, 1, -3}};
  for (const auto& b : bad)
    EXPECT_EQ(jex_dft_dfti_create_descriptor_d_1d(&none, b[0], b[1], b[2], b[3]), 2);
  const jex_int lengths[8] = {2, 2, 2, 2, 2, 2, 2, 2}, huge[2] = {65536, 65536};
  EXPECT_EQ(jex_dft_dfti_create_descriptor_d_md(&none, 36, 32, 8, lengths), 2);
  EXPECT_EQ(jex_dft_dfti_create_descriptor_d_md(&none, 36, 32, 2, huge), 9);
  EXPECT_EQ(jex_dft_dfti_create_descriptor_d_md(&none, 36, 33, 4, lengths), 6);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(jex_dft_dfti_commit_descriptor_external(none), 5);
  EXPECT_EQ(jex_dft_dfti_compute_forward(none, &value), 5);
  EXPECT_EQ(jex_dft_dfti_set_value_intval(none, 7, 1), 5);
  EXPECT_EQ(jex_dft_dfti_get_value_intval(none, 7, &value), 5);
  EXPECT_EQ(jex_dft_dfti_get_value_dblval(none, 4, &real), 5);
  EXPECT_EQ(jex_dft_dfti_free_descriptor_external(&none), 5);
  EXPECT_EQ(jex_dft_dfti_free_descriptor_external(nullptr), 5);
}

TEST(DftiHandles, UserThreadsComputeAtOnce) {
  const jex_int n = 1009;
  Handle h = Handle::complex_1d<jex_dcomplex>(n);
  h.set(JEX_DFTI_NUMBER_OF_USER_THREADS, 4);
  ASSERT_EQ(h.commit(), 0);
  const Spectrum values = random_values(n, 1);
  Array<jex_dcomplex> alone(values);
  ASSERT_EQ(jex_dft_dfti_compute_forward(h, alone.data()), 0);
  std::vector<int> wrong(4);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int round = 0; round < 50; ++round) {
        Array<jex_dcomplex> x(values);
        wrong[t] +=
            jex_dft_dfti_compute_forward(h, x.data()) != 0 || !same(x.data(), alone.data(), n);
      }
    });
  for (auto& thread : threads) thread.join();
  for (const int count : wrong) EXPECT_EQ(count, 0);
}

TEST(DftiMessages, EveryStatusHasOne) {
  std::vector<std::string> texts;
  for (jex_int status = 0; status <= 10; ++status) {
    texts.push_back(jex_dft_dfti_error_message_external(status));
    EXPECT_FALSE(texts.back().empty());
    for (jex_int other = 0; other < status; ++other) EXPECT_NE(texts[other], texts.back());
  }
  EXPECT_EQ(texts[10], jex_dft_dfti_error_message_external(-1));
}

}  // namespace
