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

namespace {

std::set<std::string> flags_of_kernel() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; getline(file, line);)
    if (line.rfind("flags", 0) == 0) {
      std::istringstream words(line.substr(line.find(':') + 1));
      return {std::istream_iterator<std::string>(words), {}};
    }
  return {};
}

TEST(Processor, CodeAgreesWithTheKernelsFlags) {
  const std::set<std::string> flags = flags_of_kernel();
  ASSERT_TRUE(flags.count("sse2")) << "/proc/cpuinfo shows no flags to compare with";
  jex_int code = 0;
  for (const char* flag : {"pni", "ssse3", "sse4_1", "sse4_2"}) {
    if (!flags.count(flag)) break;
    ++code;
  }
  EXPECT_EQ(jex_serv_cpu_detect(), code);
}

TEST(Processor, Level2CodeAgreesWithTheKernelsSize) {
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
  if (kib < 0) GTEST_SKIP() << "the kernel shows no cache sizes in /sys/devices/system/cpu";
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
