#include "guards/binary_rules.h"

#include "guards/core_entries.h"
#include "guards/instruction_rule.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>

namespace jex::test {
namespace {

// Hands each line of the command's output to the visitor. A tool that fails is no library without
// breaches, so it throws.
void for_lines_of(const std::string& command,
                  const std::function<void(const std::string&)>& visit) {
  FILE* pipe = popen(("LC_ALL=C " + command).c_str(), "r");
  if (!pipe) throw std::runtime_error("cannot run " + command);
  std::string line;
  for (int c; (c = getc(pipe)) != EOF;) {
    if (c == '\n') {
      visit(line);
      line.clear();
    } else {
      line += char(c);
    }
  }
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
}

std::string quoted(const std::string& path) { return " '" + path + "'"; }

std::vector<std::string> words_of(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// Name and address of the defined dynamic symbols.
std::map<std::string, std::string> exports_of(const std::string& library) {
  std::map<std::string, std::string> symbols;
  for_lines_of("nm -D --defined-only" + quoted(library), [&](const std::string& line) {
    const auto words = words_of(line);
    if (words.size() == 3) symbols[words[2]] = words[0];
  });
  return symbols;
}

const std::set<std::string> allowed_libraries = {"libc.so.6", "libm.so.6", "libgmp.so.10",
                                                 "libjex_core.so"};

}  // namespace

Breaches exports_differ(const std::string& library, const std::vector<std::string>& listed) {
  const auto symbols = exports_of(library);
  const std::set<std::string> names(listed.begin(), listed.end());
  Breaches breaches;
  for (const auto& name : names)
    if (!symbols.count(name)) breaches.push_back("listed, not exported: " + name);
  for (const auto& [name, address] : symbols)
    if (!names.count(name)) breaches.push_back("exported, not listed: " + name);
  return breaches;
}

Breaches foreign_imports(const std::string& library) {
  // The C library versions its symbols; the compiler's start files leave weak ones.
  const std::regex allowed(std::string("__gmp\\w+|\\w+@GLIBC_[\\d.]+|") + core_entries);
  Breaches breaches;
  for_lines_of("nm -D --undefined-only" + quoted(library), [&](const std::string& line) {
    const auto words = words_of(line);
    const bool weak = words.at(0) == "w";
    if (!weak && !std::regex_match(words.at(1), allowed)) breaches.push_back(words.at(1));
  });
  return breaches;
}

Breaches needed_libraries(const std::string& library) {
  Breaches breaches;
  bool core = false;
  const std::regex needed(".*\\(NEEDED\\).*\\[(.*)\\]");
  for_lines_of("readelf -dW" + quoted(library), [&](const std::string& line) {
    std::smatch match;
    if (!std::regex_match(line, match, needed)) return;
    core |= match[1] == "libjex_core.so";
    if (!allowed_libraries.count(match[1])) breaches.push_back("needs " + match[1].str());
  });
  if (!core) breaches.push_back("does not need libjex_core.so");
  return breaches;
}

Breaches not_one_address(const std::string& library, const std::vector<std::string>& names) {
  const auto symbols = exports_of(library);
  Breaches breaches;
  std::string first;
  for (const auto& name : names) {
    const auto symbol = symbols.find(name);
    if (symbol == symbols.end()) {
      breaches.push_back("not exported: " + name);
      continue;
    }
    if (first.empty()) first = symbol->second;
    if (symbol->second != first) breaches.push_back("at another address: " + name);
  }
  return breaches;
}

Breaches exports_without_code(const std::string& library) {
  const auto symbols = exports_of(library);
  Breaches breaches;
  std::string name;
  const std::regex label("[0-9a-f]+ <(.*)>:"), returns("\\s*[0-9a-f]+:\\s*ret\\s*");
  for_lines_of("objdump -d --no-show-raw-insn" + quoted(library), [&](const std::string& line) {
    std::smatch match;
    if (std::regex_match(line, match, label)) {
      name = match[1];
      return;
    }
    if (!name.empty() && symbols.count(name) && std::regex_match(line, returns))
      breaches.push_back(name);
    name.clear();
  });
  return breaches;
}

Breaches unsafe_segments(const std::string& library) {
  Breaches breaches;
  bool stack = false;
  for_lines_of("readelf -lW" + quoted(library), [&](const std::string& line) {
    // Type, offset, two addresses, two sizes, flags of up to three words, alignment.
    const auto words = words_of(line);
    if (words.size() < 8 || words[1].rfind("0x", 0) != 0) return;
    std::string flags;
    for (size_t i = 6; i + 1 < words.size(); ++i) flags += words[i];
    const bool executable = flags.find('E') != std::string::npos;
    if (executable && flags.find('W') != std::string::npos)
      breaches.push_back("writable and executable: " + words[0]);
    if (words[0] == "GNU_STACK") stack = true;
  });
  if (!stack) breaches.push_back("asks for no stack protection: no GNU_STACK");
  for_lines_of("readelf -dW" + quoted(library), [&](const std::string& line) {
    if (line.find("TEXTREL") != std::string::npos) breaches.push_back("relocates its code");
  });
  return breaches;
}

Breaches static_constructors(const std::string& library) {
  Breaches breaches;
  // Constructors leave a word each in .init_array. The compiler's start files have one there,
  // frame_dummy, which registers nothing of ours.
  const std::regex section(
      ".*\\]\\s+(\\.(?:init_array|ctors|preinit_array)\\S*)\\s+\\S+\\s+\\S+\\s+"
      "\\S+\\s+([0-9a-f]+)\\s.*");
  for_lines_of("readelf -SW" + quoted(library), [&](const std::string& line) {
    std::smatch match;
    if (!std::regex_match(line, match, section)) return;
    const int words = std::stoi(match[2], nullptr, 16) / 4;
    if (match[1] != ".init_array" || words > 1)
      breaches.push_back(match[1].str() + " holds " + std::to_string(words) + " words");
  });
  // The word is there under the addend of its relocation: the address of frame_dummy.
  std::string word, frame_dummy;
  for_lines_of("readelf -x .init_array" + quoted(library) + " 2>/dev/null",
               [&](const std::string& line) {
                 const auto words = words_of(line);
                 if (words.size() >= 2 && words[0].rfind("0x", 0) == 0 && words[1].size() == 8)
                   for (int byte : {3, 2, 1, 0}) word += words[1].substr(2 * byte, 2);
               });
  bool symbols = false;
  for_lines_of("nm" + quoted(library) + " 2>/dev/null", [&](const std::string& line) {
    const auto words = words_of(line);
    symbols |= !words.empty();
    if (words.size() == 3 && words[2] == "frame_dummy") frame_dummy = words[0];
    if (line.find("_GLOBAL__sub_") != std::string::npos) breaches.push_back("constructor: " + line);
  });
  if (symbols && word != frame_dummy && breaches.empty())
    breaches.push_back(".init_array holds " + word + ", frame_dummy is at " + frame_dummy);
  return breaches;
}

Breaches newer_instructions(const std::string& library) {
  Disassembly disassembly;
  for_lines_of("objdump -d -M intel --no-show-raw-insn" + quoted(library),
               [&](const std::string& line) { disassembly.read(line); });
  if (!disassembly.instructions) throw std::runtime_error("no instructions in " + library);
  return disassembly.newer;
}

}  // namespace jex::test
