// Pieces of work for the core's threads.
#pragma once

#include <jex/types.h>

#include <stdint.h>

namespace jex::front {

// How many pieces a work of so many products is cut into: a matter of the work alone, so that
// results cannot depend on the number of threads.
inline int pieces_of(int64_t products, int most) {
  constexpr int64_t worth_a_thread = 1 << 17;
  const int64_t pieces = products / worth_a_thread;
  return pieces < 1 ? 1 : pieces < most ? int(pieces) : most;
}

// Where piece q of n elements begins; the last one ends where piece number pieces would begin.
inline jex_int piece_begin(int64_t n, int q, int pieces) { return jex_int(n * q / pieces); }

}  // namespace jex::front
