// The allocator beneath refuses one call, at every number in turn.
#include "serv/memory_fixture.h"

#include <vector>

namespace {

// One pass over every kind of raw request. Each step tells which number of raw request it makes,
// and its result is null exactly if that one was refused; the record's refusal shows nowhere.
class Pass {
 public:
  explicit Pass(long refused) : refused_(refused) { xmalloc.fail_in = refused; }
  ~Pass() { xmalloc.fail_in = 0; }

  void run() {
    ++raw_;  // The record.
    std::vector<void*> buffers{request(100, 1)};
    if (refused_ == 1)
      ++raw_;  // The first buffer bypassed the cache; the record comes with the next.
    for (uint32_t i = 1; i < 6; ++i) buffers.push_back(request(100, 1));
    buffers.push_back(request(41943041, 1));
    for (void* buffer : buffers) jex_serv_deallocate(buffer);
    jex_serv_deallocate(request(100, 0));
    jex_serv_deallocate(request(300, 1));
    void* block = checked(jex_serv_jex_malloc(100, 64), 1);
    jex_serv_jex_free(checked(jex_serv_jex_calloc(10, 10, 64), 1));
    jex_serv_jex_free(checked(jex_serv_jex_realloc(nullptr, 10), 1));
    void* moved = block ? checked(jex_serv_jex_realloc(block, 1000), 1) : nullptr;
    jex_serv_jex_free(moved ? moved : block);
  }
  long raw_calls() const { return raw_; }

 private:
  void* request(uint32_t size, long raw) { return checked(jex_serv_allocate(size, 64), raw); }
  void* checked(void* result, long raw) {
    raw_ += raw;
    EXPECT_EQ(result == nullptr, raw && raw_ == refused_)
        << "refused " << refused_ << ", at " << raw_;
    return result;
  }
  long refused_, raw_ = 0;
};

TEST_F(Memory, RefusalAtEveryCall) {
  jex_serv_freebuffers();
  Pass whole(0);
  whole.run();
  ASSERT_EQ(whole.raw_calls(), 1 + 7 + 1 + 4);
  jex_serv_freebuffers();
  ASSERT_EQ(xmalloc.live, 0);
  for (long refused = 1; refused <= whole.raw_calls(); ++refused) {
    on_another_thread([&] { Pass(refused).run(); });
    jex_serv_freebuffers();
    EXPECT_EQ(xmalloc.live, 0) << "refused " << refused;
    EXPECT_EQ(held(), (Held{0, 0})) << "refused " << refused;
  }
}

TEST_F(Memory, ARefusedSlotStaysOccupiedUntilTheRecordIsEmptied) {
  void* used = jex_serv_allocate(50, 0);
  xmalloc.fail_in = 1;
  EXPECT_EQ(jex_serv_allocate(100, 64), nullptr);
  const RecordWords& record = last_record();
  EXPECT_EQ(record.count, 2);
  EXPECT_EQ(record.inuse[1], 1u);
  EXPECT_EQ(record.blk[1], 164u);
  EXPECT_EQ(record.total, emptied + 50 + 164);
  EXPECT_EQ(held(), (Held{2, 50})) << "no block, no bytes";
  void* next = jex_serv_allocate(100, 64);
  EXPECT_EQ(record.count, 3);
  jex_serv_deallocate(next);
  jex_serv_deallocate(used);
  jex_serv_jex_thread_free_buffers();
  EXPECT_EQ(record.count, 0);
}

}  // namespace
