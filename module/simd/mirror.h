// Real lanes for loops that meet in the middle of an array, or that part it into even and odd
// elements; and the one-lane twin that ends such loops.
#pragma once

#include "simd/lanes.h"
#include "simd/repeat.h"

namespace jex::simd {

// The lanes in reverse order.
inline Lanes<float> reversed(Lanes<float> a) {
  return {_mm_shuffle_ps(a.v, a.v, _MM_SHUFFLE(0, 1, 2, 3))};
}
inline Lanes<double> reversed(Lanes<double> a) { return swap_parts(a); }

// All signs changed, zeros too.
inline Lanes<float> negated(Lanes<float> a) { return {_mm_xor_ps(a.v, _mm_set1_ps(-0.f))}; }
inline Lanes<double> negated(Lanes<double> a) { return {_mm_xor_pd(a.v, _mm_set1_pd(-0.))}; }

// Lane i becomes the sum of the lanes up to i; the last lane in all places.
inline Lanes<float> running_sum(Lanes<float> a) {
  const auto up = [](__m128 x, auto bytes) {
    return _mm_castsi128_ps(_mm_slli_si128(_mm_castps_si128(x), decltype(bytes)::value));
  };
  a.v = _mm_add_ps(a.v, up(a.v, std::integral_constant<int, 4>{}));
  a.v = _mm_add_ps(a.v, up(a.v, std::integral_constant<int, 8>{}));
  return a;
}
inline Lanes<double> running_sum(Lanes<double> a) {
  return {_mm_add_pd(a.v, _mm_unpacklo_pd(_mm_setzero_pd(), a.v))};
}
inline Lanes<float> last_in_all(Lanes<float> a) {
  return {_mm_shuffle_ps(a.v, a.v, _MM_SHUFFLE(3, 3, 3, 3))};
}
inline Lanes<double> last_in_all(Lanes<double> a) { return {_mm_unpackhi_pd(a.v, a.v)}; }

// One element with the interface of many.
template <class R>
struct Single {
  static constexpr int count = 1;
  R v;

  static Single all(R a) { return {a}; }
  static Single load(const R* p) { return {*p}; }
  void store(R* p) const { *p = v; }

  friend Single operator+(Single a, Single b) { return {a.v + b.v}; }
  friend Single operator-(Single a, Single b) { return {a.v - b.v}; }
  friend Single operator*(Single a, Single b) { return {a.v * b.v}; }
  friend Single reversed(Single a) { return a; }
  friend Single negated(Single a) { return {-a.v}; }
  friend Single running_sum(Single a) { return a; }
  friend Single last_in_all(Single a) { return a; }
};

// Elements 0, 2, .. and 1, 3, .. of two registers full.
template <class R>
[[gnu::always_inline]] inline void load_pairs(const R* p, Lanes<R>& even, Lanes<R>& odd) {
  const Lanes<R> a = Lanes<R>::load(p), b = Lanes<R>::load(p + Lanes<R>::count);
  even = parts_of<0>(a, b);
  odd = parts_of<1>(a, b);
}
template <class R>
[[gnu::always_inline]] inline void store_pairs(Lanes<R> even, Lanes<R> odd, R* p) {
  low_in_turn(even, odd).store(p);
  high_in_turn(even, odd).store(p + Lanes<R>::count);
}
template <class R>
inline void load_pairs(const R* p, Single<R>& even, Single<R>& odd) {
  even = {p[0]};
  odd = {p[1]};
}
template <class R>
inline void store_pairs(Single<R> even, Single<R> odd, R* p) {
  p[0] = even.v;
  p[1] = odd.v;
}

// body(lanes, i) for i = 0, w, 2 w, .. while whole registers of w fit into n, then one by one. The
// first argument is an object of the lane type, for its type alone.
template <class R, class Body>
[[gnu::always_inline]] inline void in_lanes(int n, Body body) {
  int i = 0;
  for (; i + Lanes<R>::count <= n; i += Lanes<R>::count) body(Lanes<R>{}, i);
  // No loop: the compiler would vectorise it for lengths that it never has.
  unrolled<Lanes<R>::count - 1>([&](auto) {
    if (i < n) body(Single<R>{}, i++);
  });
}

}  // namespace jex::simd
