// How fast something goes.
#pragma once

#include <chrono>

namespace jex::tour {

inline double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// How often work() can be done in a second: it is done once to warm up, then for 50 ms or once.
template <class Work>
double times_per_second(Work work) {
  work();
  const auto start = std::chrono::steady_clock::now();
  double seconds = 0;
  int count = 0;
  do {
    work();
    ++count;
    seconds = seconds_since(start);
  } while (seconds < 0.05);
  return count / seconds;
}

}  // namespace jex::tour
