// The codes against what the operating system reports of the processor.

#include <jex/core_imports.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace {

#ifdef _WIN32

std::set<std::string> flags_of_system() {
  std::set<std::string> flags;
  const struct {
    DWORD number;  // the later ones have no names in older headers
    const char* flag;
  } features[] = {{10, "sse2"}, {13, "pni"}, {36, "ssse3"}, {37, "sse4_1"}, {38, "sse4_2"}};
  for (const auto& [number, flag] : features)
    if (IsProcessorFeaturePresent(number)) flags.insert(flag);
  return flags;
}

// Of the first second-level cache that the system knows; -1 for none.
long level2_kib_of_system() {
  SYSTEM_LOGICAL_PROCESSOR_INFORMATION units[256];
  DWORD size = sizeof units;
  if (!GetLogicalProcessorInformation(units, &size)) return -1;
  for (const auto* unit = units; unit < units + size / sizeof *units; ++unit)
    if (unit->Relationship == RelationCache && unit->Cache.Level == 2 &&
        unit->Cache.Type != CacheInstruction)
      return unit->Cache.Size / 1024;
  return -1;
}

#else

std::set<std::string> flags_of_system() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; getline(file, line);)
    if (line.rfind("flags", 0) == 0) {
      std::istringstream words(line.substr(line.find(':') + 1));
      return {std::istream_iterator<std::string>(words), {}};
    }
  return {};
}

// -1 where the system does not show it.
long level2_kib_of_system() {
  long kib = -1;
  for (int index = 0; index < 8; ++index) {
    const std::string folder =
        "/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(index) + "/";
    int level = 0;
    std::string kind;
    if (std::ifstream(folder + "level") >> level && std::ifstream(folder + "type") >> kind &&
        level == 2 && kind != "Instruction")
      std::ifstream(folder + "size") >> kib;
  }
  return kib;
}

#endif

TEST(Processor, CodeAgreesWithTheSystemsFlags) {
  const std::set<std::string> flags = flags_of_system();
  ASSERT_TRUE(flags.count("sse2")) << "the system shows no flags to compare with";
  jex_int code = 0;
  for (const char* flag : {"pni", "ssse3", "sse4_1", "sse4_2"}) {
    if (!flags.count(flag)) break;
    ++code;
  }
  EXPECT_EQ(jex_serv_cpu_detect(), code);
}

TEST(Processor, Level2CodeAgreesWithTheSystemsSize) {
  const long kib = level2_kib_of_system();
  if (kib < 0) GTEST_SKIP() << "the system shows no cache sizes";
  const jex_int code = kib == 0 ? 0 : kib < 512 ? 1 : kib < 1024 ? 2 : 3;
  EXPECT_EQ(jex_serv_l2cache(), code) << kib << " KiB";
}

TEST(Processor, EveryThreadReadsTheSameCodes) {
  const jex_int processor = jex_serv_cpu_detect(), cache = jex_serv_l2cache();
  std::vector<std::thread> threads;
  std::vector<int> differs(4);
  for (int& found : differs)
    threads.emplace_back([&, out = &found] {
      for (int i = 0; i < 1000; ++i)
        *out += jex_serv_cpu_detect() != processor || jex_serv_l2cache() != cache;
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(differs, std::vector<int>(4));
}

}  // namespace
