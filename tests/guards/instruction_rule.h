// Every instruction is of SSE3 or older.
#pragma once

#include <string>
#include <vector>

namespace jex::test {

// The reason why an instruction is newer than SSE3, empty if it is not. Intel syntax of objdump.
std::string newer_than_sse3(const std::string& instruction);

// What objdump's lines tell: one breach for each newer instruction. None read means that there was
// no disassembly.
struct Disassembly {
  long instructions = 0;
  std::vector<std::string> newer;
  void read(const std::string& line);
};

}  // namespace jex::test
