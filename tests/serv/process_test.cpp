// Switches and hooks are read once in a process: each case starts the probe anew.
#include <gtest/gtest.h>

#include <stdio.h>
#include <string>

namespace {

const std::string probe = JEX_MEMORY_PROBE;
const std::string hook_folder = JEX_HOOKS;  // Without the digit of the variant.

std::string run(const std::string& environment, const std::string& argument) {
  const std::string command = "env -u JEX_MM_DISABLE -u JEX_DISABLE_FAST_MM " + environment + " " +
                              probe + " '" + argument + "' 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  std::string said(300, '\0');
  said.resize(fread(said.data(), 1, said.size(), pipe));
  if (const int status = pclose(pipe)) said += "exit status " + std::to_string(status);
  return said;
}

std::string with_hook(int variant) {
  return "LD_LIBRARY_PATH=" + hook_folder + std::to_string(variant) + " ";
}

const char* const cached = ", aligned, buffers 1, bytes 5096, warm pair without lock, left 0\n";
const char* const off = ", as it comes, buffers -1, bytes 0, warm pair without lock, left 0\n";

TEST(Process, EitherVariableSwitchesTheCacheOffWhateverItHolds) {
  const struct {
    const char* environment;
    const char* works;
  } cases[] = {
      {"", cached},
      {"JEX_MM_DISABLE= JEX_DISABLE_FAST_MM=", cached},
      {"JEX_MM_DISABLE=0", off},
      {"JEX_DISABLE_FAST_MM=0", off},
      {"JEX_DISABLE_FAST_MM= JEX_MM_DISABLE=no", off},
      {"JEX_MM_DISABLE= JEX_DISABLE_FAST_MM=x", off},
      {"JEX_MM_DISABLE=fifteen_letters", off},
      {"JEX_MM_DISABLE=sixteen__letters", off},
      {"JEX_DISABLE_FAST_MM=much_more_than_the_sixteen_characters_of_the_buffer", off},
  };
  for (const auto& [environment, works] : cases)
    EXPECT_EQ(run(with_hook(0) + environment, "hold"), std::string("allocator hook") + works)
        << environment;
}

TEST(Process, AHookThatIsNotWholeIsNotUsed) {
  EXPECT_EQ(run("", "hold"), std::string("allocator libc") + cached) << "no hook";
  EXPECT_EQ(run(with_hook(0), "hold"), std::string("allocator hook") + cached);
  EXPECT_EQ(run(with_hook(1), "hold"), std::string("allocator libc") + cached) << "lacks a symbol";
  EXPECT_EQ(run(with_hook(2), "hold"), std::string("allocator libc") + cached) << "a null variable";
}

TEST(Process, TheModuleHoldsNoHook) {
  for (int variant : {0, 1, 2})
    EXPECT_EQ(run(with_hook(variant), "leave"), "hook gone\n") << variant;
}

TEST(Process, ReturnsMayComeFirst) {
  for (const char* environment : {"", "JEX_MM_DISABLE=1"})
    EXPECT_EQ(run(environment, "return first"), "returned\n");
}

}  // namespace
