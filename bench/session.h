// One peer's session: a process of its own that runs cases, ours and the peer's in turn.
//
// A process for each peer because some libraries choose their kernels when they are loaded, and
// because some crash. The child reads case names from standard input and answers, line by line,
//   ours NAME | peer NAME          before that side's first call
//   time NAME SECONDS SECONDS      ours and the peer's, for one call
//   wrong NAME DEVIATION           the results differ, in units of the error allowed
//   absent NAME                    the peer has no such routine
#pragma once

#include <map>
#include <string>
#include <vector>

#include "case.h"
#include "peers.h"
#include "timing.h"

namespace jex::bench {

enum class State { timed, wrong, absent, peer_crashed, ours_crashed };

struct Measurement {
  State state = State::absent;
  Pair time;
  double deviation = 0;
  bool is_full = false;  ///< with full effort, not a first trial
};

using Measurements = std::map<std::string, Measurement>;  // by case name

/// Runs the cases against a peer in child processes: a new one after each crash, a few times.
Measurements run_session(const Peer& peer, const std::vector<const Case*>& cases,
                         const Effort& effort);

/// The child's side; arguments as run_session() passes them. Returns the exit status.
int serve_session(int argc, char** argv);

/// First argument that makes the program a child.
extern const char session_flag[];

}  // namespace jex::bench
