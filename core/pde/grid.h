// The grid of a committed solver as the steps see it: the elements of its parameter arrays by name.
#pragma once

#include <jex/core_imports.h>

#include "threads/threads.h"

#include <algorithm>
#include <atomic>
#include <stddef.h>

namespace jex::pde {

enum Status : jex_int { success = 0, singular = 1, no_module = -1000, no_memory = -1000 };

// Conditions of the two ends of an axis, in the order of their codes.
enum class Ends { dd = 0, dn = 1, nd = 2, nn = 3 };
constexpr bool neumann_first(Ends e) { return int(e) & 2; }
constexpr bool neumann_last(Ends e) { return int(e) & 1; }

// n intervals of h; first .. last are the points with an unknown.
struct Axis {
  jex_int n;
  double h;
  Ends ends;

  jex_int first() const { return neumann_first(ends) ? 0 : 1; }
  jex_int last() const { return neumann_last(ends) ? n : n - 1; }
  jex_int points() const { return n + 1; }
};

template <class T>
class Grid {
 public:
  Grid(int dimensions, const jex_int* ipar, const T* dpar)
      : dimensions_(dimensions), ipar_(ipar), dpar_(dpar) {}

  // The last axis holds its step, the others their lengths.
  Axis axis(int i) const {
    const jex_int n = ipar_[10 + i];
    const bool is_last = i == dimensions_ - 1;
    return {n, is_last ? double(dpar_[i]) : double(dpar_[i]) / n,
            Ends(2 * ipar_[4 + 2 * i] + ipar_[5 + 2 * i])};
  }
  Axis last_axis() const { return axis(dimensions_ - 1); }
  // Diagonal terms of the frequencies of a transformed axis, times the square of the last step; q
  // is in those of the first axis.
  const T* terms(int i) const { return dpar_ + ipar_[13 + 2 * i] - 1; }
  // Parameters of the transform along an axis.
  const T* tables(int i) const { return dpar_ + ipar_[17 + 2 * i] - 1; }
  const jex_int* transform(int i) const { return ipar_ + 40 + 20 * i; }
  double q() const { return double(dpar_[3]); }
  bool is_singular() const {
    for (int i = 0; i < 2 * dimensions_; ++i)
      if (ipar_[4 + i] != 1) return false;
    return q() == 0;
  }
  // Parts that a step is cut into.
  int parts() const { return std::max(1, std::min<int>(ipar_[22], thread_limit())); }

 private:
  int dimensions_;
  const jex_int* ipar_;
  const T* dpar_;
};

// part(first, end, i) for blocks of 0 .. count - 1, by as many threads as there are parts; i tells
// them apart. A thread that the system holds up takes fewer blocks.
template <class Part>
void share(int parts, jex_int count, Part part) {
  const int blocks = parts == 1 ? 1 : int(std::min<int64_t>(count, 8 * int64_t(parts)));
  const auto bound = [&](int k) { return jex_int(int64_t(count) * k / blocks); };
  std::atomic<int> next{0};
  in_parallel(parts, [&](int i) {
    for (int k; (k = next++) < blocks;) part(bound(k), bound(k + 1), i);
  });
}

}  // namespace jex::pde
