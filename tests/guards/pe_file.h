// A program file of Windows as its headers and tables tell of it.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace jex::test {

struct PeSection {
  std::string name;
  bool writable, executable;
};

struct PeExport {
  unsigned address;       // relative to the file's base; 0 for a forwarder
  std::string forwarder;  // "library.name", empty for code and data of the file's own
  bool code;
};

struct PeFile {
  std::string name;                         // as the export table gives it
  std::map<std::string, PeExport> exports;  // those by number alone are under "#number"
  std::map<std::string, std::vector<std::string>> imports;  // names of each library
  std::vector<PeSection> sections;
  bool relocatable;     // it can be loaded at any address, and says so
  bool no_execute;      // it needs no executable data
  bool thread_storage;  // it has static storage for each thread
};

// Throws for a file that is none of 32-bit x86, or whose tables lie outside it.
PeFile read_pe(const std::string& path);

}  // namespace jex::test
