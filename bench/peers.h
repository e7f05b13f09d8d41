// The libraries to compare with, as far as they are installed.
#pragma once

#include <string>
#include <vector>

namespace jex::bench {

/// One way to run a peer; each has a process of its own.
struct Peer {
  std::string name;       ///< as the table shows it, e.g. "OpenBLAS:Nehalem"
  std::string path;       ///< of the library; empty for no peer, our side alone
  std::string core_type;  ///< value of OPENBLAS_CORETYPE, or empty
};

struct Peers {
  std::vector<Peer> installed;
  std::vector<std::string> missing;
};

Peers find_peers();

/// Folder of the running program, without a slash at the end.
std::string program_folder();

}  // namespace jex::bench
