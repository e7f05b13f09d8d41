// Products: y := y + alpha op(A) x, with the entry rule along the diagonals.
//
// Blocks of 20,000 rows, within them blocks of 5,000 columns, keep the pieces of x and y in the
// caches; the last block of either takes what is left. Within a block the diagonals run in their
// stored order:
//
//   row part      y(i) := y(i) + (x(i + distance) alpha) a
//   mirror part   y(i + distance) := y(i + distance) + (x(i) alpha) a
//
// A block goes in stretches of y short enough for the first level, all diagonals over one stretch
// before the next. Each element still receives its terms by column block and then by diagonal.
#pragma once

#include "spblas/dia/matrix.h"
#include "spblas/dia/run.h"

#include <limits.h>

namespace jex::spblas::dia {

inline constexpr int row_block = 20000, column_block = 5000;
// Elements of y that the first diagonals pass, and the first columns, before the next ones: half of
// a first level of 32 KiB.
template <class T>
inline constexpr int stretch = 16384 / sizeof(T);

// block(range) for 0 .. n - 1 in blocks of size, the last one up to twice as long; n >= 1.
template <class Block>
[[gnu::always_inline]] inline void for_blocks(int n, int size, Block block) {
  size = std::min(n, size);
  const int blocks = n / size;
  for (int b = 0; b < blocks; ++b) block(Range{b * size, b + 1 == blocks ? n : (b + 1) * size});
}

// stretch_of(range) for the pieces of a range.
template <class T, class Piece>
[[gnu::always_inline]] inline void for_stretches(Range range, Piece piece) {
  for (int i = range.begin; i < range.end; i += stretch<T>)
    piece(Range{i, std::min(range.end, i + stretch<T>)});
}

// The diagonals of a side in a part of the matrix, by their rows in it: call(d, distance, rows).
template <Side side, class T, class Call>
[[gnu::always_inline]] inline void for_diagonals(const Matrix<T>& a, Range rows, Range columns,
                                                 bool strict, Call call) {
  for (int d = 0; d < a.count; ++d) {
    const int distance = a.distances[d];
    const Range r = rows_of(distance, rows, columns);
    if (takes<side>(distance, strict) && !r.is_empty()) call(d, distance, r);
  }
}

// One column's row parts. The diagonals that share rows go together.
template <Side side, class T, class Operation>
void add_row_parts(const Matrix<T>& a, Range rows, Range columns, bool strict,
                   const Operation& operation, const T* x, T* y) {
  Runs<T, Operation> runs(operation, y);
  for_diagonals<side>(a, rows, columns, strict, [&](int d, int distance, Range r) {
    runs.add(r.begin, r.end, {x + distance, a.diagonal(d)});
  });
  runs.flush();
}

// One column's mirror parts. The diagonals that share columns go together.
template <Side side, class T, class Operation>
void add_mirror_parts(const Matrix<T>& a, Range rows, Range columns, bool strict,
                      const Operation& operation, const T* x, T* y) {
  Runs<T, Operation> runs(operation, y);
  for_diagonals<side>(a, rows, columns, strict, [&](int d, int distance, Range r) {
    runs.add(r.begin + distance, r.end + distance, {x - distance, a.diagonal(d) - distance});
  });
  runs.flush();
}

// Columns c1 .. c2 - 1 of b and c.
template <class T, EntryRule rule>
[[gnu::noinline]] void multiply(const Matrix<T>& a, int m, int k, int c1, int c2, bool strict,
                                const T& alpha, Dense<const T> b, Dense<T> c) {
  const AddScaled<T, rule.row == Part::conj> row{simd::Factor<T>(alpha)};
  const AddScaled<T, rule.mirror == Part::conj> mirror{
      simd::Factor<T>(signed_alpha(rule.negative_mirror, alpha))};
  const auto each_column = [&](auto column) {
    for (int j = c1; j < c2; ++j) column(b.p + j * b.ld, c.p + j * c.ld);
  };
  for_blocks(m, row_block, [&](Range rows) {
    for_blocks(k, column_block, [&](Range columns) {
      // What the diagonals meet of the block: its rows, of a transposed product its columns.
      constexpr bool by_columns = rule.row == Part::none;
      Range met = {INT_MAX, 0};
      for_diagonals<rule.side>(a, rows, columns, strict, [&](int, int distance, Range r) {
        const int shift = by_columns ? distance : 0;
        met = {std::min(met.begin, r.begin + shift), std::max(met.end, r.end + shift)};
      });
      for_stretches<T>(met, [&](Range piece) {
        each_column([&](const T* x, T* y) {
          if constexpr (by_columns) {
            add_mirror_parts<rule.side>(a, rows, piece, strict, mirror, x, y);
          } else {
            add_row_parts<rule.side>(a, piece, columns, strict, row, x, y);
            if constexpr (rule.mirror != Part::none)
              add_mirror_parts<rule.side>(a, piece, columns, true, mirror, x, y);
          }
        });
      });
    });
  });
}

}  // namespace jex::spblas::dia
