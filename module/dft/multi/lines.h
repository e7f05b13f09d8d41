// All lines of a grid along one of its dimensions, bundle by bundle: neighbouring lines are copied
// side by side, transformed together and put back, so that every cache line that is touched is used
// whole and no two elements of a line meet in one place of the caches.
//
//        grid                          bundle (n x width)                grid
//      j  | . . x x x x . .            x x x x                      j  | . . y y y y . .
//      |  | . . x x x x . .     ->     x x x x   passes, n-point -> |  | . . y y y y . .
//      v  | . . x x x x . .            x x x x                      v  | . . y y y y . .
//           across ->
//
// Where the engine has no passes for the length, each line of the bundle is laid out by itself.
#pragma once

#include "dft/engine/ahead.h"
#include "dft/engine/kernels.h"
#include "dft/engine/strided.h"

namespace jex::dft {

constexpr int most_dimensions = 7;

// Complex elements as numbers lie: both parts side by side, or in two arrays. Indices and strides
// count numbers.
template <class T>
struct Pairs {
  using R = Real<T>;
  static constexpr int unit = 2;
  R* base;
  Pairs at(ptrdiff_t i) const { return {base + i}; }
  T get(ptrdiff_t i) const { return {base[i], base[i + 1]}; }
  void put(ptrdiff_t i, T v) const { base[i] = v.re, base[i + 1] = v.im; }
};
template <class T>
struct Parts {
  using R = Real<T>;
  static constexpr int unit = 1;
  R *re, *im;
  Parts at(ptrdiff_t i) const { return {re + i, im + i}; }
  T get(ptrdiff_t i) const { return {re[i], im[i]}; }
  void put(ptrdiff_t i, T v) const { re[i] = v.re, im[i] = v.im; }
};

// Strides in numbers. Dimension 0 is the fastest one.
struct Grid {
  int rank;
  int32_t n[most_dimensions];
  ptrdiff_t from[most_dimensions], to[most_dimensions];
};

// What a walk repeats: all places along some dimensions of a grid, the first of them fastest.
class Units {
 public:
  explicit Units(const Grid& grid) : grid_(grid) {}
  void add(int k) {
    dimension_[dimensions_++] = k;
    count_ *= grid_.n[k];
  }
  int64_t count() const { return count_; }
  bool is_empty() const { return dimensions_ == 0; }

  // Distances of the place from the first one.
  ptrdiff_t from = 0, to = 0;
  void seek(int64_t unit) {
    from = to = 0;
    for (int i = 0; i < dimensions_; ++i) {
      index_[i] = int32_t(unit % grid_.n[dimension_[i]]);
      unit /= grid_.n[dimension_[i]];
      move(i, index_[i]);
    }
  }
  // To the unit that follows.
  void next() {
    for (int i = 0; i < dimensions_; ++i) {
      move(i, 1);
      if (++index_[i] < grid_.n[dimension_[i]]) return;
      move(i, -index_[i]);
      index_[i] = 0;
    }
  }

 private:
  void move(int i, int32_t steps) {
    from += steps * grid_.from[dimension_[i]];
    to += steps * grid_.to[dimension_[i]];
  }
  const Grid& grid_;
  int64_t count_ = 1;
  int dimensions_ = 0;
  int dimension_[most_dimensions] = {};
  int32_t index_[most_dimensions] = {};
};

// line(from, to) for a share of the rows along dimension 0, until one fails.
template <class Line>
int32_t for_rows(const Grid& grid, Share share, Line line) {
  Units units(grid);
  for (int k = 1; k < grid.rank; ++k) units.add(k);
  const int64_t begin = share.begin(units.count()), end = share.end(units.count());
  units.seek(begin);
  for (int64_t u = begin; u < end; ++u, units.next())
    if (const int32_t status = line(units.from, units.to)) return status;
  return JEX_DFT_SUCCESS;
}

// Bytes of buffers for lines of a record's length, beside the work area of its kernel, and where
// they are.
template <class T>
uint64_t bundle_bytes(const Record& record);
template <class T>
T* bundle_buffer(const Record& record, char* work) {
  char* const end = work + get(record, work_size);
  const auto place = reinterpret_cast<uintptr_t>(end - bundle_bytes<T>(record));
  return reinterpret_cast<T*>((place + 63) & ~uintptr_t(63));
}

// Results from this size on go past the caches, which could not hold them until they are read.
constexpr int64_t streamed_bytes = 16 << 20;

// line(from, to) for a share of the rows, with results of so many numbers side by side at to, and
// about as many operands. Those of far rows are asked for a row before. Large results, not in the
// place of their operands, are put together in the bundle's buffer.
template <class T, class Line>
int32_t for_result_rows(const Record& record, const Grid& grid, Share share, const Real<T>* x,
                        Real<T>* y, int32_t numbers, char* work, Line line) {
  using R = Real<T>;
  using V = Lanes<R>;
  int64_t bytes = numbers * int64_t(sizeof(R)) / share.parts;
  uintptr_t places = reinterpret_cast<uintptr_t>(y);
  for (int k = 1; k < grid.rank; ++k) {
    bytes *= grid.n[k];
    places |= uintptr_t(grid.to[k]) * sizeof(R);
  }
  const bool is_far = bytes >= far_bytes;
  const auto run = [=](ptrdiff_t i, R* to) {
    if (is_far) ask_for_rows(x + i + grid.from[1], 1, 0, numbers);
    return line(x + i, to);
  };
  if (bytes < streamed_bytes || places % 16 != 0 || x == y)
    return for_rows(grid, share, [=](ptrdiff_t i, ptrdiff_t o) { return run(i, y + o); });
  R* const row = reinterpret_cast<R*>(bundle_buffer<T>(record, work));
  const int32_t status = for_rows(grid, share, [=](ptrdiff_t i, ptrdiff_t o) {
    const int32_t status = run(i, row);
    int32_t c = 0;
    for (; c + V::count <= numbers; c += V::count)
      simd::stream(V::load_aligned(row + c), y + o + c);
    for (; c < numbers; ++c) y[o + c] = row[c];
    return status;
  });
  simd::order_streams();
  return status;
}

// The transforms along dimension i of the grid, on the kernel and the plan of its record. from and
// to are the same or apart; work: the kernel's area, then the buffers.
template <class T, Direction d, class A>
int32_t run_lines(Record* record, const Grid& grid, int i, A from, A to, char* work, Share share);

}  // namespace jex::dft
