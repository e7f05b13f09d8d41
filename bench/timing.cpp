#include "timing.h"

#include <sched.h>

#include <algorithm>
#include <ctime>

namespace jex::bench {
namespace {

double batch_time(Problem& problem, const Entry& entry, long calls) {
  clear_upper_halves();
  const double start = now();
  problem.run(entry, calls);
  return now() - start;
}

/// Calls that fill a batch; an even number where there are several, as calls undo each other.
long calls_for_batch(Problem& problem, const Entry& entry, double seconds) {
  for (long calls = 1;; calls *= 4) {
    const double elapsed = batch_time(problem, entry, calls);
    if (elapsed >= seconds) return calls;
    if (elapsed >= seconds / 8) return (long(calls * seconds / elapsed) + 1) / 2 * 2;
  }
}

}  // namespace

double now() {
  timespec time;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return double(time.tv_sec) + 1e-9 * double(time.tv_nsec);
}

void clear_upper_halves() {
  static const bool has_avx = __builtin_cpu_supports("avx");
  if (has_avx) asm volatile("vzeroupper");
}

void pin_to_one_processor() {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) return;
  for (int cpu = CPU_SETSIZE - 1; cpu >= 0; --cpu) {
    if (!CPU_ISSET(cpu, &allowed)) continue;
    CPU_ZERO(&allowed);
    CPU_SET(cpu, &allowed);
    sched_setaffinity(0, sizeof allowed, &allowed);
    return;
  }
}

Pair time_pair(Problem& problem, const Entry& ours, const Entry& peer, const Effort& effort) {
  const long our_calls = calls_for_batch(problem, ours, effort.batch_seconds);
  const long peer_calls = peer ? calls_for_batch(problem, peer, effort.batch_seconds) : 0;
  Pair best;
  for (int i = 0; i < effort.repetitions; ++i) {
    const double our_time = batch_time(problem, ours, our_calls) / our_calls;
    best.ours = i == 0 ? our_time : std::min(best.ours, our_time);
    if (!peer) continue;
    const double peer_time = batch_time(problem, peer, peer_calls) / peer_calls;
    best.peer = i == 0 ? peer_time : std::min(best.peer, peer_time);
  }
  return best;
}

}  // namespace jex::bench
