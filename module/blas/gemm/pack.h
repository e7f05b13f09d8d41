// From matrices to the layouts of tile.h.
#pragma once

#include "blas/gemm/scheme.h"
#include "blas/gemm/tile.h"

#include <algorithm>

namespace jex::blas {

// Numbers from one lane of a packed block to the next.
template <class R>
inline ptrdiff_t lane_stride(int steps) {
  return ptrdiff_t(steps + 1) * Lanes<R>::count;
}

// Packs alpha op(A), rows x steps, in lanes. The rows of the last lane that A does not have are
// zero.
template <int plane, class Scheme>
[[gnu::noinline]] void pack_a(const Scheme& scheme, Operand<typename Scheme::A> a, int rows,
                              int steps, typename Scheme::R* packed) {
  using A = typename Scheme::A;
  using R = typename Scheme::R;
  constexpr int width = Lanes<R>::count, height = Scheme::lane_rows;
  const ptrdiff_t stride = lane_stride<R>(steps), inc = a.row_distance(),
                  column = a.column_distance();
  const bool conjugated = a.conjugates();
  const int whole = rows / height;
  // A few columns together: they are read from top to bottom, and a cache line is written whole.
  const auto pack_steps = [&](int first, auto count) __attribute__((always_inline)) {
    const A* p = a.x + first * column;
    R* to = packed + first * width;
    const auto walk = [&](ptrdiff_t inc) __attribute__((always_inline)) {
      for (int lane = 0; lane < whole; ++lane, p += height * inc, to += stride)
        unrolled<count>([&](auto u) __attribute__((always_inline)) {
          scheme.template lane<plane>(p + u * column, inc, conjugated).store(to + u * width);
        });
    };
    inc == 1 ? walk(1) : walk(inc);
    if (rows == whole * height) return;
    for (int u = 0; u < count; ++u) {
      A last[height] = {};
      for (int i = 0; i < rows - whole * height; ++i) last[i] = p[i * inc + u * column];
      scheme.template lane<plane>(last, 1, conjugated).store(to + u * width);
    }
  };
  int step = 0;
  for (; step + 4 <= steps; step += 4) pack_steps(step, std::integral_constant<int, 4>());
  for (; step < steps; ++step) pack_steps(step, std::integral_constant<int, 1>());
}

// Columns of B where they are stored.
template <class Scheme>
inline RealColumns<typename Scheme::R> stored_columns(const Operand<typename Scheme::C>& b) {
  constexpr int parts = Scheme::parts;
  return {reinterpret_cast<const typename Scheme::R*>(b.x), b.row_distance() * parts, 1,
          b.column_distance() * parts};
}

// Staged columns of so many steps.
template <class Scheme>
inline RealColumns<typename Scheme::R> staged_block(const typename Scheme::R* staged, int steps) {
  constexpr int width = Lanes<typename Scheme::R>::count;
  const ptrdiff_t length = ptrdiff_t(steps) * width;
  return {staged, width, length, Scheme::parts * length};
}

// Stages op(B), steps x columns: each real column one after another, every number in a whole lane.
template <int plane, class Scheme>
[[gnu::noinline]] void stage_b(const Scheme& scheme, Operand<typename Scheme::C> b, int steps,
                               int columns, typename Scheme::R* staged) {
  using R = typename Scheme::R;
  using C = typename Scheme::C;
  constexpr int width = Lanes<R>::count;
  const ptrdiff_t length = ptrdiff_t(steps) * width, row = b.row_distance(),
                  column = b.column_distance();
  const bool conjugated = b.conjugates();
  const auto stage = [&](const C* p, R* to) __attribute__((always_inline)) {
    unrolled<Scheme::parts>([&](auto part) __attribute__((always_inline)) {
      Lanes<R>::all(scheme.template factor<plane, part>(*p, conjugated)).store(to + part * length);
    });
  };
  const ptrdiff_t next = Scheme::parts * length;
  int j = 0;
  // Four columns together, for a B whose rows lie together.
  for (; j + 4 <= columns; j += 4) {
    const C* p = b.x + j * column;
    R* to = staged + j * next;
    for (int step = 0; step < steps; ++step, p += row, to += width)
      unrolled<4>([&](auto k)
                      __attribute__((always_inline)) { stage(p + k * column, to + k * next); });
  }
  for (; j < columns; ++j) {
    const C* p = b.x + j * column;
    R* to = staged + j * next;
    for (int step = 0; step < steps; ++step, p += row, to += width) stage(p, to);
  }
}

// Packs op(B), steps x columns, by groups of four columns, and within a group by steps:
//
//   group 0  | b00 b01 b02 b03 | b10 b11 b12 b13 | ...
//   group 1  | b04 b05 b06 b07 | ...
//
// A group is then an operand that is stored by rows, four apart. columns is a multiple of four.
template <class T>
[[gnu::noinline]] void pack_b(Operand<T> b, int steps, int columns, T* packed) {
  const ptrdiff_t row = b.row_distance(), column = b.column_distance();
  for (int j = 0; j < columns; j += 4) {
    const T* p = b.x + j * column;
    for (int step = 0; step < steps; ++step, p += row, packed += 4)
      unrolled<4>([&](auto k) __attribute__((always_inline)) { packed[k] = p[k * column]; });
  }
}

// The group of four columns from column j on.
template <class T>
inline Operand<T> packed_group(const T* packed, int steps, int j) {
  return {packed + ptrdiff_t(steps) * j, 4, Op::transpose};
}

}  // namespace jex::blas
