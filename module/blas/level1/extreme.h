// First index of the largest or smallest magnitude.
//
// The rule is that of a walk: the running extreme is replaced unless it is "greater than or equal
// to the new magnitude" (largest; for the smallest the other way round). Ties keep the lower index;
// a NaN replaces whatever it meets and is replaced by the element after it, as every comparison
// with it is false.
//
// The fast path takes blocks of 16 registers. A block in which no magnitude passes the running
// extreme and none is NaN costs one comparison; a block that does is only remembered, and searched
// for its first extreme at the end. A block with a NaN is walked.
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

template <class R>
inline R magnitude(R a) {
  return std::is_same_v<R, float> ? __builtin_fabsf(a) : __builtin_fabs(a);
}
template <class T>
  requires is_complex<T>
inline Real<T> magnitude(T a) {
  return magnitude(a.re) + magnitude(a.im);
}

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

template <Extreme extreme, class T>
inline int index_unit(int n, const T* x) {
  using R = Real<T>;
  constexpr int width = Lanes<R>::count, block = 16 * width;
  RunningExtreme<extreme, R> running{magnitude(x[0]), 0};
  int i = 1;
  for (; i + block <= n; i += block) {
    Lanes<R> m[4], nan = Lanes<R>::zero();
#pragma GCC unroll 4
    for (int k = 0; k < 16; k += 2) {
      const Lanes<R> a = magnitudes(x + i + k * width), b = magnitudes(x + i + (k + 1) * width);
      nan = nan | unordered(a, b);
      m[k % 4] = k < 4 ? a : more_extreme<extreme>(m[k % 4], a);
      m[k % 4 + 1] = k < 4 ? b : more_extreme<extreme>(m[k % 4 + 1], b);
    }
    const Lanes<R> lanes = more_extreme<extreme>(more_extreme<extreme>(m[0], m[1]),
                                                 more_extreme<extreme>(m[2], m[3]));
    const Lanes<R> value = Lanes<R>::all(running.value);
    const Lanes<R> passed = extreme == Extreme::largest ? not_greater_equal(value, lanes)
                                                        : not_greater_equal(lanes, value);
    if (!any(nan | passed)) [[likely]]
      continue;
    if (any(nan)) {
      for (int k = i; k < i + block; ++k) running.offer(magnitude(x[k]), k);
    } else {
      R each[width];
      lanes.store(each);
      RunningExtreme<extreme, R> best{each[0], 0};
      for (int k = 1; k < width; ++k) best.offer(each[k], k);
      running = {best.value, i};
    }
  }
  for (; i < n; ++i) running.offer(magnitude(x[i]), i);
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
