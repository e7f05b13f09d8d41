// Pieces of work for the core's threads.
#pragma once

#include <stdint.h>


namespace jex::front {

// How many pieces a work of so many products is cut into: a matter of the work alone, so that
// results cannot depend on the number of threads.
inline int pieces_of(int64_t products, int most) {
  constexpr int64_t worth_a_thread = 1 << 17;
  const int64_t pieces = products / worth_a_thread;
  return pieces < 1 ? 1 : pieces < most ? int(pieces) : most;
}

}  // namespace jex::front
