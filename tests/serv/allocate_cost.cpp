// What a warm pair of request and return costs beside malloc and free: nanoseconds, best of rounds
// that take the candidates in turn. Run by hand; prints a table and the locks taken on the way.

#include <jex/exports.h>

#include <stdio.h>
#include <stdlib.h>
#include <chrono>
#include <thread>

#include "serv/counting_core.h"

namespace {

void* volatile sink;

template <class Pair>
double nanoseconds(int pairs, Pair pair) {
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < pairs; ++i) pair();
  const std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - begin;
  return spent.count() / pairs;
}

// One slot each, in this order.
constexpr uint32_t sizes[] = {100, 1 << 20, 200, 300, 400};

double ours(int pairs, uint32_t size) {
  return nanoseconds(pairs, [=] {
    void* buffer = jex_serv_allocate(size, 128);
    sink = buffer;
    jex_serv_deallocate(buffer);
  });
}

double theirs(int pairs, size_t size) {
  return nanoseconds(pairs, [=] {
    void* buffer = malloc(size);
    sink = buffer;
    free(buffer);
  });
}

struct Best {
  double ours_small = 1e9, ours_large = 1e9, malloc_small = 1e9, malloc_large = 1e9;
  double ours_fifth = 1e9;
};

Best measure(int rounds) {
  const auto keep = [](double& best, double value) { best = value < best ? value : best; };
  Best best;
  for (uint32_t size : sizes) ours(1, size);
  for (int round = 0; round < rounds; ++round) {
    keep(best.ours_small, ours(300000, 100));
    keep(best.ours_fifth, ours(300000, sizes[4]));
    keep(best.malloc_small, theirs(300000, 100));
    keep(best.ours_large, ours(300000, 1 << 20));
    keep(best.malloc_large, theirs(1000, 1 << 20));
  }
  return best;
}

void print(const char* title, const Best& best) {
  printf("%-28s 100 bytes: ours %6.2f ns, malloc %8.2f ns, ratio %.3f\n", title, best.ours_small,
         best.malloc_small, best.ours_small / best.malloc_small);
  printf("%-28s 1 MB:      ours %6.2f ns, malloc %8.2f ns, ratio %.3f\n", "", best.ours_large,
         best.malloc_large, best.ours_large / best.malloc_large);
  printf("%-28s fifth slot: ours %6.2f ns\n", "", best.ours_fifth);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? atoi(argv[1]) : 30;
  for (uint32_t size : sizes) ours(1, size);
  const long before = locks_taken;
  print("one thread", measure(rounds));
  Best other;
  std::thread([&] { other = measure(rounds); }).join();
  print("second thread", other);
  printf("locks taken: %ld (the second thread's first requests take some)\n", locks_taken - before);
  jex_serv_freebuffers();
  return 0;
}
