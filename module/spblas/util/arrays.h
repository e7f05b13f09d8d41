// CSR in three arrays, as the utilities read and write it, and the passes that fill such arrays.
#pragma once

#include <jex/types.h>

#include <algorithm>
#include <stddef.h>

namespace jex::spblas::util {

// Row i holds the places rows[i] - rows[0] .. rows[i + 1] - rows[0] - 1; columns count from base.
template <class T>
struct Csr {
  const T* values;
  const jex_int *columns, *rows;
  int base;

  int first(int i) const { return rows[i] - rows[0]; }
  int last(int i) const { return rows[i + 1] - rows[0]; }
  int column(int k) const { return columns[k] - base; }

  // f(i, j, value) for every entry of m rows, in order; rows and columns from 0.
  template <class F>
  void for_entries(int m, F f) const {
    for (int i = 0; i < m; ++i)
      for (int k = first(i), end = last(i); k < end; ++k) f(i, column(k), values[k]);
  }
};

// Arrays to be filled: an index and a value for each entry, and the pointers of n lists of them.
template <class T>
struct Lists {
  T* values;
  jex_int *indices, *pointers;
  int base;
};

// Distributes entries to lists, those of one list in the order in which they come. walk(f) calls
// f(list, index, value) for all of them, and is called twice. The values are written if whole, and
// there is room for so many; false if there is not.
template <class T, class Walk>
bool distribute(int n, const Lists<T>& to, bool whole, int room, Walk walk) {
  jex_int* const pointers = to.pointers;
  std::fill_n(pointers, n + 1, 0);
  pointers[0] = to.base;
  walk([&](int list, int, const T&) { ++pointers[list + 1]; });
  for (int i = 0; i < n; ++i) pointers[i + 1] += pointers[i];
  if (!whole) return true;
  if (pointers[n] - to.base > room) return false;
  // Each pointer runs to the end of its list, which is where the next begins.
  walk([&](int list, int index, const T& value) {
    const int k = pointers[list]++ - to.base;
    to.indices[k] = index + to.base;
    to.values[k] = value;
  });
  for (int i = n; i > 0; --i) pointers[i] = pointers[i - 1];
  pointers[0] = to.base;
  return true;
}

// Extents below zero count as none.
inline int extent(int n) { return n > 0 ? n : 0; }

inline constexpr int unlimited = 0x7fffffff;

}  // namespace jex::spblas::util
