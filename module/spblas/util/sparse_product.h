// Products and sums of sparse matrices, row by row. (F. G. Gustavson, "Two fast algorithms for
// sparse matrices: multiplication and permuted transposition", ACM Transactions on Mathematical
// Software 4 (1978), 250-269.)
//
// A row of the result is summed in a line of cells, one for each column: the sum and the row that
// it belongs to, side by side because both are wanted at once. The columns met are put into the
// result as they come, sorted, and their sums fetched.
#pragma once

#include "blas/level1/scalar.h"
#include "serv/memory_aligned.h"
#include "spblas/util/arrays.h"

#include <string.h>

namespace jex::spblas::util {

using blas::add;
using blas::multiply;

inline constexpr jex_int no_memory = -1;

// Memory for count elements, null if there is none, released at the end of the scope.
template <class T>
class Scratch {
 public:
  explicit Scratch(int64_t count) {
    const int64_t bytes = (count > 0 ? count : 1) * int64_t(sizeof(T));
    p_ = bytes < 0x7fffff00 ? static_cast<T*>(serv::aligned_malloc(uint32_t(bytes), 128)) : nullptr;
  }
  Scratch(const Scratch&) = delete;
  ~Scratch() { serv::aligned_free(p_); }
  T* get() const { return p_; }

 private:
  T* p_;
};

// Sorts the columns of a row, each there once. Many are written down as bits and read back: of
// numbers that come at random, a comparison is guessed wrong every other time. Before the words
// with the bits stand those of the groups: a bit of theirs tells that a word holds some.
class ColumnSorter {
 public:
  // Columns 0 .. last.
  explicit ColumnSorter(int last) : group_count_(last / 1024 + 1), words_(33 * group_count_) {
    if (has_memory()) memset(words_.get(), 0, 33 * group_count_ * sizeof(uint32_t));
  }
  bool has_memory() const { return words_.get(); }

  void sort(jex_int* columns, int count) {
    // Rows of banded matrices come in order already.
    if (std::is_sorted(columns, columns + count)) return;
    if (count <= few)
      insert(columns, count);
    else if (group_count_ <= most_groups * count)
      write_and_read(columns, count);
    else
      std::sort(columns, columns + count);
  }

 private:
  static constexpr int few = 24;
  // Groups looked through for each column, before sorting is quicker.
  static constexpr int most_groups = 16;

  static void insert(jex_int* columns, int count) {
    for (int k = 1; k < count; ++k) {
      const jex_int column = columns[k];
      int to = k;
      for (; to > 0 && columns[to - 1] > column; --to) columns[to] = columns[to - 1];
      columns[to] = column;
    }
  }
  // take(number) for the bits of a word, upwards; it is cleared. The lowest is cut out and counted
  // from above: what counts from below is compiled to an instruction beyond SSE3.
  template <class Take>
  static void take_bits(uint32_t& word, int first, Take take) {
    for (uint32_t left = word; left; left &= left - 1)
      take(first + (31 - __builtin_clz(left & -left)));
    word = 0;
  }
  void write_and_read(jex_int* columns, int count) {
    uint32_t *const groups = words_.get(), *const bits = groups + group_count_;
    for (int k = 0; k < count; ++k) {
      const uint32_t column = columns[k], word = column / 32;
      bits[word] |= 1u << column % 32;
      groups[word / 32] |= 1u << word % 32;
    }
    for (int g = 0; g < group_count_; ++g)
      take_bits(groups[g], 32 * g, [&](int word) {
        take_bits(bits[word], 32 * word, [&](int column) { *columns++ = column; });
      });
  }

  const int group_count_;
  const Scratch<uint32_t> words_;
};

// The result, and how much of it is wanted.
template <class T>
struct Result {
  T* values;
  jex_int *columns, *rows;
  bool whole;  // else the row pointers alone
  int room;
  jex_int* info;
};

template <class T>
Result<T> result(T* values, jex_int* columns, jex_int* rows, const jex_int* job,
                 const jex_int* room, jex_int* info) {
  return {values, columns, rows, *job != 0, *job ? *room : 0, info};
}

// Row pointers of m x n: terms(i, add) calls add(column, ...), columns from 1, for the terms of row
// i.
template <class Terms>
bool count_rows(int m, int n, jex_int* rows, Terms terms) {
  const Scratch<jex_int> scratch(int64_t(n) + 1);
  jex_int* const last = scratch.get();  // row, from 1, that met the column
  if (!last) return false;
  memset(last, 0, (n + 1) * sizeof *last);
  rows[0] = 1;
  for (int i = 0; i < m; ++i) {
    jex_int count = 0;
    const jex_int number = i + 1;
    terms(
        i, [&](int j, auto) __attribute__((always_inline)) {
          count += last[j] != number;
          last[j] = number;
        });
    rows[i + 1] = rows[i] + count;
  }
  return true;
}

// All of it: add(column, term) with term() its value. A sum is a chain that begins with its first
// term. Stops at the first row for which there is no room; returns its number from 1, or 0.
template <class T, class Terms>
jex_int sum_rows(int m, int n, const Result<T>& c, Terms terms) {
  struct Cell {
    T sum;
    jex_int row;
  };
  const Scratch<Cell> scratch(int64_t(n) + 1);
  Cell* const cells = scratch.get();
  ColumnSorter sorter(n);
  if (!cells || !sorter.has_memory()) return no_memory;
  for (int j = 0; j <= n; ++j) cells[j].row = 0;
  c.rows[0] = 1;
  jex_int* const columns = c.columns;
  const int room = c.room;
  int count = 0;
  for (int i = 0; i < m; ++i) {
    const int first = count;
    const jex_int number = i + 1;
    terms(
        i, [&](int j, auto term) __attribute__((always_inline)) {
          Cell& cell = cells[j];
          if (cell.row == number) {
            cell.sum = add(cell.sum, term());
          } else {
            cell.row = number;
            cell.sum = term();
            if (count < room) columns[count] = j;
            ++count;
          }
        });
    if (count > room) return number;
    sorter.sort(columns + first, count - first);
    for (int k = first; k < count; ++k) c.values[k] = cells[columns[k]].sum;
    c.rows[i + 1] = count + 1;
  }
  return 0;
}

template <class T, class Terms>
void make_rows(int m, int n, const Result<T>& c, Terms terms) {
  m = extent(m), n = extent(n);
  if (c.whole)
    *c.info = sum_rows(m, n, c, terms);
  else
    *c.info = count_rows(m, n, c.rows, terms) ? 0 : no_memory;
}

// Columns and values of a row of a matrix, from the first on.
template <class T, class F>
[[gnu::always_inline]] inline void for_row(const Csr<T>& a, int i, F f) {
  const jex_int *column = a.columns + a.first(i), *const end = a.columns + a.last(i);
  for (const T* value = a.values + a.first(i); column < end; ++column, ++value) f(*column, *value);
}

// C := A B, B with n columns. All columns count from 1.
template <class T>
void multiply_sparse(int m, int n, const Csr<T>& a, const Csr<T>& b, const Result<T>& c) {
  make_rows(
      m, n, c, [&](int i, auto add) __attribute__((always_inline)) {
        for_row(
            a, i, [&](int row, T factor) __attribute__((always_inline)) {
              for_row(
                  b, row - 1, [&](int j, const T& value) __attribute__((always_inline)) {
                    add(
                        j, [&]()
                               __attribute__((always_inline)) { return multiply(factor, value); });
                  });
            });
      });
}

// C := A + beta B
template <class T>
void add_sparse(int m, int n, const Csr<T>& a, const T& beta, const Csr<T>& b, const Result<T>& c) {
  make_rows(
      m, n, c, [&](int i, auto add) __attribute__((always_inline)) {
        for_row(
            a, i, [&](int j, const T& value) __attribute__((always_inline)) {
              add(
                  j, [&]() __attribute__((always_inline)) { return value; });
            });
        for_row(
            b, i, [&](int j, const T& value) __attribute__((always_inline)) {
              add(
                  j, [&]() __attribute__((always_inline)) { return multiply(beta, value); });
            });
      });
}

// use(transpose) for the transpose of m x n; false if there is no memory for it.
template <class T, class Use>
bool with_transpose(int m, int n, const Csr<T>& a, Use use) {
  m = extent(m), n = extent(n);
  const int count = m > 0 ? a.last(m - 1) : 0;
  const Scratch<T> values(count);
  const Scratch<jex_int> indices(count), pointers(int64_t(n) + 1);
  if (!values.get() || !indices.get() || !pointers.get()) return false;
  const Lists<T> to = {values.get(), indices.get(), pointers.get(), 1};
  distribute(n, to, true, unlimited, [&](auto put) {
    a.for_entries(m, [&](int i, int j, const T& value) { put(j, i, value); });
  });
  use(Csr<T>{values.get(), indices.get(), pointers.get(), 1});
  return true;
}

// C := A' B, A of m rows and k columns.
template <class T>
void multiply_transposed(int m, int k, int n, const Csr<T>& a, const Csr<T>& b,
                         const Result<T>& c) {
  if (!with_transpose(m, k, a, [&](const Csr<T>& t) { multiply_sparse(k, n, t, b, c); }))
    *c.info = no_memory;
}

// C := A + beta B', A of m rows and n columns.
template <class T>
void add_transposed(int m, int n, const Csr<T>& a, const T& beta, const Csr<T>& b,
                    const Result<T>& c) {
  if (!with_transpose(n, m, b, [&](const Csr<T>& t) { add_sparse(m, n, a, beta, t, c); }))
    *c.info = no_memory;
}

}  // namespace jex::spblas::util
