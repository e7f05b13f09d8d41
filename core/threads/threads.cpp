// A pool that grows to what calls ask for. Its threads sleep between calls, after a moment in which
// another call, the next phase of a transform say, finds them awake.
//
// A child process has only the thread that forked: it begins with an empty pool. When the core is
// unloaded the threads are ended first, and each gives its work buffers back. On Windows no thread
// can end while a library is being unloaded, so there a core with a pool stays loaded.

#include "threads/threads.h"

#include <jex/core.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>
#include <stdlib.h>
#include <thread>
#include <vector>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace jex {
namespace {

constexpr int most_threads = 256;

// Until the condition holds, or some tens of microseconds, which is what it takes to wake a thread.
template <class Condition>
void wait_a_moment(Condition condition) {
  for (int i = 0; i < 2000 && !condition(); ++i) __builtin_ia32_pause();
}

struct Job {
  int parts, threads;
  void (*part)(void* context, int i);
  void* context;
};

class Pool {
 public:
  // True if the job was done; false if the pool has another one.
  bool run(const Job& job) {
    const std::unique_lock<std::mutex> own(turn_, std::try_to_lock);
    if (!own) return false;
    {
      const std::lock_guard<std::mutex> hold(mutex_);
      while (int(threads_.size()) < job.threads - 1 && grow()) {
      }
      job_ = job;
      next_ = 0;
      ++round_;
      busy_ = int(threads_.size());
    }
    wake_.notify_all();
    work(job);
    const auto all_done = [&] { return busy_ == 0; };
    wait_a_moment(all_done);
    std::unique_lock<std::mutex> hold(mutex_);
    done_.wait(hold, all_done);
    return true;
  }

  void end() {
    {
      const std::lock_guard<std::mutex> hold(mutex_);
      ending_ = true;
    }
    wake_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

 private:
  bool grow() {
    try {
      threads_.emplace_back(
          [this, i = int(threads_.size()), seen = round_.load()] { serve(i, seen); });
      return true;
    } catch (...) {
      return false;
    }
  }

  void work(const Job& job) {
    for (int i; (i = next_++) < job.parts;) job.part(job.context, i);
  }

  // The thread i of the pool; the caller is one more.
  void serve(int i, unsigned seen) {
    const auto is_called = [&] { return ending_ || round_ != seen; };
    for (;;) {
      Job job;
      wait_a_moment(is_called);
      {
        std::unique_lock<std::mutex> hold(mutex_);
        wake_.wait(hold, is_called);
        if (ending_) break;
        seen = round_;
        job = job_;
      }
      if (i + 1 < job.threads) work(job);
      const std::lock_guard<std::mutex> hold(mutex_);
      if (--busy_ == 0) done_.notify_one();
    }
    if (const Module* entries = module()) entries->jex_serv_jex_thread_free_buffers();
  }

  std::mutex turn_, mutex_;
  std::condition_variable wake_, done_;
  std::vector<std::thread> threads_;
  Job job_{};
  std::atomic<int> next_{0}, busy_{0};
  std::atomic<unsigned> round_{0};
  std::atomic<bool> ending_{false};
};

std::atomic<Pool*> pool{nullptr};
std::atomic<int> limit{0};

int limit_from_environment() {
  const char* const text = getenv("JEX_NUM_THREADS");
  const long wanted = text ? strtol(text, nullptr, 10) : 0;
  const long count = wanted > 0 ? wanted : long(std::thread::hardware_concurrency());
  return int(std::clamp(count, 1L, long(most_threads)));
}

#ifdef _WIN32
void stay_loaded() {
  HMODULE self;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<const char*>(&pool), &self);
}
#else
void stay_loaded() {}

// The parent's pool stays where it is: its threads are not here to be ended.
void forget_pool() { pool = nullptr; }

[[gnu::constructor]] void watch_forks() { pthread_atfork(nullptr, nullptr, forget_pool); }

[[gnu::destructor]] void end_pool() {
  Pool* const last = pool.exchange(nullptr);
  if (!last) return;
  last->end();
  delete last;
}
#endif

Pool* the_pool() {
  if (Pool* const found = pool) return found;
  Pool* const fresh = new (std::nothrow) Pool;
  Pool* expected = nullptr;
  if (!fresh) return nullptr;
  stay_loaded();
  if (pool.compare_exchange_strong(expected, fresh)) return fresh;
  delete fresh;
  return expected;
}

}  // namespace

int thread_limit() {
  if (const int known = limit.load(std::memory_order_relaxed)) return known;
  const int count = limit_from_environment();
  limit = count;
  return count;
}

void run_parts(int parts, void (*part)(void* context, int i), void* context) {
  const int threads = std::min(parts, thread_limit());
  if (threads > 1)
    if (Pool* const shared = the_pool())
      if (shared->run({parts, threads, part, context})) return;
  for (int i = 0; i < parts; ++i) part(context, i);
}

}  // namespace jex

void jex_set_num_threads(jex_int count) {
  jex::limit = count < 1 ? jex::limit_from_environment() : std::min(count, jex::most_threads);
}

jex_int jex_get_num_threads(void) { return jex::thread_limit(); }
