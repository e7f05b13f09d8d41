// Tridiagonal systems of many columns at once:
//
//   b u(j) - u(j-1) - u(j+1) = s g(j),   j = 0 .. rows-1,  u(-1) = u(rows) = 0,
//
// where a Neumann end has the equation b u(0) - 2 u(1) = s g(0), which is halved here. Columns lie
// side by side, rows `stride` apart:
//
//            c = 0 .. width-1
//   row 0  | . . . . . . . . |  ...           forward:   r(j) = 1 / (b - r(j-1))
//   row 1  | . . . . . . . . |  ...                      y(j) = s g(j) + r(j-1) y(j-1)
//     :    |        :        |                backward:  u(j) = r(j) (y(j) + u(j+1))
//
// The reciprocals r depend on the column alone and, where b > 2, reach a fixed point, exactly,
// after few rows: the map r -> 1 / (b - r) is monotone, rounding included. They are made while they
// change, in double, since b is near 2 for low frequencies.
#pragma once

#include <bit>
#include <stddef.h>
#include <stdint.h>

namespace jex::pde {

// Columns taken at a time: their rows must not fall out of the second-level cache between the two
// sweeps.
template <class T>
constexpr int columns_at_a_time(int rows) {
  constexpr int line = 64 / sizeof(T);
  const int most = 524288 / int(sizeof(T)) / (rows + 1) / line * line;
  return most < 2 * line ? 2 * line : most > 4 * line ? 4 * line : most;
}

// Elements of scratch memory: reciprocals by rows, and b and the newest reciprocals in double.
template <class T>
struct Scratch {
  T* reciprocals;  // rows x width
  double *b, *newest;
};

template <class T>
struct Columns {
  T* f;
  ptrdiff_t stride;
  int rows, width;
  T scale;
  bool neumann_first, neumann_last;
  bool first_is_singular;  // the column c = 0: rows of Neumann at both ends, b = 2

  void solve(const Scratch<T>& scratch) const {
    if (rows < 1) return;
    if (first_is_singular) remove_mean();
    for (int c = 0; c < width; ++c) scratch.newest[c] = 0;
    const auto line = [&](int j) { return f + j * stride; };
    const auto reciprocals = [&](int j) { return scratch.reciprocals + ptrdiff_t(j) * width; };
    int made = 0;  // rows of reciprocals; the last one made serves all rows behind it
    bool fixed = false;
    const T* r = nullptr;
    for (int j = 0; j < rows; ++j) {
      if (j + lines_ahead < rows) fetch(line(j + lines_ahead));
      if (j == 0)
        first_line(line(0), factor(0));
      else
        forward(line(j), line(j - 1), r, factor(j));
      if (fixed && !is_halved(j)) continue;
      T* const row = reciprocals(made);
      fixed = !make_reciprocals(scratch, j, row);
      ++made;
      r = row;
    }
    if (first_is_singular) reciprocals(made - 1)[0] = 0;
    last_line(line(rows - 1), r);
    // The reciprocals of a halved last line stand behind those of the line before it.
    const int newest = is_halved(rows - 1) ? made - 2 : made - 1;
    for (int j = rows - 2; j >= 0; --j)
      backward(line(j), line(j + 1), reciprocals(j < newest ? j : newest));
    if (first_is_singular) remove_mean();
  }

 private:
  bool is_halved(int j) const {
    return (j == 0 && neumann_first) || (j == rows - 1 && neumann_last);
  }
  T factor(int j) const { return is_halved(j) ? T(0.5) * scale : scale; }

  // Lines lie pages apart, where no processor looks ahead by itself.
  static constexpr int lines_ahead = 8;
  void fetch(const T* line) const {
    constexpr int step = 64 / sizeof(T);
    for (int c = 0; c < width; c += step) __builtin_prefetch(line + c);
  }

  // False when none of them changed.
  bool make_reciprocals(const Scratch<T>& scratch, int j, T* __restrict r) const {
    double* __restrict const newest = scratch.newest;
    const double* __restrict const b = scratch.b;
    const double own = is_halved(j) ? 0.5 : 1;
    uint64_t changes = 0;
    for (int c = 0; c < width; ++c) {
      const double next = 1 / (own * b[c] - newest[c]);
      changes |= std::bit_cast<uint64_t>(next) ^ std::bit_cast<uint64_t>(newest[c]);
      newest[c] = next;
      r[c] = T(next);
    }
    return changes != 0;
  }

  void first_line(T* __restrict y, T own) const {
    for (int c = 0; c < width; ++c) y[c] *= own;
  }
  void forward(T* __restrict y, const T* __restrict before, const T* __restrict r, T own) const {
    for (int c = 0; c < width; ++c) y[c] = own * y[c] + r[c] * before[c];
  }
  void last_line(T* __restrict u, const T* __restrict r) const {
    for (int c = 0; c < width; ++c) u[c] *= r[c];
  }
  void backward(T* __restrict u, const T* __restrict after, const T* __restrict r) const {
    for (int c = 0; c < width; ++c) u[c] = r[c] * (u[c] + after[c]);
  }

  // Of the column 0, ends counted half: what stands in the way of a solution, and what is free.
  void remove_mean() const {
    double sum = 0.5 * (double(f[0]) + double(f[(rows - 1) * stride]));
    for (int j = 1; j < rows - 1; ++j) sum += double(f[j * stride]);
    const T mean = T(sum / (rows - 1));
    for (int j = 0; j < rows; ++j) f[j * stride] -= mean;
  }
};

}  // namespace jex::pde
