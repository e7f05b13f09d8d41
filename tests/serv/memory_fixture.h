// A process whose module works over the hook library, which is emptied between the tests.
#pragma once

#include <gtest/gtest.h>
#include <jex/exports.h>

#include <string.h>
#include <thread>

#include "serv/hook/xmalloc.h"

// The thread's record, read where the hook gave it.
struct RecordWords {
  uint32_t raw[5], ptr[5], req[5], blk[5], inuse[5], spare;
  int64_t count, total;
};
static_assert(sizeof(RecordWords) == 120);
constexpr int64_t emptied = -13;  // Where the total of a record starts again.

inline const RecordWords& last_record() {
  return *static_cast<RecordWords*>(xmalloc.last_record.load());
}

inline uint32_t word(const void* address) { return reinterpret_cast<uintptr_t>(address); }

struct Held {
  jex_int buffers;
  int64_t bytes;
  bool operator==(const Held&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const Held& held) {
  return out << held.buffers << " buffers, " << held.bytes << " bytes";
}

inline Held held() {
  Held now{};
  now.bytes = jex_serv_jex_memstat(&now.buffers);
  return now;
}

template <class Work>
void on_another_thread(Work work) {
  std::thread(work).join();
}

// Raw calls since the last question.
struct RawCalls {
  long mallocs, frees;
  bool operator==(const RawCalls&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const RawCalls& calls) {
  return out << calls.mallocs << " mallocs, " << calls.frees << " frees";
}

class Memory : public testing::Test {
 protected:
  Memory() {
    // The thread's record is there before a test counts.
    jex_serv_deallocate(jex_serv_allocate(1, 0));
    jex_serv_jex_thread_free_buffers();
    raw_calls();
  }
  ~Memory() override {
    jex_serv_freebuffers();
    EXPECT_EQ(xmalloc.live, 0) << "blocks lost, or left in use by the test";
    EXPECT_EQ(xmalloc.faults, 0) << "a block was freed twice or written after its release";
    EXPECT_EQ(xmalloc.callocs, 0);
    EXPECT_EQ(held(), (Held{0, 0}));
  }

  RawCalls raw_calls() {
    const RawCalls now{xmalloc.mallocs, xmalloc.frees};
    const RawCalls since{now.mallocs - seen_.mallocs, now.frees - seen_.frees};
    seen_ = now;
    return since;
  }

 private:
  RawCalls seen_{};
};
