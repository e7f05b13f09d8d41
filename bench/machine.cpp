#include "machine.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <memory>

#include "timing.h"

namespace jex::bench {
namespace {

constexpr int repetitions = 15;

/// Smallest time of a few runs.
template <class F>
double best_time(F&& f) {
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < repetitions; ++i) {
    clear_upper_halves();
    const double start = now();
    f();
    best = std::min(best, now() - start);
  }
  return best;
}

// Mixes of as many multiplies as adds, because none is the fastest on all processors.
// Independent chains of both: limited by the latency of the multiplies.
#define MUL_ADD(type, m, a) \
  "mul" type " %%xmm" m ", %%xmm" m "\n\tadd" type " %%xmm" a ", %%xmm" a "\n\t"
#define FOUR_PAIRS(type) \
  MUL_ADD(type, "0", "4") MUL_ADD(type, "1", "5") MUL_ADD(type, "2", "6") MUL_ADD(type, "3", "7")
// Products p that begin anew each time, as in a matrix multiply: only the sums are chains.
#define PRODUCT_SUM(type, p, a)                                                                    \
  "movaps %%xmm7, %%xmm" p "\n\tmul" type " %%xmm7, %%xmm" p "\n\tadd" type " %%xmm" p ", %%xmm" a \
  "\n\t"
#define FOUR_SUMS(type)       \
  PRODUCT_SUM(type, "4", "0") \
  PRODUCT_SUM(type, "5", "1") PRODUCT_SUM(type, "6", "2") PRODUCT_SUM(type, "4", "3")
#define SIX_SUMS(type)        \
  PRODUCT_SUM(type, "6", "0") \
  PRODUCT_SUM(type, "6", "1") \
  PRODUCT_SUM(type, "6", "2") \
  PRODUCT_SUM(type, "6", "3") PRODUCT_SUM(type, "6", "4") PRODUCT_SUM(type, "6", "5")

#define PEAK_LOOP(body, operations)                                                  \
  {                                                                                  \
    long n = turns;                                                                  \
    const double seconds = best_time([&] {                                           \
      n = turns;                                                                     \
      asm volatile(                                                                  \
          "xorps %%xmm0, %%xmm0\n\txorps %%xmm1, %%xmm1\n\txorps %%xmm2, %%xmm2\n\t" \
          "xorps %%xmm3, %%xmm3\n\txorps %%xmm4, %%xmm4\n\txorps %%xmm5, %%xmm5\n\t" \
          "xorps %%xmm6, %%xmm6\n\txorps %%xmm7, %%xmm7\n\t"                         \
          ".p2align 6\n1:\n\t" body body "dec %0\n\tjnz 1b"                          \
          : "+r"(n)                                                                  \
          :                                                                          \
          : "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7");   \
    });                                                                              \
    best = std::max(best, 2.0 * (operations)*turns / seconds);                       \
  }

/// Multiplies and adds of a register, together, a second.
#define BEST_RATE(name, type)      \
  double name() {                  \
    constexpr long turns = 200000; \
    double best = 0;               \
    PEAK_LOOP(FOUR_PAIRS(type), 8) \
    PEAK_LOOP(FOUR_SUMS(type), 8)  \
    PEAK_LOOP(SIX_SUMS(type), 12)  \
    return best;                   \
  }
BEST_RATE(best_rate_double, "pd")
BEST_RATE(best_rate_single, "ps")

#define LOAD(offset, r) "movaps " offset "(%0), %%xmm" r "\n\t"
#define STORE(op, offset, r) op " %%xmm" r ", " offset "(%0,%2)\n\t"
#define LOAD_LOW LOAD("", "0") LOAD("16", "1") LOAD("32", "2") LOAD("48", "3")
#define LOAD_HIGH LOAD("64", "4") LOAD("80", "5") LOAD("96", "6") LOAD("112", "7")
#define STORE_LOW(op) \
  STORE(op, "", "0") STORE(op, "16", "1") STORE(op, "32", "2") STORE(op, "48", "3")
#define STORE_HIGH(op) \
  STORE(op, "64", "4") STORE(op, "80", "5") STORE(op, "96", "6") STORE(op, "112", "7")
#define COPY_ONE(op, offset, r) LOAD(offset, r) STORE(op, offset, r)

// A walk over blocks of 128 bytes from x; what is stored goes to a fixed distance from there.
#define WALK(name, body)                                                                   \
  void name(const char* x, ptrdiff_t distance, size_t blocks) {                            \
    asm volatile(".p2align 6\n1:\n\t" body "add $128, %0\n\tdec %1\n\tjnz 1b\n\tsfence"    \
                 : "+r"(x), "+r"(blocks)                                                   \
                 : "r"(distance)                                                           \
                 : "cc", "memory", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", \
                   "xmm7");                                                                \
  }
using Walk = void (*)(const char* x, ptrdiff_t distance, size_t blocks);
WALK(read_blocks, LOAD_LOW LOAD_HIGH)
#define LOAD_FAR(offset, r) "movaps " offset "(%0,%2), %%xmm" r "\n\t"
WALK(read_two_streams, LOAD_LOW LOAD_HIGH LOAD_FAR("", "0") LOAD_FAR("16", "1") LOAD_FAR("32", "2")
                           LOAD_FAR("48", "3") LOAD_FAR("64", "4") LOAD_FAR("80", "5")
                               LOAD_FAR("96", "6") LOAD_FAR("112", "7"))
WALK(copy_by_64, LOAD_LOW STORE_LOW("movaps") LOAD_HIGH STORE_HIGH("movaps"))
WALK(copy_by_128, LOAD_LOW LOAD_HIGH STORE_LOW("movaps") STORE_HIGH("movaps"))
WALK(copy_by_16,
     COPY_ONE("movaps", "", "0") COPY_ONE("movaps", "16", "1") COPY_ONE("movaps", "32", "2")
         COPY_ONE("movaps", "48", "3") COPY_ONE("movaps", "64", "4") COPY_ONE("movaps", "80", "5")
             COPY_ONE("movaps", "96", "6") COPY_ONE("movaps", "112", "7"))
WALK(stream_by_64, LOAD_LOW STORE_LOW("movntps") LOAD_HIGH STORE_HIGH("movntps"))

/// Sizes of the data caches as the kernel tells them; common ones where it does not.
std::vector<MemoryLevel> cache_levels() {
  std::vector<MemoryLevel> levels;
  for (int i = 0; i < 8; ++i) {
    const std::string folder = "/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(i) + "/";
    std::string type, size, level;
    std::ifstream(folder + "type") >> type;
    std::ifstream(folder + "size") >> size;
    std::ifstream(folder + "level") >> level;
    if (size.empty() || type == "Instruction") continue;
    const double unit = size.back() == 'M' ? 1048576 : 1024;
    levels.push_back({"L" + level, std::atof(size.c_str()) * unit});
  }
  if (levels.empty()) levels = {{"L1", 32768}, {"L2", 1048576}};
  levels.push_back({"memory", std::numeric_limits<double>::infinity()});
  return levels;
}

void measure(MemoryLevel& level, double footprint) {
  const size_t half = size_t(footprint) / 256 * 128, bytes = 2 * half;
  const size_t apart = 17 * 64;  // keeps stores off the page offsets of the loads that follow
  std::unique_ptr<char, void (*)(void*)> memory(
      static_cast<char*>(std::aligned_alloc(64, bytes + apart)), std::free);
  if (!memory) return;
  char* x = memory.get();
  std::fill(x, x + bytes + apart, char(0));
  const long turns = std::max(1L, long(2e7 / bytes));
  // Raises a rate to that of a walk which moves some bytes, loads and stores together.
  auto raise = [&](double& rate, Walk walk, ptrdiff_t distance, size_t span, size_t moved) {
    const double seconds = best_time([&] {
      for (long i = 0; i < turns; ++i) walk(x, distance, span / 128);
    });
    rate = std::max(rate, turns * double(moved) / seconds);
  };
  raise(level.read, read_blocks, 0, bytes, bytes);
  raise(level.read, read_two_streams, half, half, bytes);
  for (Walk copy : {copy_by_16, copy_by_64, copy_by_128}) {
    raise(level.copy, copy, half + apart, half, bytes);
    raise(level.update, copy, 0, bytes, 2 * bytes);
  }
  raise(level.copy, stream_by_64, half + apart, half, bytes);
}

/// A processor at rest needs a while to reach its clock.
void warm_up() {
  volatile double sum = 0;
  for (const double start = now(); now() - start < 0.2;) sum = sum + 1;
}

}  // namespace

double Limits::shortest_time(const Work& work) const {
  const double peak = work.is_double ? peak_double : peak_single;
  const double paired = 2 * std::min(work.read_bytes, work.written_bytes);
  for (const MemoryLevel& level : levels) {
    if (work.footprint > level.size && &level != &levels.back()) continue;
    return std::max(
        paired / (work.in_place ? level.update : level.copy) + (work.bytes() - paired) / level.read,
        work.flops / peak);
  }
  return 0;
}

void Limits::raise_to(const Limits& other) {
  auto raise = [](double& to, double from) { to = std::max(to, from); };
  raise(peak_single, other.peak_single);
  raise(peak_double, other.peak_double);
  for (size_t i = 0; i < levels.size(); ++i) {
    raise(levels[i].read, other.levels[i].read);
    raise(levels[i].copy, other.levels[i].copy);
    raise(levels[i].update, other.levels[i].update);
  }
}

Limits measure_limits() {
  warm_up();
  Limits limits;
  limits.peak_double = 2 * best_rate_double();
  limits.peak_single = 4 * best_rate_single();
  limits.levels = cache_levels();
  double below = 0;
  for (MemoryLevel& level : limits.levels) {
    const bool is_memory = &level == &limits.levels.back();
    // Larger than the level below and well inside this one: part of a large cache may be others'.
    const double inside = std::max(1.2 * below, std::min(level.size / 2, 4 * below));
    measure(level, is_memory ? std::max(4 * below, 128e6) : below == 0 ? level.size / 2 : inside);
    below = level.size;
  }
  return limits;
}

}  // namespace jex::bench
