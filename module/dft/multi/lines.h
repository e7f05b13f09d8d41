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

// A share of a piece of work: part of parts.
struct Share {
  int32_t part = 0, parts = 1;
  int64_t begin(int64_t units) const { return units * part / parts; }
  int64_t end(int64_t units) const { return units * (part + 1) / parts; }
};

// Bytes of buffers for lines of that length, beside the work area of the kernel.
template <class T>
uint64_t bundle_bytes(int32_t n);

// The transforms along dimension i of the grid, on the kernel and the plan of its record. from and
// to are the same or apart; work: the kernel's area, then the buffers.
template <class T, Direction d, class A>
int32_t run_lines(Record* record, const Grid& grid, int i, A from, A to, char* work, Share share);

}  // namespace jex::dft
