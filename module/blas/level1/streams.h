// Streams: the vectors of a level-1 kernel, and the loop that walks them together.
//
// A kernel is a body on lanes; for_each feeds it. All increments 1: the elements pass in registers,
// after peeling to a 16-byte boundary of the stream written last. Otherwise, one element at a time
// in the order of the walk, so that a repeated or zero increment sees every earlier result.
// The body works on each element alone: both ways give the same bits.
#pragma once

#include "simd/lanes.h"

namespace jex::blas {

using simd::Factor;
using simd::is_complex;
using simd::Lanes;
using simd::pinned;
using simd::Real;

// First element of a walk of n elements: a negative increment starts at the far end.
template <class P>
inline P start_of(P p, int n, int inc) {
  return inc < 0 ? p + (1 - n) * inc : p;
}

template <class T>
struct In {
  static constexpr bool written = false;
  const T* p;
  int inc = 1;

  Lanes<T> load(int i) const { return Lanes<T>::load(p + i); }
  Lanes<T> load_first(int i) const { return Lanes<T>::load_first(p + i * inc); }
  void store(Lanes<T>, int) const {}
  void store_first(Lanes<T>, int) const {}
  In from_start(int n) const { return {start_of(p, n, inc), inc}; }
};

template <class T>
struct InOut {
  static constexpr bool written = true;
  T* p;
  int inc = 1;

  Lanes<T> load(int i) const { return Lanes<T>::load(p + i); }
  Lanes<T> load_first(int i) const { return Lanes<T>::load_first(p + i * inc); }
  void store(Lanes<T> a, int i) const { a.store(p + i); }
  void store_first(Lanes<T> a, int i) const { a.store_first(p + i * inc); }
  InOut from_start(int n) const { return {start_of(p, n, inc), inc}; }
};

// A stream that is only written; the body finds zeros in it.
template <class T>
struct Out : InOut<T> {
  Lanes<T> load(int) const { return Lanes<T>::zero(); }
  Lanes<T> load_first(int) const { return Lanes<T>::zero(); }
  Out from_start(int n) const { return {InOut<T>::from_start(n)}; }
};

// Elements named by 1-based indices. Never unit: the walk is element by element.
template <class Stream>
struct Indexed : Stream {
  const jex_int* index;

  Indexed(Stream dense, const jex_int* index) : Stream(dense), index(index) { this->inc = 0; }
  auto load_first(int i) const { return dense().load_first(index[i] - 1); }
  template <class L>
  void store_first(L a, int i) const {
    dense().store_first(a, index[i] - 1);
  }
  Indexed from_start(int) const { return *this; }

 private:
  Stream dense() const {
    Stream s = *this;
    s.inc = 1;
    return s;
  }
};

// Elements before the first 16-byte boundary at or after p, at most n; 0 where steps of T miss it.
template <class T>
inline int elements_to_boundary(const T* p, int n) {
  const unsigned bytes = -reinterpret_cast<uintptr_t>(p) & 15;
  if (bytes % sizeof(T) != 0) return 0;
  const int elements = bytes / sizeof(T);
  return elements < n ? elements : n;
}

template <class Body, class... S>
[[gnu::always_inline]] inline void step(Body& body, int i, S... s) {
  [&](auto... lanes) {
    body(lanes...);
    (s.store(lanes, i), ...);
  }(s.load(i)...);
}

template <class Body, class... S>
[[gnu::always_inline]] inline void step_first(Body& body, int i, S... s) {
  [&](auto... lanes) {
    body(lanes...);
    (s.store_first(lanes, i), ...);
  }(s.load_first(i)...);
}

template <class T, class Body, class... S>
[[gnu::always_inline]] inline void for_each_unit(int n, Body body, S... s) {
  constexpr int width = Lanes<T>::count;
  int i = 0;
  int peel = 0;
  ((peel = S::written ? elements_to_boundary(s.p, n) : peel), ...);
  for (; i < peel; ++i) step_first(body, i, s...);
  for (; i + 8 * width <= n; i += 8 * width) {
#pragma GCC unroll 8
    for (int k = 0; k < 8; ++k) step(body, i + k * width, s...);
  }
  for (; i + width <= n; i += width) step(body, i, s...);
  for (; i < n; ++i) step_first(body, i, s...);
}

template <class Body, class... S>
[[gnu::always_inline]] inline void for_each_element(int n, Body body, S... s) {
#pragma GCC unroll 2
  for (int i = 0; i < n; ++i) step_first(body, i, s...);
}

// body(lanes of each stream, by reference), for n elements of type T.
template <class T, class Body, class... S>
inline void for_each(int n, Body body, S... s) {
  if (n < 1) return;
  if (((s.inc == 1) && ...))
    for_each_unit<T>(n, body, s...);
  else
    for_each_element(n, body, s.from_start(n)...);
}

}  // namespace jex::blas
