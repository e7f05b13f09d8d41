// Real transforms of odd composite lengths n = r m:
//
//   y(k1 + r k2) = sum over j2 of w_m^(j2 k2) [ w_n^(j2 k1) t(k1, j2) ]
//   t(k1, j2) = sum over j1 of w_r^(j1 k1) x(j2 + m j1)
//
// The columns j2 are real, so their results k1 and r - k1 are conjugate: rows k1 = 1 .. r/2 are
// complex transforms of length m and give the results whose index is k1 or -k1 modulo r; row 0 is
// real and of length m, the next level.
#pragma once

#include "dft/engine/transform.h"

namespace jex::dft {

constexpr int most_odd_levels = 20;

template <class T>
struct OddLevel {
  int radix, columns;    // r, m
  const Real<T>* twist;  // w_n^(j2 k1): for registers of columns, for each k1: cosines, sines
  Transform<T> row;
  Blocks blocks;  // of the tables
};

template <class T>
struct OddLevels {
  int32_t length, count, last;  // last: the length behind the levels, direct
  const T* last_roots;          // of the definition, where that is used
  OddLevel<T> level[most_odd_levels];
};

// Whether n is odd, with a prime up to 13 to take out, again and again until a length is left that
// is direct.
bool has_odd_levels(int32_t n);

// Null when there is no memory. The levels' own tables are released apart from blocks.
template <class T>
OddLevels<T>* make_odd_levels(int32_t n, Blocks& blocks);
template <class T>
void release_odd_levels(OddLevels<T>& levels);

// Elements of scratch memory that a run needs.
template <class T>
uint64_t odd_levels_elements(const OddLevels<T>& levels);

// Perm on the packed side; in and out are the same or apart. The scratch memory is on a 64-byte
// boundary.
template <class T>
void run_odd_levels(const OddLevels<T>& levels, Direction d, const Real<T>* in, Real<T>* out,
                    T* scratch, Real<T> scale);

}  // namespace jex::dft
