// Timing of two entries on the same operands, turn by turn.
#pragma once

#include "case.h"

namespace jex::bench {

struct Effort {
  int repetitions;
  double batch_seconds;
};

struct Pair {
  double ours = 0, peer = 0;  ///< seconds of a call, the best batch; 0 when not timed
};

/// Times both entries in alternating batches; without a peer, ours alone.
Pair time_pair(Problem& problem, const Entry& ours, const Entry& peer, const Effort& effort);

/// Seconds of processor time of this thread: what other processes take of the machine in between
/// does not count.
double now();

/// Clears upper register halves that a library's AVX code may have left dirty: they slow down every
/// SSE instruction that follows. Nothing where the processor has no AVX.
void clear_upper_halves();

/// Keeps the process on one processor, the last that it may use.
void pin_to_one_processor();

}  // namespace jex::bench
