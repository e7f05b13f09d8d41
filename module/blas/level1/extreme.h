// First index of the largest or smallest magnitude.
//
// The rule is that of a walk: the running extreme is replaced unless it is "greater than or equal
// to the new magnitude" (largest; for the smallest the other way round). Ties keep the lower index;
// a NaN replaces whatever it meets and is replaced by the element after it, as every comparison
// with it is false.
//
// The fast path takes blocks of 16 registers of magnitudes. A block in which no magnitude passes
// the running extreme and none is NaN costs one comparison; a block that does is only remembered,
// and searched for its first extreme at the end. A block with a NaN is walked.
#pragma once

#include "blas/level1/sums.h"

namespace jex::blas {

enum class Extreme { largest, smallest };

// Magnitudes of the elements from p on that fill one register: |x|, or |re| + |im|.
template <class R>
inline Lanes<R> magnitudes(const R* p) {
  return abs(Lanes<R>::load(p));
}
template <class T>
requires is_complex<T>
inline Lanes<Real<T>> magnitudes(const T* p) {
  return simd::add_parts(abs(Lanes<T>::load(p).parts),
                         abs(Lanes<T>::load(p + Lanes<T>::count).parts));
}

inline float magnitude(float a) { return __builtin_fabsf(a); }
inline double magnitude(double a) { return __builtin_fabs(a); }
template <class T>
requires is_complex<T>
inline Real<T> magnitude(T a) { return magnitude(a.re) + magnitude(a.im); }

template <Extreme extreme, class R>
struct RunningExtreme {
  R value;
  int index;  // 0-based; the element itself, or the start of the block in which it comes first

  static bool passes(R value, R candidate) {
    return extreme == Extreme::largest ? !(value >= candidate) : !(candidate >= value);
  }
  void offer(R candidate, int i) {
    if (passes(value, candidate)) value = candidate, index = i;
  }
};

template <Extreme extreme, class R>
inline Lanes<R> more_extreme(Lanes<R> a, Lanes<R> b) {
  return extreme == Extreme::largest ? max(a, b) : min(a, b);
}

// Extremes of each lane over a block that starts at x, NaN passed over, and a mask of the lanes
// that met a NaN.
template <class R>
struct BlockExtremes {
  static constexpr int width = Lanes<R>::count, block = 16 * width;
  Lanes<R> lanes, nan;
};

template <Extreme extreme, class T, class R = Real<T>>
[[gnu::always_inline]] inline BlockExtremes<R> block_extremes(const T* x) {
  constexpr int width = BlockExtremes<R>::width;
  Lanes<R> m0 = magnitudes(x), m1 = magnitudes(x + width), nan = unordered(m0, m1);
#pragma GCC unroll 8
  for (int k = 2 * width; k < BlockExtremes<R>::block; k += 2 * width) {
    const Lanes<R> a = magnitudes(x + k), b = magnitudes(x + k + width);
    nan = pinned(nan | unordered(a, b));
    m0 = pinned(more_extreme<extreme>(m0, a));
    m1 = pinned(more_extreme<extreme>(m1, b));
  }
  return {more_extreme<extreme>(m0, m1), nan};
}

template <Extreme extreme, class T>
inline int index_unit(int n, const T* x) {
  using R = Real<T>;
  constexpr int width = Lanes<R>::count, block = BlockExtremes<R>::block;
  RunningExtreme<extreme, R> running{magnitude(x[0]), 0};
  // Takes the block from start on. Its elements before seen have been taken already: none of them
  // can pass again, so that what passes is new.
  const auto take_block = [&](int start, int seen) __attribute__((always_inline)) {
    const auto [lanes, nan] = block_extremes<extreme>(x + start);
    const Lanes<R> value = Lanes<R>::all(running.value);
    const Lanes<R> passed = extreme == Extreme::largest ? not_greater_equal(value, lanes)
                                                        : not_greater_equal(lanes, value);
    if (!any(nan | passed)) [[likely]]
      return;
    if (any(nan)) {
      for (int k = seen; k < start + block; ++k) running.offer(magnitude(x[k]), k);
    } else {
      R each[width];
      lanes.store(each);
      RunningExtreme<extreme, R> best{each[0], 0};
      for (int k = 1; k < width; ++k) best.offer(each[k], k);
      running = {best.value, start};
    }
  };
  // The second block goes back to a 16-byte boundary, the last one to the end of the vector.
  int seen = 1;
  if (n >= block) {
    take_block(0, seen);
    seen = block;
    for (int i = elements_to_boundary(x, block); i + block <= n; i += block) {
      if (i > 0) take_block(i, seen);
      seen = i + block;
    }
    if (seen < n) take_block(n - block, seen);
  } else {
    for (; seen < n; ++seen) running.offer(magnitude(x[seen]), seen);
  }
  if (running.value == running.value)
    while (magnitude(x[running.index]) != running.value) ++running.index;
  return running.index + 1;
}

template <Extreme extreme, class T>
inline int index_of(int n, const T* x, int incx) {
  if (n < 1 || incx < 1) return 0;
  if (n == 1) return 1;
  if (incx == 1) return index_unit<extreme>(n, x);
  RunningExtreme<extreme, Real<T>> running{magnitude(x[0]), 0};
#pragma GCC unroll 2
  for (int i = 1; i < n; ++i) running.offer(magnitude(x[i * incx]), i);
  return running.index + 1;
}

}  // namespace jex::blas
