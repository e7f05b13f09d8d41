// Many threads, random steps, buffers handed from thread to thread.
//
// Every buffer is filled with its own pattern while it is out, so that two holders of the same
// bytes, or a block released too early, show as a broken pattern. JEX_THREADS_STEPS sets the number
// of steps in all, for tools that run slowly.
#include <gtest/gtest.h>
#include <jex/exports.h>

#include <stdlib.h>
#include <algorithm>
#include <atomic>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#ifdef __linux__
#include <errno.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

#ifdef JEX_WITH_HOOK
#include "serv/hook/xmalloc.h"
#endif

namespace {

struct Buffer {
  uint32_t* words = nullptr;
  uint32_t count = 0, pattern = 0;
};

std::atomic<long> broken{0};
std::atomic<uint32_t> patterns{0};

Buffer obtain(uint32_t bytes, jex_int alignment) {
  Buffer buffer{static_cast<uint32_t*>(jex_serv_allocate(bytes, alignment)), bytes / 4, ++patterns};
  std::fill_n(buffer.words, buffer.count, buffer.pattern);
  return buffer;
}

void give_back(const Buffer& buffer) {
  const auto* end = buffer.words + buffer.count;
  if (std::any_of<const uint32_t*>(buffer.words, end,
                                   [&](uint32_t word) { return word != buffer.pattern; }))
    ++broken;
  jex_serv_deallocate(buffer.words);
}

// Buffers on their way from one thread to another.
class Market {
 public:
  void bring(const Buffer& buffer) {
    std::lock_guard hold(mutex_);
    buffers_.push_back(buffer);
  }
  bool take(Buffer& buffer) {
    std::lock_guard hold(mutex_);
    if (buffers_.empty()) return false;
    buffer = buffers_.front();
    buffers_.erase(buffers_.begin());
    return true;
  }

 private:
  std::mutex mutex_;
  std::vector<Buffer> buffers_;
};

void step(std::mt19937& random, std::vector<Buffer>& own, Market& market, bool quiet) {
  constexpr uint32_t sizes[] = {64, 120, 200, 480, 1000, 4096};
  constexpr jex_int alignments[] = {0, 4, 32, 128, 512};
  const uint32_t dice = random() % 1000;
  Buffer buffer;
  if (dice < 450 && own.size() < 7 && !quiet) {
    own.push_back(obtain(sizes[random() % 6], alignments[random() % 5]));
  } else if (dice < 600 && !own.empty()) {
    market.bring(own.back());
    own.pop_back();
  } else if (dice < 740) {
    if (market.take(buffer)) give_back(buffer);
  } else if (dice < 985) {
    if (own.empty()) return;
    std::swap(own[random() % own.size()], own.back());
    give_back(own.back());
    own.pop_back();
  } else if (dice < 993) {
    jex_serv_jex_thread_free_buffers();
  } else if (dice < 999) {
    jex_serv_freebuffers();
  } else {
    jex_int buffers;
    jex_serv_jex_memstat(&buffers);
  }
}

// Now and then a thread empties its hands, so that sweeps find records to release.
void run(uint32_t seed, long steps, Market& market, std::atomic<int>& missing) {
  for (--missing; missing > 0;) std::this_thread::yield();
  std::mt19937 random(seed);
  std::vector<Buffer> own;
  for (long i = 0; i < steps; ++i) step(random, own, market, i % 512 > 384);
  for (const Buffer& buffer : own) give_back(buffer);
}

long all_steps() {
  const char* told = getenv("JEX_THREADS_STEPS");
  return told ? atol(told) : 4000000;
}

#ifdef __linux__
// From here on the process has no fence over all its threads, and owners make their own.
bool forbid_process_fence() {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_membarrier, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program{std::size(filter), filter};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}
constexpr bool has_process_fence = true;
#else
bool forbid_process_fence() { return true; }
constexpr bool has_process_fence = false;
#endif

// Few threads leave nothing in use more often, so that whole sweeps happen among the steps. The
// cases with the forbidden fence come last: there is no way back.
struct Case {
  int threads;
  bool process_fence;
};
std::ostream& operator<<(std::ostream& out, const Case& run) {
  return out << run.threads << " threads, " << (run.process_fence ? "process" : "owners'")
             << " fence";
}
class Threads : public testing::TestWithParam<Case> {};

TEST_P(Threads, NothingOverlapsAndNothingIsLost) {
  const auto [threads, process_fence] = GetParam();
  if (!process_fence && !forbid_process_fence()) GTEST_SKIP() << "system calls cannot be filtered";
  Market market;
  std::atomic<int> missing = threads;
  std::vector<std::thread> running;
  for (int i = 0; i < threads; ++i)
    running.emplace_back(run, i + 1, all_steps() / threads, std::ref(market), std::ref(missing));
  for (std::thread& thread : running) thread.join();
  for (Buffer buffer; market.take(buffer);) give_back(buffer);
  jex_serv_freebuffers();

  EXPECT_EQ(broken, 0) << "buffers that others wrote to";
  jex_int buffers = -1;
  EXPECT_EQ(jex_serv_jex_memstat(&buffers), 0);
  EXPECT_EQ(buffers, 0) << "in use for ever";
#ifdef JEX_WITH_HOOK
  EXPECT_EQ(xmalloc.live, 0) << "blocks lost";
  EXPECT_EQ(xmalloc.faults, 0) << "blocks freed twice, or written after their release";
#endif
}

INSTANTIATE_TEST_SUITE_P(Count, Threads,
                         testing::ValuesIn(has_process_fence
                                               ? std::vector{Case{2, true}, Case{16, true},
                                                             Case{2, false}, Case{16, false}}
                                               : std::vector{Case{2, false}, Case{16, false}}),
                         [](const auto& info) {
                           return std::to_string(info.param.threads) +
                                  (info.param.process_fence ? "_ProcessFence" : "_OwnersFence");
                         });

}  // namespace
