// The sweep over all threads' records.
#include "serv/counting_core.h"
#include "serv/memory_fixture.h"

#include <functional>
#include <condition_variable>
#include <mutex>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

// A thread that does what it is told, one thing at a time.
class Worker {
 public:
  ~Worker() {
    run({});
    thread_.join();
  }
  void run(std::function<void()> work) {
    work_ = std::move(work);
    pass_to(Turn::worker);
    wait_for(Turn::caller);
  }
  void* allocate(uint32_t size) {
    void* buffer = nullptr;
    run([&] { buffer = jex_serv_allocate(size, 0); });
    return buffer;
  }
  // A record with one cached block.
  const RecordWords& cache(uint32_t size) {
    jex_serv_deallocate(allocate(size));
    return last_record();
  }

 private:
  enum class Turn { caller, worker };

  void pass_to(Turn turn) {
    {
      const std::lock_guard hold(mutex_);
      turn_ = turn;
    }
    passed_.notify_all();
  }
  void wait_for(Turn turn) {
    std::unique_lock hold(mutex_);
    passed_.wait(hold, [&] { return turn_ == turn; });
  }
  void loop() {
    for (;;) {
      wait_for(Turn::worker);
      const bool stop = !work_;
      if (!stop) work_();
      pass_to(Turn::caller);
      if (stop) return;
    }
  }
  std::function<void()> work_;
  Turn turn_ = Turn::caller;
  std::mutex mutex_;
  std::condition_variable passed_;
  std::thread thread_{[this] { loop(); }};
};

class Sweep : public Memory {
 protected:
  // Without the fixture's own record: the workers' come at positions 1, 2, 3.
  Sweep() {
    jex_serv_freebuffers();
    raw_calls();
  }
  Worker first, second, third;
};

TEST_F(Sweep, ReleasesEverythingWhenNothingIsInUse) {
  first.cache(100);
  second.cache(200);
  EXPECT_EQ(raw_calls(), (RawCalls{4, 0}));
  jex_serv_freebuffers();
  EXPECT_EQ(raw_calls(), (RawCalls{0, 4}));
  EXPECT_EQ(xmalloc.live, 0);
  EXPECT_EQ(held(), (Held{0, 0}));
  jex_serv_freebuffers();
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));
  first.cache(100);
  EXPECT_EQ(raw_calls(), (RawCalls{2, 0})) << "a new record and a new block";
}

TEST_F(Sweep, OneFlagForAllRecords) {
  first.cache(100);
  void* used = second.allocate(200);
  const RecordWords& kept = third.cache(300);
  void* uncached = first.allocate(41943041);
  raw_calls();
  jex_serv_freebuffers();
  // The first record goes with its block, the second stays, the third loses its block only.
  EXPECT_EQ(raw_calls(), (RawCalls{0, 3}));
  EXPECT_EQ(kept.count, 1);
  EXPECT_EQ(kept.raw[0], 0u);
  EXPECT_EQ(kept.total, 300);
  EXPECT_EQ(held(), (Held{2, 200}));
  jex_serv_freebuffers();
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));

  // A thread whose record stayed is served as before, without the lock.
  third.cache(300);
  const long locks = locks_taken;
  third.cache(300);
  EXPECT_EQ(locks_taken, locks);
  third.run(jex_serv_jex_thread_free_buffers);
  raw_calls();
  EXPECT_EQ(held(), (Held{1, 200}));

  // The first thread gets a new record, and stands before the one in use as before.
  void* again = first.allocate(100);
  EXPECT_EQ(raw_calls(), (RawCalls{2, 0}));
  EXPECT_EQ(held(), (Held{2, 300}));
  first.run([&] { jex_serv_deallocate(again); });
  jex_serv_freebuffers();
  EXPECT_EQ(raw_calls(), (RawCalls{0, 2}));

  // Its owner's other calls after the release find nothing to do.
  first.run([&] {
    jex_serv_jex_thread_free_buffers();
    jex_serv_deallocate(uncached);
  });
  EXPECT_EQ(raw_calls(), (RawCalls{0, 1}));
  jex_serv_deallocate(used);
  jex_serv_freebuffers();
  EXPECT_EQ(raw_calls(), (RawCalls{0, 3}));
}

TEST_F(Sweep, ManyPartialSweepsDoNotFillTheRegistry) {
  first.cache(100);
  void* used = second.allocate(200);
  for (int i = 0; i < 9000; ++i) {
    jex_serv_freebuffers();
    first.cache(100);
  }
  EXPECT_EQ(held(), (Held{2, 300}));
  jex_serv_deallocate(used);
}

TEST_F(Sweep, FullRegistryMeansNoCache) {
  constexpr int room = 8193;
  for (int i = 0; i < room + 3; ++i)
    on_another_thread([&] { jex_serv_deallocate(jex_serv_allocate(10, 0)); });
  EXPECT_EQ(held(), (Held{room, room * 10}));
  EXPECT_EQ(raw_calls(), (RawCalls{2 * room + 3, 3}));
  void* uncached = first.allocate(500);
  EXPECT_EQ(uncached, xmalloc.last);
  jex_serv_deallocate(uncached);
  EXPECT_EQ(raw_calls(), (RawCalls{1, 1}));
  jex_serv_freebuffers();
  first.cache(100);
  EXPECT_EQ(held(), (Held{1, 100}));
}

#ifndef _WIN32
TEST_F(Sweep, AChildOfForkCanSweep) {
  void* used = first.allocate(100);
  const pid_t child = fork();
  if (child == 0) {
    jex_serv_deallocate(used);
    jex_serv_deallocate(jex_serv_allocate(10, 0));
    jex_serv_freebuffers();
    _exit(xmalloc.live == 0 && held() == Held{0, 0} ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  jex_serv_deallocate(used);
}
#endif

}  // namespace
