#include <jex/core_imports.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

TEST(Lock, OneThreadAtATime) {
  constexpr int threads = 4, rounds = 20000;
  // Volatile, so that each increment is a load and a store that another thread can come between.
  volatile long count = 0;
  std::atomic<int> ready = 0, inside = 0, met = 0;
  std::vector<std::thread> all;
  for (int t = 0; t < threads; ++t)
    all.emplace_back([&] {
      for (++ready; ready < threads;) std::this_thread::yield();
      for (int i = 0; i < rounds; ++i) {
        jex_serv_lock();
        if (inside.fetch_add(1) != 0) ++met;
        if (i % 16 == 0) std::this_thread::yield();
        count = count + 1;
        inside.fetch_sub(1);
        jex_serv_unlock();
      }
    });
  for (std::thread& thread : all) thread.join();
  EXPECT_EQ(count, long(threads) * rounds);
  EXPECT_EQ(met, 0);
}

TEST(Lock, BlocksUntilItIsReleased) {
  std::atomic<bool> released = false, seen_released = false;
  jex_serv_lock();
  std::thread other([&] {
    jex_serv_lock();
    seen_released = released.load();
    jex_serv_unlock();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  released = true;
  jex_serv_unlock();
  other.join();
  EXPECT_TRUE(seen_released);
}

#ifndef _WIN32
// The child has only the thread that forked; a lock held by another one would stay held for ever.
TEST(Lock, ChildOfForkInheritsItFree) {
  for (int round = 0; round < 10; ++round) {
    std::atomic<bool> held = false;
    std::thread holder([&] {
      jex_serv_lock();
      held = true;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      jex_serv_unlock();
    });
    while (!held) std::this_thread::yield();
    const pid_t child = fork();
    if (child == 0) {
      alarm(10);
      jex_serv_lock();
      jex_serv_unlock();
      _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    holder.join();
    ASSERT_TRUE(WIFEXITED(status)) << "the child hung and was ended by signal " << WTERMSIG(status);
    // The parent's is free too.
    jex_serv_lock();
    jex_serv_unlock();
  }
}
#endif

}  // namespace
