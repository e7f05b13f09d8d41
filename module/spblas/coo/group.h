// The entries of a triangle, grouped by row: what a solve needs of a list in any order.
//
//   entries    numbers of the entries beside the diagonal, row after row, within a row in the order
//              of the list
//   ends       for each row the place behind its last number; it begins where the row before ends
//   diagonals  for each row the number of its diagonal entry
//
// A counting sort: ends holds first the counts, then where each row begins, and is moved on to its
// end by every number that comes in.
#pragma once

#include "blas/level1/scalar.h"
#include "serv/memory.h"
#include "spblas/coo/matrix.h"
#include "spblas/entry_rule.h"

#include <string.h>

namespace jex::spblas::coo {

// In place of the number of a diagonal entry: there is none, or more than one.
inline constexpr jex_int no_entry = -1, several_entries = -2;

struct Groups {
  jex_int *ends, *diagonals, *entries;

  Groups(int m, int count)
      : ends(allocate(m)), diagonals(allocate(m)), entries(allocate(count > 0 ? count : 1)) {}
  Groups(const Groups&) = delete;
  ~Groups() {
    serv::deallocate(entries);
    serv::deallocate(diagonals);
    serv::deallocate(ends);
  }
  bool exist() const { return ends && diagonals && entries; }

 private:
  static jex_int* allocate(int count) {
    return static_cast<jex_int*>(serv::allocate(count * sizeof(jex_int), 128));
  }
};

template <Side side, class T>
[[gnu::noinline]] void group_by_row(const Matrix<T>& a, int m, const Groups& groups) {
  memset(groups.ends, 0, m * sizeof(jex_int));
  memset(groups.diagonals, 0xff, m * sizeof(jex_int));
  static_assert(no_entry == -1);
  for (int k = 0; k < a.count; ++k) {
    const int i = a.rows[k], j = a.columns[k];
    if (i == j) {
      jex_int& diagonal = groups.diagonals[i - a.base];
      diagonal = diagonal == no_entry ? k : several_entries;
    } else if (beside<side>(i, j)) {
      ++groups.ends[i - a.base];
    }
  }
  jex_int begin = 0;
  for (int i = 0; i < m; ++i) {
    const jex_int count = groups.ends[i];
    groups.ends[i] = begin;
    begin += count;
  }
  for (int k = 0; k < a.count; ++k)
    if (beside<side>(a.rows[k], a.columns[k]))
      groups.entries[groups.ends[a.rows[k] - a.base]++] = k;
}

// The diagonal element of row number i, found by looking through the list: entries add up, and
// without one it is 0.
template <class T>
T scanned_diagonal(const Matrix<T>& a, int i) {
  T d = {};
  bool found = false;
  for (int k = 0; k < a.count; ++k)
    if (a.rows[k] == i && a.columns[k] == i) {
      d = found ? blas::add(d, a.values[k]) : a.values[k];
      found = true;
    }
  return d;
}

}  // namespace jex::spblas::coo
