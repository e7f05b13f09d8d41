// Command line of jex-bench.
#pragma once

#include <string>
#include <vector>

#include "case.h"
#include "peers.h"

namespace jex::bench {

struct Options {
  bool quick = false, list = false, help = false, plot = false;
  std::vector<std::string> only;       // case patterns; empty for all
  std::vector<std::string> peers;      // peer patterns; empty for all
  std::vector<std::string> libraries;  // paths of further peers
  std::string json, markdown;          // files, or empty

  bool selects(const Peer& peer) const;
};

/// Cases that the options ask for. One asked for by its full name is never left out.
std::vector<const Case*> select_cases(const std::vector<Case>& cases, const Options& options);

/// Parses the command line; on a mistake returns false and one line about it.
bool parse(int argc, char** argv, Options& options, std::string& mistake);

extern const char usage[];

}  // namespace jex::bench
