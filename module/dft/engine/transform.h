// A transform of one length as a list of passes, or, where the caches are too small for that, as
// two such lists: n = n1 n2, the columns of an n1 x n2 matrix first, then its rows.
//
//        x, row by row             work, turned: a row for each j2   y, row by row
//      j2 = 0 .. n2-1              k1 = 0 .. n1-1, times w^(k1 j2)   k1 = 0 .. n1-1
//   j1 |  [n1-point, in    ]  ->   j2 |  [n2-point, in     ]  ->     k2 | y(k1 + n1 k2)
//      |  [bundles of columns]        |  [bundles of columns]            |
//
// (D. H. Bailey, "FFTs in External or Hierarchical Memory", Journal of Supercomputing 4, 1990). A
// bundle is as many columns as fill whole cache lines; its passes stay within buffers of its own.
#pragma once

#include "dft/engine/blocks.h"
#include "dft/engine/factor.h"
#include "dft/engine/odd.h"
#include "dft/engine/pass.h"

namespace jex::dft {

template <class T>
struct Stage {
  int radix, before, rest;         // R, s, m of a pass
  const PassKinds<T>* kernels[2];  // by direction; null for a radix without
  const Real<T>* roots;
  OddTable odd;
};

template <class T>
inline void run_stage(const Stage<T>& stage, Direction d, Kind kind, const Pass<T>& pass) {
  if (const PassKinds<T>* const kernels = stage.kernels[int(d)])
    kernels->function[int(kind)](pass);
  else
    run_odd_pass(pass, d, kind);
}

// Numbers of the roots that a column of a pass meets.
template <class T>
constexpr ptrdiff_t root_numbers(const Stage<T>& stage) {
  return (stage.radix - 1) * 2 * Lanes<Real<T>>::count;
}

// Passes for bundles of any width, or for one transform.
template <class T>
struct Passes {
  int length, count;
  bool has_first;  // the first pass is of that kind
  Stage<T> stages[most_factors];
};

template <class T>
struct Transform {
  int length;
  bool has_rows;
  Passes<T> columns, rows;  // columns alone: the whole length
  const T* twist;           // w^(k1 j2)
  int bundle;               // columns, or rows, taken at a time
};

// Bytes of a bundle's rows. The elements of a column of a large transform lie in pages of their
// own, and pages a power of two apart share few places of the table of addresses: most of them are
// looked up anew by each bundle, which is wide therefore, as far as the second-level cache has room
// for its buffers.
template <class T>
inline constexpr int narrow_bundle = 128 / sizeof(T);
template <class T>
constexpr int bundle_for(int32_t n, int longer) {
  constexpr int large = (2 << 20) / sizeof(T), buffer = (1 << 20) / sizeof(T);
  const int width = (n < large ? 2 : 4) * narrow_bundle<T>;
  const int most = buffer / longer / narrow_bundle<T> * narrow_bundle<T>;
  return most > width ? width : most > narrow_bundle<T> ? most : narrow_bundle<T>;
}

// Order of the roots w^(k1 j2): row by row, or as the last pass over each bundle of columns meets
// them.
enum class TwistOrder { rows, passes };

// Passes for n; false when there is no memory.
template <class T>
bool make_passes(Passes<T>& passes, int32_t n, Use use, Blocks& blocks);

// Tables for n, or for n1 n2 as two levels, from blocks. The record is zero before. False when
// there is no memory.
template <class T>
bool make_levels(Transform<T>& transform, int32_t n1, int32_t n2, TwistOrder order, Blocks& blocks);
template <class T>
bool make_transform(Transform<T>& transform, int32_t n, Blocks& blocks);

// Elements of a bundle: element c of index j is at base[j * step + c].
template <class E>
struct View {
  E* base;
  ptrdiff_t step;
};

// Factors w^(k1 j2) for the results of a bundle; twist_elements() tells how many.
template <class T>
struct Twist {
  const T* factors;
  ptrdiff_t turned;  // the distance of neighbours in the output, whose step is that of the index
};

// The passes between in and out go from buffer to buffer, the first one to buffers[0], which must
// not be in. The last one may work on the spot: out may be the buffer that it reads, or in where
// the view is the same.
template <class T>
void run_passes(const Passes<T>& passes, Direction d, Real<T> scale, View<const T> in, View<T> out,
                int width, T* const (&buffers)[2], const Twist<T>* twist = nullptr);

// A share of a piece of work: part of parts.
struct Share {
  int32_t part = 0, parts = 1;
  int64_t begin(int64_t units) const { return units * part / parts; }
  int64_t end(int64_t units) const { return units * (part + 1) / parts; }
};

// A share of one of the two levels, 0 the columns and 1 the rows, of a transform that has rows. All
// parts share the matrix between the levels, which begins the scratch memory of one of them.
template <class T>
void run_level(const Transform<T>& transform, Direction d, int level, Share share, const T* in,
               T* out, T* matrix, T* scratch, Real<T> scale);

// Elements of scratch memory that a run needs.
template <class T>
uint32_t scratch_elements(const Transform<T>& transform);

template <class T>
constexpr int rounded_width(int width) {
  return (width + simd::Lanes<T>::count - 1) / simd::Lanes<T>::count * simd::Lanes<T>::count;
}
// Elements of the twist of a bundle of n-point columns.
template <class T>
constexpr ptrdiff_t twist_elements(int n, int width) {
  return ptrdiff_t(n) * rounded_width<T>(width);
}

// y := scale times the transform of x, unit strides; in and out are the same or apart. The scratch
// memory is on a 64-byte boundary.
template <class T>
void run_transform(const Transform<T>& transform, Direction d, const T* in, T* out, T* scratch,
                   Real<T> scale);

}  // namespace jex::dft
