// Threads of the user's on one descriptor.
#include "dft/descriptor.h"

#include <atomic>
#include <thread>

using namespace jex::test;

namespace {

// Eight threads for four slots: a call gets a right answer or says that there was no slot.
TEST(Threads, MoreThanSlots) {
  for (const jex_int n : {360, 1009, 16384}) {
    Descriptor d = Descriptor::complex_1d<jex_dcomplex>(n);
    d[JEX_DFT_USER_THREADS] = 4;
    ASSERT_EQ(d.commit(), 0);
    const Spectrum values = random_values(n, n);
    Array<jex_dcomplex> alone(values);
    ASSERT_EQ(d.compute(true, alone.data()), 0);
    std::atomic<int> right = 0, refused = 0, wrong = 0, ready = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
      threads.emplace_back([&] {
        for (++ready; ready < 8;) std::this_thread::yield();
        for (int round = 0; round < 40; ++round) {
          Array<jex_dcomplex> x(values);
          const jex_int status = d.compute(true, x.data());
          if (status == 8)
            ++refused;
          else
            ++(status == 0 && same(x.data(), alone.data(), n) ? right : wrong);
        }
      });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(right, 0);
    EXPECT_EQ(right + refused, 8 * 40);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(d.get<const jex_int*>(JEX_DFT_PER_THREAD_SLOTS)[i], 0);
  }
}

// The lowest free slot is taken; when all are, the call says so and changes nothing.
TEST(Threads, Slots) {
  const jex_int n = 360;
  Descriptor d = Descriptor::complex_1d<jex_dcomplex>(n);
  d[JEX_DFT_USER_THREADS] = 3;
  ASSERT_EQ(d.commit(), 0);
  auto* slots = d.get<jex_int*>(JEX_DFT_PER_THREAD_SLOTS);
  char* const work = d.get<char*>(JEX_DFT_WORK_BUFFERS);
  const jex_int size = d[JEX_DFT_MAX_WORK_SIZE];
  slots[0] = slots[2] = 1;
  memset(work, 0x55, 3 * size);
  Array<jex_dcomplex> x(random_values(n, 1));
  ASSERT_EQ(d.compute(true, x.data()), 0);
  const auto is_untouched = [&](int area) {
    for (jex_int i = 0; i < size; ++i)
      if (work[area * size + i] != 0x55) return false;
    return true;
  };
  EXPECT_TRUE(is_untouched(0));
  EXPECT_FALSE(is_untouched(1));
  EXPECT_TRUE(is_untouched(2));
  EXPECT_EQ(slots[1], 0);
  slots[1] = 1;
  const auto before = x.copy();
  EXPECT_EQ(d.compute(true, x.data()), 8);
  EXPECT_TRUE(same(x.data(), before.data(), n));
  slots[0] = slots[1] = slots[2] = 0;
}

}  // namespace
