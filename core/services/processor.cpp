// What the core reads from the processor itself, by CPUID.

#include <jex/core_imports.h>

#include <cpuid.h>

namespace {

struct Leaf {
  unsigned a = 0, b = 0, c = 0, d = 0;

  // Zeros where the processor does not know the leaf.
  explicit Leaf(unsigned leaf, unsigned subleaf = 0) {
    if (!__get_cpuid_count(leaf, subleaf, &a, &b, &c, &d)) a = b = c = d = 0;
  }
};

jex_int detect_processor() {
  const unsigned features = Leaf(1).c;
  constexpr unsigned order[] = {bit_SSE3, bit_SSSE3, bit_SSE4_1, bit_SSE4_2};
  jex_int code = 0;
  for (unsigned set : order) {
    if (!(features & set)) break;
    ++code;
  }
  return code;
}

// Both makers' cache leaves list one cache in each subleaf, until one of kind 0.
unsigned listed_level2_kib(unsigned leaf) {
  for (unsigned subleaf = 0; subleaf < 16; ++subleaf) {
    const Leaf cache(leaf, subleaf);
    const unsigned kind = cache.a & 31, level = cache.a >> 5 & 7;
    if (kind == 0) return 0;
    constexpr unsigned instructions = 2;
    if (level != 2 || kind == instructions) continue;
    const unsigned ways = (cache.b >> 22) + 1, partitions = (cache.b >> 12 & 0x3ff) + 1,
                   line = (cache.b & 0xfff) + 1, sets = cache.c + 1;
    return unsigned(1ull * ways * partitions * line * sets / 1024);
  }
  return 0;
}

unsigned level2_kib() {
  if (const unsigned kib = listed_level2_kib(4)) return kib;
  constexpr unsigned topology_extensions = 1u << 22;
  if (Leaf(0x80000001).c & topology_extensions)
    if (const unsigned kib = listed_level2_kib(0x8000001d)) return kib;
  return Leaf(0x80000006).c >> 16;
}

jex_int detect_level2() {
  const unsigned kib = level2_kib();
  return kib == 0 ? 0 : kib < 512 ? 1 : kib < 1024 ? 2 : 3;
}

}  // namespace

jex_int jex_serv_cpu_detect() {
  static const jex_int code = detect_processor();
  return code;
}

jex_int jex_serv_l2cache() {
  static const jex_int code = detect_level2();
  return code;
}
