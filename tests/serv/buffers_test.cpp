// Requests and returns: which slot serves, what goes to the allocator beneath, what a record holds.
#include "serv/counting_core.h"
#include "serv/memory_fixture.h"

#include <array>

namespace {

constexpr uint32_t largest_cached = 41943040;

TEST_F(Memory, RepeatedSizesAreServedByOneBlockWithoutALock) {
  void* first = jex_serv_allocate(1000, 64);
  EXPECT_EQ(word(first) % 64, 0u);
  EXPECT_EQ(xmalloc.last_size, 1064u);
  jex_serv_deallocate(first);
  const long locks = locks_taken;
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(jex_serv_allocate(1000, 64), first);
    jex_serv_deallocate(first);
  }
  EXPECT_EQ(locks_taken, locks);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 0}));
  EXPECT_EQ(held(), (Held{1, 1064}));
}

TEST_F(Memory, NothingIsGivenForNoBytes) {
  EXPECT_EQ(jex_serv_allocate(0, 64), nullptr);
  jex_serv_deallocate(nullptr);
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));
}

TEST_F(Memory, AlignmentsAreNormalised) {
  struct Case {
    jex_int alignment;
    uint32_t added, divides;
  };
  // The hook's blocks start on multiples of 16.
  for (const auto& [alignment, added, divides] : {Case{48, 32, 32},
                                                  {2, 0, 1},
                                                  {-8, 0, 1},
                                                  {0, 0, 1},
                                                  {3, 0, 1},
                                                  {4, 4, 4},
                                                  {5, 32, 32},
                                                  {8, 8, 8},
                                                  {128, 128, 128},
                                                  {4096, 4096, 4096},
                                                  {0x7FFFFFFF, 32, 32},
                                                  {INT32_MIN, 0, 1}}) {
    void* buffer = jex_serv_allocate(1000, alignment);
    EXPECT_EQ(xmalloc.last_size, 1000 + added) << alignment;
    EXPECT_EQ(word(buffer) % divides, 0u) << alignment;
    EXPECT_LE(word(buffer) - word(xmalloc.last), added) << alignment;
    if (!added) {
      EXPECT_EQ(buffer, xmalloc.last) << alignment;
    }
    jex_serv_deallocate(buffer);
    jex_serv_jex_thread_free_buffers();
  }
}

TEST_F(Memory, AnExactBlockIsAlignedAnew) {
  void* const fine = jex_serv_allocate(96, 4096);  // 4192 bytes, as the next request.
  jex_serv_deallocate(fine);
  void* const coarse = jex_serv_allocate(4160, 32);
  EXPECT_EQ(word(coarse), (word(xmalloc.last) + 31) / 32 * 32);
  EXPECT_NE(coarse, fine) << "the case needs a block that does not start on a page";
  EXPECT_EQ(last_record().req[0], 96u) << "an exact fit leaves req alone";
  jex_serv_deallocate(coarse);
  EXPECT_EQ(last_record().inuse[0], 0u);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 0}));
}

TEST_F(Memory, TheSixthBufferBypassesTheCache) {
  std::array<void*, 5> five;
  for (void*& buffer : five) buffer = jex_serv_allocate(100, 64);
  raw_calls();
  void* sixth = jex_serv_allocate(100, 64);
  EXPECT_EQ(sixth, xmalloc.last);
  EXPECT_EQ(xmalloc.last_size, 100u);
  EXPECT_EQ(held(), (Held{5, 5 * 164}));
  jex_serv_deallocate(sixth);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 1}));
  for (void* buffer : five) jex_serv_deallocate(buffer);
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));
}

TEST_F(Memory, SlotsAreTakenThenLargerBlocksThenSmallerReplaced) {
  std::array<void*, 5> five;
  const auto give_back = [&] {
    for (void* buffer : five) jex_serv_deallocate(buffer);
  };
  // A larger block is left alone until all five slots have been used.
  jex_serv_deallocate(jex_serv_allocate(5000, 0));
  for (uint32_t i = 0; i < 4; ++i) five[i] = jex_serv_allocate(100, 0);
  EXPECT_EQ(raw_calls(), (RawCalls{5, 0}));
  five[4] = jex_serv_allocate(100, 0);
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));
  const RecordWords& record = last_record();
  EXPECT_EQ(word(five[4]), record.ptr[0]);
  EXPECT_EQ(record.req[0], 100u);
  EXPECT_EQ(record.blk[0], 5000u);
  EXPECT_EQ(record.total, emptied + 5000 + 4 * 100);
  give_back();
  // An exact one behind it is preferred to the larger one in front.
  EXPECT_EQ(word(jex_serv_allocate(100, 0)), record.ptr[1]);
  jex_serv_deallocate(five[0]);

  // Nothing is large enough: the first smaller block makes room.
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));
  void* large = jex_serv_allocate(6000, 32);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 1}));
  EXPECT_EQ(word(large), record.ptr[0]);
  EXPECT_EQ(record.req[0], 6000u);
  EXPECT_EQ(record.blk[0], 6032u);
  EXPECT_EQ(record.total, emptied + 6032 + 4 * 100);
  EXPECT_EQ(held(), (Held{5, 6032 + 4 * 100}));
  jex_serv_deallocate(large);
}

TEST_F(Memory, FiveSmallBlocksAndALargerRequest) {
  std::array<void*, 5> five;
  for (void*& buffer : five) buffer = jex_serv_allocate(100, 64);
  for (void* buffer : five) jex_serv_deallocate(buffer);
  raw_calls();
  void* buffer = jex_serv_allocate(200, 64);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 1}));
  EXPECT_EQ(xmalloc.last_size, 264u);
  EXPECT_EQ(word(buffer), last_record().ptr[0]);
  jex_serv_deallocate(buffer);
}

TEST_F(Memory, TheLargestCachedSize) {
  void* cached = jex_serv_allocate(largest_cached, 64);
  EXPECT_EQ(xmalloc.last_size, largest_cached + 64);
  EXPECT_EQ(held(), (Held{1, largest_cached + 64}));
  jex_serv_deallocate(cached);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 0}));
  void* uncached = jex_serv_allocate(largest_cached + 1, 64);
  EXPECT_EQ(uncached, xmalloc.last);
  EXPECT_EQ(xmalloc.last_size, largest_cached + 1);
  jex_serv_deallocate(uncached);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 1}));
  on_another_thread([] { jex_serv_deallocate(jex_serv_allocate(largest_cached, 0)); });
  EXPECT_EQ(held().buffers, 2) << "the same for a thread's first request";
}

TEST_F(Memory, AnyThreadMayReturnABuffer) {
  void* buffer = jex_serv_allocate(300, 16);
  on_another_thread([&] {
    void* own = jex_serv_allocate(300, 16);
    EXPECT_NE(own, buffer);
    jex_serv_deallocate(buffer);
    jex_serv_deallocate(own);
  });
  EXPECT_EQ(raw_calls(), (RawCalls{3, 0}));  // Two blocks and the other thread's record.
  EXPECT_EQ(jex_serv_allocate(300, 16), buffer) << "back in the cache of the thread that asked";
  jex_serv_deallocate(buffer);
  EXPECT_EQ(held(), (Held{2, 2 * 316}));
}

TEST_F(Memory, ThreadsThatShareAPlaceInTheTableOfAddressesReturnBySearch) {
  // More buffers are out than the table has places: many are found by search.
  constexpr int threads = 1000, buffers = 5;
  std::array<std::array<void*, buffers>, threads> out;
  for (auto& of_thread : out)
    on_another_thread([&] {
      for (void*& buffer : of_thread) buffer = jex_serv_allocate(100, 64);
    });
  raw_calls();
  for (auto& of_thread : out)
    for (void* buffer : of_thread) jex_serv_deallocate(buffer);
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));
  EXPECT_EQ(held().buffers, threads * buffers);
}

TEST_F(Memory, ThreadFreeBuffersKeepsWhatIsInUse) {
  void* used = jex_serv_allocate(100, 0);
  void* free_one = jex_serv_allocate(200, 0);
  const RecordWords& record = last_record();
  jex_serv_deallocate(free_one);
  raw_calls();
  jex_serv_jex_thread_free_buffers();
  EXPECT_EQ(raw_calls(), (RawCalls{0, 1}));
  EXPECT_EQ(record.count, 2);
  EXPECT_EQ(record.total, emptied + 300);
  EXPECT_EQ(record.raw[1], 0u);
  EXPECT_EQ(record.req[1], 0u);
  EXPECT_EQ(record.blk[1], 0u);
  EXPECT_EQ(record.ptr[1], word(free_one)) << "the last address stays";
  EXPECT_EQ(held(), (Held{2, 100}));
  jex_serv_deallocate(free_one);  // Known to have been returned: nothing happens.
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));

  jex_serv_deallocate(used);
  jex_serv_jex_thread_free_buffers();
  EXPECT_EQ(record.count, 0);
  EXPECT_EQ(record.total, emptied);
  jex_serv_jex_thread_free_buffers();
  EXPECT_EQ(record.total, emptied);
  EXPECT_EQ(held(), (Held{0, 0}));
  jex_serv_deallocate(jex_serv_allocate(50, 0));
  EXPECT_EQ(record.total, emptied + 50);
}

// Addresses return with new blocks, and a released slot still shows the old one.
TEST_F(Memory, AnAddressThatComesBackBelongsToItsNewHolder) {
  void* used = jex_serv_allocate(100, 0);
  void* gone = jex_serv_allocate(200, 0);
  jex_serv_deallocate(gone);
  jex_serv_jex_thread_free_buffers();

  void* same_thread = jex_serv_allocate(200, 0);
  ASSERT_EQ(same_thread, gone) << "the hook gives the last freed block again";
  jex_serv_deallocate(same_thread);
  EXPECT_EQ(last_record().inuse[2], 0u);
  jex_serv_jex_thread_free_buffers();
  void* others = nullptr;
  on_another_thread([&] { others = jex_serv_allocate(200, 0); });
  ASSERT_EQ(others, gone);
  jex_serv_deallocate(others);
  EXPECT_EQ(held(), (Held{3 + 1, 100 + 200}));

  std::array<void*, 4> rest;  // The fourth and fifth of this thread, and two that bypass.
  jex_serv_freebuffers();
  for (void*& buffer : rest) buffer = jex_serv_allocate(64, 0);
  jex_serv_deallocate(rest[1]);
  jex_serv_jex_thread_free_buffers();
  void* bypass = nullptr;
  on_another_thread([&] {
    std::array<void*, 5> five;
    for (void*& buffer : five) buffer = jex_serv_allocate(7, 0);
    bypass = jex_serv_allocate(64, 0);
    for (void* buffer : five) jex_serv_deallocate(buffer);
  });
  raw_calls();
  jex_serv_deallocate(bypass);
  EXPECT_EQ(raw_calls(), (RawCalls{0, 1})) << "an uncached block is freed";
  for (int i : {0, 2, 3}) jex_serv_deallocate(rest[i]);
  jex_serv_deallocate(used);
}

}  // namespace
