// Conversions between CSR and the other formats, both ways.
//
// Every way back to CSR is one distribution of entries to rows, fed by a walk through the format in
// which the columns of each row ascend. Formats with room for elements that are not stored leave
// out those equal to zero.
#pragma once

#include "serv/memory.h"
#include "spblas/util/arrays.h"

#include <stdint.h>

namespace jex::spblas::util {

inline constexpr jex_int out_of_memory = -1;

// The words of a job.
struct Job {
  bool back;
  int csr_base, other_base;
  bool whole;
  bool upper;  // skyline
};
inline Job job_of(const jex_int* words, bool has_triangle = false) {
  return {words[0] != 0, words[1], words[2], words[3] != 0, has_triangle && words[4] != 0};
}

// The arrays of the CSR side, read or written.
struct CsrArrays {
  double* values;
  jex_int *columns, *rows;

  Csr<double> read(const Job& job) const { return {values, columns, rows, job.csr_base}; }
  Lists<double> written(const Job& job) const { return {values, columns, rows, job.csr_base}; }
};

// Entries by rows; info is what room they want, if they have too little.
template <class Walk>
jex_int to_csr(const Job& job, int m, const CsrArrays& csr, int room, Walk walk) {
  const bool fits = distribute(m, csr.written(job), job.whole, room, walk);
  return fits ? 0 : csr.rows[m] - csr.rows[0];
}

// A work buffer of integers, all equal to value; null if there is none.
class Marks {
 public:
  Marks(int64_t count, int value)
      : p_(count < 0x1fffffff
               ? static_cast<jex_int*>(serv::allocate(uint32_t(count > 0 ? count : 1) * 4, 128))
               : nullptr) {
    if (p_) std::fill_n(p_, count, value);
  }
  Marks(const Marks&) = delete;
  ~Marks() { serv::deallocate(p_); }
  jex_int* get() const { return p_; }

 private:
  jex_int* p_;
};

// --- block sparse rows

struct BsrArrays {
  double* values;
  jex_int *columns, *rows;
};

inline int blocks(int extent, int lb) { return extent / lb + (extent % lb != 0); }

inline jex_int csr_to_bsr(const Job& job, int m, int n, int lb, const Csr<double>& a,
                          const BsrArrays& b, int room) {
  const int block_rows = blocks(m, lb), block_columns = blocks(n, lb);
  const ptrdiff_t size = ptrdiff_t(lb) * lb;
  const Marks marks(block_columns, -1);  // last block row that met the block column, then its place
  jex_int* const mark = marks.get();
  if (!mark) return out_of_memory;
  const auto for_block_row = [&](int i, auto f) {
    for (int r = 0, row = i * lb; r < lb && row < m; ++r, ++row)
      for (int k = a.first(row), end = a.last(row); k < end; ++k) f(r, a.column(k), a.values[k]);
  };
  b.rows[0] = job.other_base;
  for (int i = 0; i < block_rows; ++i) {
    b.rows[i + 1] = b.rows[i];
    for_block_row(i, [&](int, int column, double) {
      jex_int& last = mark[column / lb];
      b.rows[i + 1] += last != i;
      last = i;
    });
  }
  if (!job.whole) return 0;
  if (b.rows[block_rows] - job.other_base > room) return b.rows[block_rows] - job.other_base;
  std::fill_n(mark, block_columns, -1);
  for (int i = 0; i < block_rows; ++i) {
    const int first = b.rows[i] - job.other_base;
    int count = 0;
    for_block_row(i, [&](int, int column, double) {
      if (mark[column / lb] >= first) return;
      mark[column / lb] = first;
      b.columns[first + count++] = column / lb;
    });
    std::sort(b.columns + first, b.columns + first + count);
    for (int k = first; k < first + count; ++k) {
      mark[b.columns[k]] = k;
      b.columns[k] += job.other_base;
    }
    std::fill_n(b.values + first * size, count * size, 0.0);
    for_block_row(i, [&](int r, int column, double value) {
      b.values[mark[column / lb] * size + column % lb * ptrdiff_t(lb) + r] += value;
    });
  }
  return 0;
}

inline jex_int bsr_to_csr(const Job& job, int m, int n, int lb, const BsrArrays& b,
                          const CsrArrays& csr, int room) {
  const ptrdiff_t size = ptrdiff_t(lb) * lb;
  // Rows or columns of a block that are inside the matrix.
  const auto within = [=](int extent, int block) { return std::min(extent - block * lb, lb); };
  return to_csr(job, m, csr, room, [&](auto put) {
    for (int i = 0, count = blocks(m, lb); i < count; ++i)
      for (int k = b.rows[i] - b.rows[0]; k < b.rows[i + 1] - b.rows[0]; ++k)
        for (int c = 0, columns = within(n, b.columns[k] - job.other_base); c < columns; ++c)
          for (int r = 0, rows = within(m, i); r < rows; ++r) {
            const double value = b.values[k * size + c * ptrdiff_t(lb) + r];
            if (value != 0) put(i * lb + r, (b.columns[k] - job.other_base) * lb + c, value);
          }
  });
}

// --- diagonals

// Also tells how many there are.
inline jex_int csr_to_dia(const Job& job, int m, int n, const Csr<double>& a, double* values,
                          ptrdiff_t lval, jex_int* distances, jex_int* count) {
  const int room = *count;
  const Marks marks(int64_t(m) + n, 0);  // by distance, from 1 - m
  jex_int* const mark = marks.get();
  if (!mark) return out_of_memory;
  const auto place = [=](int i, int j) { return j - i + m - 1; };
  a.for_entries(m, [&](int i, int j, double) { mark[place(i, j)] = 1; });
  *count = std::count(mark, mark + m + n, 1);
  if (!job.whole) return 0;
  if (*count > room) return *count;
  for (int d = 0, k = 0; d < m + n; ++d)
    if (mark[d]) {
      distances[k] = d - (m - 1);
      mark[d] = k++;
    }
  for (int k = 0; k < *count; ++k) std::fill_n(values + k * lval, m, 0.0);
  a.for_entries(m,
                [&](int i, int j, double value) { values[mark[place(i, j)] * lval + i] += value; });
  return 0;
}

inline jex_int dia_to_csr(const Job& job, int m, int n, const double* values, ptrdiff_t lval,
                          const jex_int* distances, int count, const CsrArrays& csr, int room) {
  return to_csr(job, m, csr, room, [&](auto put) {
    for (int d = 0; d < count; ++d) {
      const int shift = distances[d];
      for (int i = std::max(0, -shift); i < m && i + shift < n; ++i)
        if (const double value = values[d * lval + i]; value != 0) put(i, i + shift, value);
    }
  });
}

// --- skyline

inline jex_int csr_to_sky(const Job& job, int m, const Csr<double>& a, double* values,
                          jex_int* pointers, int room) {
  // A line is a row of the lower triangle or a column of the upper one.
  const auto for_lines = [&](auto f) {
    a.for_entries(m, [&](int i, int j, double value) {
      if (job.upper) std::swap(i, j);
      if (j <= i) f(i, j, value);
    });
  };
  std::fill_n(pointers, m + 1, 1);  // every line has its diagonal
  pointers[0] = job.other_base;
  for_lines([&](int line, int j, double) {
    pointers[line + 1] = std::max(pointers[line + 1], line - j + 1);
  });
  for (int i = 0; i < m; ++i) pointers[i + 1] += pointers[i];
  const int count = pointers[m] - pointers[0];
  if (!job.whole) return 0;
  if (count > room) return count;
  std::fill_n(values, count, 0.0);
  for_lines([&](int line, int j, double value) {
    values[pointers[line + 1] - pointers[0] - 1 - (line - j)] += value;
  });
  return 0;
}

inline jex_int sky_to_csr(const Job& job, int m, const double* values, const jex_int* pointers,
                          const CsrArrays& csr, int room) {
  return to_csr(job, m, csr, room, [&](auto put) {
    for (int line = 0; line < m; ++line) {
      const int end = pointers[line + 1] - pointers[0];
      for (int k = pointers[line] - pointers[0]; k < end; ++k) {
        const int j = line - (end - 1 - k);
        if (values[k] != 0) job.upper ? put(j, line, values[k]) : put(line, j, values[k]);
      }
    }
  });
}

// --- coordinates, compressed columns, dense

inline jex_int csr_to_coo(const Job& job, int m, const Csr<double>& a, jex_int* count,
                          double* values, jex_int* row_indices, jex_int* column_indices, int room) {
  *count = m > 0 ? a.last(m - 1) : 0;
  if (!job.whole) return 0;
  if (*count > room) return *count;
  int k = 0;
  a.for_entries(m, [&](int i, int j, double value) {
    values[k] = value;
    row_indices[k] = i + job.other_base;
    column_indices[k++] = j + job.other_base;
  });
  return 0;
}

inline jex_int coo_to_csr(const Job& job, int m, int count, const double* values,
                          const jex_int* row_indices, const jex_int* column_indices,
                          const CsrArrays& csr, int room) {
  return to_csr(job, m, csr, room, [&](auto put) {
    for (int k = 0; k < count; ++k)
      put(row_indices[k] - job.other_base, column_indices[k] - job.other_base, values[k]);
  });
}

// From rows to columns, or back: the same work with the roles exchanged.
inline jex_int turn_lists(int from_lists, int to_lists, const Csr<double>& from,
                          const Lists<double>& to, bool whole, int room) {
  const bool fits = distribute(to_lists, to, whole, room, [&](auto put) {
    from.for_entries(from_lists, [&](int i, int j, double value) { put(j, i, value); });
  });
  return fits ? 0 : to.pointers[to_lists] - to.base;
}

// The element (i, j) of a dense matrix, by rows (base 0) or by columns.
struct Dense {
  double* p;
  ptrdiff_t ld;
  bool by_rows;
  double& at(int i, int j) const { return by_rows ? p[i * ld + j] : p[j * ld + i]; }
};

inline jex_int dense_to_csr(const Job& job, int m, int n, const Dense& a, const CsrArrays& csr,
                            int room) {
  return to_csr(job, m, csr, room, [&](auto put) {
    const int lines = a.by_rows ? m : n, length = a.by_rows ? n : m;
    for (int line = 0; line < lines; ++line)
      for (int k = 0; k < length; ++k)
        if (const double value = a.p[line * a.ld + k]; value != 0)
          a.by_rows ? put(line, k, value) : put(k, line, value);
  });
}

inline void csr_to_dense(int m, int n, const Csr<double>& a, const Dense& to) {
  const int lines = to.by_rows ? m : n, length = to.by_rows ? n : m;
  for (int line = 0; line < lines; ++line) std::fill_n(to.p + line * to.ld, length, 0.0);
  a.for_entries(m, [&](int i, int j, double value) { to.at(i, j) += value; });
}

}  // namespace jex::spblas::util
