// Switches and hooks are read once in a process: each case starts the probe anew.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <string>

#include "support/process.h"

namespace {

const std::string probe = JEX_MEMORY_PROBE;
const std::string hook_folder = JEX_HOOKS;  // Without the digit of the variant.

using jex::test::Environment;

std::string run(const Environment& environment, const std::string& argument) {
  const jex::test::Folder folder;
  const auto [status, out, err] = jex::test::run(folder, {probe, argument}, {}, environment);
  return out + err + (status ? "exit status " + std::to_string(status) : "");
}

Environment with_hook(int variant, Environment more = {}) {
  more.push_back({jex::test::library_path, hook_folder + std::to_string(variant)});
  return more;
}

std::string text_of(const Environment& environment) {
  std::string text;
  for (const auto& [name, value] : environment) text += name + "=" + value + " ";
  return text;
}

const char* const cached = ", aligned, buffers 1, bytes 5096, warm pair without lock, left 0\n";
const char* const off = ", as it comes, buffers -1, bytes 0, warm pair without lock, left 0\n";

TEST(Process, EitherVariableSwitchesTheCacheOffWhateverItHolds) {
  const char *const mm = "JEX_MM_DISABLE", *const fast = "JEX_DISABLE_FAST_MM";
  const struct {
    Environment environment;
    const char* works;
  } cases[] = {
      {{}, cached},
      {{{mm, ""}, {fast, ""}}, cached},
      {{{mm, "0"}}, off},
      {{{fast, "0"}}, off},
      {{{fast, ""}, {mm, "no"}}, off},
      {{{mm, ""}, {fast, "x"}}, off},
      {{{mm, "fifteen_letters"}}, off},
      {{{mm, "sixteen__letters"}}, off},
      {{{fast, "much_more_than_the_sixteen_characters_of_the_buffer"}}, off},
  };
  for (const auto& [environment, works] : cases)
    EXPECT_EQ(run(with_hook(0, environment), "hold"), std::string("allocator hook") + works)
        << text_of(environment);
}

TEST(Process, AHookThatIsNotWholeIsNotUsed) {
  EXPECT_EQ(run({}, "hold"), std::string("allocator libc") + cached) << "no hook";
  EXPECT_EQ(run(with_hook(0), "hold"), std::string("allocator hook") + cached);
  EXPECT_EQ(run(with_hook(1), "hold"), std::string("allocator libc") + cached) << "lacks a symbol";
  EXPECT_EQ(run(with_hook(2), "hold"), std::string("allocator libc") + cached) << "a null variable";
}

TEST(Process, TheModuleHoldsNoHook) {
  for (int variant : {0, 1, 2})
    EXPECT_EQ(run(with_hook(variant), "leave"), "hook gone\n") << variant;
}

TEST(Process, ReturnsMayComeFirst) {
  EXPECT_EQ(run({}, "return first"), "returned\n");
  EXPECT_EQ(run({{"JEX_MM_DISABLE", "1"}}, "return first"), "returned\n");
}

}  // namespace
