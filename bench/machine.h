// What this machine can do at most with 128-bit registers.
#pragma once

#include <string>
#include <vector>

#include "case.h"

namespace jex::bench {

struct MemoryLevel {
  std::string name;  ///< "L1", ..., "memory"
  double size;       ///< bytes it holds; infinite for memory
  /// Bytes a second; copies and updates in place count what is read and what is written.
  double read = 0, copy = 0, update = 0;
};

struct Limits {
  double peak_single = 0, peak_double = 0;  ///< operations a second
  std::vector<MemoryLevel> levels;

  /// Shortest time that a call with this work can take: every written byte pairs with a read one
  /// at the copy or update rate, the other reads go at the read rate; arithmetic overlaps with all
  /// that.
  double shortest_time(const Work& work) const;
  /// Takes the better of each rate.
  void raise_to(const Limits& other);
};

Limits measure_limits();

}  // namespace jex::bench
