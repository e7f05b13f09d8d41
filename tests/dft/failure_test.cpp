// Memory refused at every request of creation, commit and breakdown.
#include "dft/descriptor.h"
#include "serv/hook/xmalloc.h"

#include <functional>

using namespace jex::test;

namespace {

struct Case {
  const char* name;
  jex_int precision, domain;
  std::vector<jex_int> lengths;
  jex_int ordering = 48, storage = 39, users = 1;
};

const Case cases[] = {
    {"short", 36, 32, {16}},
    {"direct", 36, 32, {101}},
    {"mixed", 35, 32, {34 * 37}},
    {"two levels", 36, 32, {8192}},
    {"chirp", 36, 32, {302}},
    {"long chirp", 35, 32, {10007}},
    {"large kernel", 36, 32, {16384}, 49},
    {"large kernel, single", 35, 32, {65536}, 49},
    {"parts apart", 36, 32, {360}, 48, 42},
    {"user threads", 36, 32, {360}, 48, 39, 4},
    {"three dimensions", 36, 32, {60, 17, 302}},
    {"real, two dimensions", 35, 33, {360, 11}},
    {"real kernel", 36, 33, {15}},
    {"real, halves", 36, 33, {4096}},
    {"real, odd levels", 35, 33, {3 * 5 * 7 * 11}},
    {"real, by definition", 36, 33, {179}},
    {"real, chirp", 36, 33, {1009}},
};

void link(Descriptor& d, size_t rank) {
  for (size_t i = 0; i + 1 < rank; ++i) {
    jex_dft_descriptor* const next = d + int(i + 1);
    memcpy(&d.pointer()[i].word[JEX_DFT_CHILD], &next, sizeof next);
  }
}

class Failure : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(xmalloc.live, live_) << "blocks lost";
    EXPECT_EQ(xmalloc.faults, 0) << "a block was freed twice or written after its release";
  }
  // Number of requests that succeed when none is refused.
  static long requests_of(const std::function<void()>& work) {
    const long before = xmalloc.mallocs;
    work();
    return xmalloc.mallocs - before;
  }
  const long live_ = xmalloc.live;
};

TEST_F(Failure, EveryRequestOfACommit) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Descriptor d(c.precision, c.domain, c.lengths);
    d[JEX_DFT_ORDERING] = c.ordering;
    d[JEX_DFT_COMPLEX_STORAGE] = c.storage;
    d[JEX_DFT_USER_THREADS] = c.users;
    const long made = xmalloc.live;
    const long requests = requests_of([&] { ASSERT_EQ(d.commit(), 0); });
    ASSERT_GT(requests, 0);
    EXPECT_EQ(jex_dft_free_allocated_buffers(d), 0);
    EXPECT_EQ(xmalloc.live, made);
    for (long refused = 1; refused <= requests; ++refused) {
      SCOPED_TRACE(refused);
      xmalloc.fail_in = refused;
      EXPECT_EQ(d.commit(), 1);
      EXPECT_EQ(xmalloc.fail_in, 0) << "the request was not made";
      EXPECT_EQ(d[JEX_DFT_COMMIT_STATE], 31);
      EXPECT_EQ(d.get<void*>(JEX_DFT_FORWARD_ENTRY), nullptr);
      link(d, c.lengths.size());
      EXPECT_EQ(jex_dft_free_allocated_buffers(d), 0);
      EXPECT_EQ(xmalloc.live, made) << "not released";
    }
    // The last failure is no hindrance.
    xmalloc.fail_in = requests;
    EXPECT_EQ(d.commit(), 1);
    link(d, c.lengths.size());
    EXPECT_EQ(d.commit(), 0);
    EXPECT_EQ(d.commit(), 0) << "and over a whole commit";
  }
}

TEST_F(Failure, CreationAndBreakdown) {
  jex_dft_descriptor* none = nullptr;
  const jex_int length = 60;
  xmalloc.fail_in = 1;
  EXPECT_EQ(jex_dft_create_descriptor_md(&none, 36, 32, 1, &length), 1);
  EXPECT_EQ(none, nullptr);
  Descriptor d = Descriptor::complex_1d<jex_dcomplex>(length);
  const long made = xmalloc.live;
  const long requests = requests_of([&] { ASSERT_EQ(jex_dft_apply_bkdowns_d_c2c_1d(d), 0); });
  d.get<const jex_dft_breakdown*>(JEX_DFT_ACTIVE_BREAKDOWN)->release(d);
  EXPECT_EQ(xmalloc.live, made);
  for (long refused = 1; refused <= requests; ++refused) {
    xmalloc.fail_in = refused;
    EXPECT_EQ(jex_dft_apply_bkdowns_d_c2c_1d(d), 100);
    EXPECT_EQ(xmalloc.fail_in, 0);
    EXPECT_EQ(xmalloc.live, made) << refused;
  }
  EXPECT_EQ(jex_dft_apply_bkdowns_d_c2c_1d(d), 0);
}

// A real kernel that gets no work area takes one for the call.
TEST_F(Failure, RealKernelWithoutAWorkArea) {
  Descriptor d(36, 33, {1024});
  ASSERT_EQ(d.commit(), 0);
  const long made = xmalloc.live;
  std::vector<double> x(1026, 1.0);
  for (const int word : {int(JEX_DFT_PACK_KERNELS_D), JEX_DFT_PACK_KERNELS_D + 1}) {
    const auto kernel = d.get<jex_int (*)(const void*, void*, jex_dft_descriptor*, void*)>(word);
    EXPECT_EQ(requests_of([&] { EXPECT_EQ(kernel(x.data(), x.data(), d, nullptr), 0); }), 1);
    EXPECT_EQ(xmalloc.live, made);
    xmalloc.fail_in = 1;
    EXPECT_EQ(kernel(x.data(), x.data(), d, nullptr), 1);
    EXPECT_EQ(xmalloc.live, made);
  }
}

TEST_F(Failure, ComputeAllocatesNothing) {
  for (const jex_int n : {15, 16, 17, 179, 1009, 1155, 4096}) {
    Descriptor d(35, 33, {n});
    d[JEX_DFT_INPUT_STRIDE] = 2;
    ASSERT_EQ(d.commit(), 0);
    std::vector<float> x(2 * n + 4);
    EXPECT_EQ(requests_of([&] { EXPECT_EQ(d.compute(true, x.data()), 0); }), 0) << n;
  }
  for (const jex_int n : {16, 101, 1009, 8192, 16384})
    for (const jex_int ordering : {48, 49}) {
      Descriptor d = Descriptor::complex_1d<jex_dcomplex>(n);
      d[JEX_DFT_ORDERING] = ordering;
      d[JEX_DFT_INPUT_STRIDE] = 2;
      ASSERT_EQ(d.commit(), 0);
      std::vector<jex_dcomplex> x(2 * n);
      EXPECT_EQ(requests_of([&] { EXPECT_EQ(d.compute(true, x.data()), 0); }), 0) << n;
    }
}

}  // namespace
