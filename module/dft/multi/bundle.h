// One bundle: neighbouring lines, n elements long and width of them, from the grid and back to it.
//
// Where the engine has passes for n = s m, the first passes take a line to m blocks of s rows, and
// the others take rows of neighbouring blocks, so that all but one of the walks through the bundle
// stay within the first-level cache:
//
//   grid rows b, b + m, ..             block b of s rows               grid rows q, q + s, ..
//   -> s rows, first passes     ->     row q of all blocks      ->     m rows, other passes  ->
//
// The blocks lie a cache line further apart than they are long: powers of two would bring row q of
// all of them to one place of the cache. Elsewhere each line is laid out by itself, for the kernel.
#pragma once

#include <algorithm>

#include "dft/engine/ahead.h"
#include "dft/engine/kernels.h"
#include "dft/engine/transform.h"
#include "dft/multi/lines.h"

namespace jex::dft {

// Longer lines take two levels, each by itself.
constexpr int32_t longest_bundled = 8192;

// Rows of a bundle are 1 KiB at most, for short lines, since every row of a pass costs a call. In a
// large grid every row lies in a page of its own, and pages a power of two apart share few places
// of the table of addresses: so 256 bytes at least, 512 for long lines, as far as the second-level
// cache has room.
template <class T>
int bundle_width(int32_t n) {
  if (n <= longest_bundled) {
    const int32_t least = n <= 512 ? 256 : std::clamp((1 << 20) / n / 128 * 128, 128, 512);
    return std::clamp((128 << 10) / n / 128 * 128, least, 1024) / int(sizeof(T));
  }
  const int32_t most = (1 << 20) / (n * int32_t(sizeof(T)));
  return most < 1 ? 1 : most > narrow_bundle<T> ? narrow_bundle<T> : most;
}
// A few lines more do not make another bundle.
template <class T>
constexpr int last_bundle_width(int32_t n) {
  return bundle_width<T>(n) + narrow_bundle<T> / 2;
}

// Lines of a bundle that are laid out one behind the other; powers of two would bring their
// elements to one place of the caches.
template <class T>
constexpr ptrdiff_t line_step(int32_t n) {
  return (n + narrow_bundle<T> - 1) / narrow_bundle<T> * narrow_bundle<T> + narrow_bundle<T> / 2;
}

template <class T>
struct Line {
  int32_t n;
  ptrdiff_t step, across;
};

template <class T>
bool is_row(const Pairs<T>&, ptrdiff_t across) {
  return across == 2;
}
template <class T>
bool is_row(const Parts<T>&, ptrdiff_t) {
  return false;
}
template <class T>
void copy_row(const T* x, T* y, int width) {
  using V = Lanes<T>;
  int c = 0;
  for (; c + V::count <= width; c += V::count) V::load(x + c).store(y + c);
  if (c < width) y[c] = x[c];
}
template <class T>
T* row_of(const Pairs<T>& a) {
  return reinterpret_cast<T*>(a.base);
}
template <class T>
T* row_of(const Parts<T>&) {
  return nullptr;
}

template <class T, class A>
void copy_in(A x, const Line<T>& line, T* to, ptrdiff_t step, ptrdiff_t across, int width) {
  if (across == 1 && is_row(x, line.across)) {
    for (int32_t j = 0; j < line.n; ++j)
      copy_row<T>(row_of(x.at(j * line.step)), to + j * step, width);
    return;
  }
  for (int32_t j = 0; j < line.n; ++j)
    for (int c = 0; c < width; ++c)
      to[j * step + c * across] = x.get(j * line.step + c * line.across);
}
template <class T, class A>
void copy_out(const T* from, ptrdiff_t step, ptrdiff_t across, A y, const Line<T>& line,
              int width) {
  if (across == 1 && is_row(y, line.across)) {
    for (int32_t j = 0; j < line.n; ++j)
      copy_row<T>(from + j * step, row_of(y.at(j * line.step)), width);
    return;
  }
  for (int32_t j = 0; j < line.n; ++j)
    for (int c = 0; c < width; ++c)
      y.put(j * line.step + c * line.across, from[j * step + c * across]);
}

// A length that lines side by side take in one pass where the engine has two, on rows that need no
// copies.
constexpr int32_t wide_radix = 32;
template <class T>
void run_wide_pass(Direction d, Real<T> scale, View<const T> in, View<T> out, int width) {
  Pass<T> pass{};
  pass.in = in.base;
  pass.in_k = in.step;
  pass.out = out.base;
  pass.out_k = out.step;
  pass.scale = scale;
  pass.p_count = pass.q_count = 1;
  pass.c_count = width;
  const Kind kind = scale == 1 ? Kind::last : Kind::scaled;
  pass_kinds<T>(wide_radix, d)->function[int(kind)](pass);
}

// Passes in two steps, as even as their radices allow.
template <class T>
class Steps {
 public:
  int32_t block = 1, blocks;  // s, m

  explicit Steps(const Passes<T>& passes) : blocks(passes.length), passes_(passes) {
    for (int i = 1; i < passes.count; ++i) {
      const int32_t before = passes.stages[i].before, rest = passes.length / before;
      if (larger(before, rest) >= longest()) continue;
      first_ = i;
      block = before;
      blocks = rest;
    }
    other_.length = blocks;
    other_.count = passes.count - first_;
    other_.has_first = false;
    for (int i = 0; i < other_.count; ++i) {
      other_.stages[i] = passes.stages[first_ + i];
      other_.stages[i].before /= block;
    }
  }

  int32_t longest() const { return larger(block, blocks); }
  ptrdiff_t elements(int width) const {
    return blocks * block_step(width) + 2 * longest() * ptrdiff_t(width + gap);
  }

  // How the rows of the grid meet the passes: where the operands of block b are, taken to rows or
  // not, where the results of row q shall be, at rows or elsewhere, and what follows then. Without
  // a first step all rows are one block. ahead() is how far the operands of the next block are,
  // where they shall be asked for, else 0.
  //   View<const T> take(b, rows), View<T> target(q, rows), void give(q, results)
  template <class Rows>
  void run(Direction d, Real<T> scale, int width, T* matrix, const Rows& grid) const {
    const ptrdiff_t step = block_step(width);
    T* const rows = matrix + blocks * step;
    T* const buffers[2] = {rows, rows + longest() * width};
    View<const T> from{matrix, step};
    if (first_ == 0) from = grid.take(0, {matrix, step});
    for (int32_t b = 0; first_ > 0 && b < blocks; ++b)
      run_first(d, b, width, grid.take(b, {rows, width}), grid.ahead(), buffers, matrix + b * step);
    for (int32_t q = 0; q < block; ++q) {
      const View<T> to = grid.target(q, {rows, other_.count > 1 ? width : width + gap});
      run_passes<T>(other_, d, scale, {from.base + q * width, from.step}, to, width, buffers);
      grid.give(q, {to.base, to.step});
    }
  }

  // The grid's rows of a block, or of a row's results.
  Line<T> taken(const Line<T>& line) const {
    if (first_ == 0) return line;
    return {block, line.step * blocks, line.across};
  }
  Line<T> given(const Line<T>& line) const { return {blocks, line.step * block, line.across}; }

  // Rows that a butterfly of the first pass reads, or one of the last pass writes, and how far they
  // are apart in the grid, counted in rows.
  int first_radix() const { return passes_.stages[0].radix; }
  int32_t first_distance() const { return passes_.stages[0].rest; }
  int last_radix() const { return last().radix; }
  int32_t last_distance() const { return last().before; }

 private:
  static constexpr int gap = 64 / sizeof(T);
  static constexpr int32_t larger(int32_t a, int32_t b) { return a > b ? a : b; }
  const Stage<T>& last() const { return passes_.stages[passes_.count - 1]; }
  ptrdiff_t block_step(int width) const { return block * ptrdiff_t(width) + gap; }

  // The first passes on block b, whose columns p are those that leave b modulo the blocks.
  void run_first(Direction d, int32_t b, int width, View<const T> from, ptrdiff_t ahead,
                 T* const (&buffers)[2], T* to) const {
    for (int i = 0; i < first_; ++i) {
      const Stage<T>& stage = passes_.stages[i];
      T* const next = i + 1 == first_ ? to : buffers[(i + 1) % 2];
      const int32_t rest = stage.rest / blocks;
      Pass<T> pass{};
      pass.odd = &stage.odd;
      pass.radix = stage.radix;
      pass.p_count = pass.q_count = 1;
      pass.c_count = stage.before * width;
      pass.in_k = ptrdiff_t(rest) * stage.before * from.step;
      pass.out_k = pass.c_count;
      for (int32_t p = 0; p < rest; ++p) {
        pass.in = from.base + ptrdiff_t(p) * stage.before * from.step;
        pass.out = next + ptrdiff_t(p) * stage.radix * pass.c_count;
        pass.roots = stage.roots + (b + blocks * p) * root_numbers(stage);
        if (i == 0 && ahead)
          ask_for_rows(p + 1 < rest ? pass.in + from.step : from.base + ahead, stage.radix,
                       pass.in_k, width);
        run_stage(stage, d, Kind::inner, pass);
      }
      from = {next, width};
    }
  }

  const Passes<T>& passes_;
  Passes<T> other_;
  int first_ = 0;
};

// Whether a butterfly may reach that many rows of the grid, so far apart, on the spot: they are on
// the boundaries that it needs, and the ways of the first-level cache hold them.
template <class T, class A>
bool is_direct(const A& a, const Line<T>& line, int32_t rows, int32_t distance) {
  if (!is_row(a, line.across)) return false;
  const uintptr_t step = uintptr_t(line.step) * sizeof(Real<T>), bytes = step * distance;
  if (step % sizeof(T) != 0) return false;
  if (sizeof(T) == 16 && reinterpret_cast<uintptr_t>(row_of(a)) % 16 != 0) return false;
  constexpr uintptr_t way = 4096, ways = 8;
  const uintptr_t apart = bytes & (0 - bytes);
  return (apart < way ? rows * apart / way : rows) <= ways;
}

template <class T, Direction d, class A>
struct Bundle {
  Record* record;
  const Steps<T>* steps;
  Kernel kernel;
  Line<T> from, to;
  char* work;
  T* buffer;

  int32_t run(A x, A y, int width) const {
    if (steps) {
      run_steps(x, y, width);
      return JEX_DFT_SUCCESS;
    }
    const ptrdiff_t step = line_step<T>(from.n);
    copy_in(x, from, buffer, 1, step, width);
    for (int c = 0; c < width; ++c) {
      T* const line = buffer + c * step;
      if (const int32_t status = kernel(line, line, record, work)) return status;
    }
    copy_out(buffer, 1, step, y, to, width);
    return JEX_DFT_SUCCESS;
  }

 private:
  // A bundle's rows in the grid; copied, or used where they are.
  struct Rows {
    const Bundle& bundle;
    A x, y;
    int width;
    bool reads, writes;

    View<const T> take(int32_t b, View<T> rows) const {
      const A at = x.at(b * bundle.from.step);
      const Line<T> block = bundle.steps->taken(bundle.from);
      if (reads) return {row_of(at), block.step / 2};
      copy_in(at, block, rows.base, rows.step, 1, width);
      return {rows.base, rows.step};
    }
    View<T> target(int32_t q, View<T> rows) const {
      if (!writes) return rows;
      return {row_of(y.at(q * bundle.to.step)), bundle.steps->given(bundle.to).step / 2};
    }
    ptrdiff_t ahead() const {
      const Line<T>& line = bundle.from;
      const bool is_far = line.n * int64_t(line.step) * int64_t(sizeof(Real<T>)) >= far_bytes;
      return reads && is_far ? line.step / 2 : 0;
    }
    void give(int32_t q, View<const T> results) const {
      if (writes) return;
      const A at = y.at(q * bundle.to.step);
      copy_out(results.base, results.step, 1, at, bundle.steps->given(bundle.to), width);
    }
  };

  void run_steps(A x, A y, int width) const {
    const Real<T> scale = scale_of<T>(*record, d);
    const auto reads = [&](int rows, int32_t apart) { return is_direct<T>(x, from, rows, apart); };
    const auto writes = [&](int rows, int32_t apart) { return is_direct<T>(y, to, rows, apart); };
    if (from.n == wide_radix && reads(wide_radix, 1) && writes(wide_radix, 1))
      return run_wide_pass<T>(d, scale, {row_of(x), from.step / 2}, {row_of(y), to.step / 2},
                              width);
    steps->run(d, scale, width, buffer,
               Rows{*this, x, y, width, reads(steps->first_radix(), steps->first_distance()),
                    writes(steps->last_radix(), steps->last_distance())});
  }
};

}  // namespace jex::dft
