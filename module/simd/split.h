// Complex lanes with their parts in registers of their own: as many elements as a register has
// reals.
//
//   double   re0 re1 | im0 im1        float   re0 re1 re2 re3 | im0 im1 im2 im3
//
// A quarter turn costs nothing and a product no shuffles. In memory such a block takes the place of
// its elements, so that positions mean the same in both forms as long as they are multiples of a
// block.
#pragma once

#include "simd/complex.h"

namespace jex::simd {

template <class T>
struct Split {
  using Parts = Lanes<Real<T>>;
  static constexpr int count = Parts::count;
  Parts re, im;

  friend Split operator+(Split a, Split b) { return {a.re + b.re, a.im + b.im}; }
  friend Split operator-(Split a, Split b) { return {a.re - b.re, a.im - b.im}; }
};

template <class T>
struct Element<Split<T>> : Element<T> {};

// sign i a, not yet computed: a sum with it takes the parts crosswise.
template <int sign, class T>
struct Turned {
  Split<T> a;

  operator Split<T>() const {
    constexpr auto zero = Lanes<Real<T>>::zero;
    return Split<T>{zero(), zero()} + *this;
  }
  friend Split<T> operator+(Split<T> b, Turned t) {
    if constexpr (sign > 0)
      return {b.re - t.a.im, b.im + t.a.re};
    else
      return {b.re + t.a.im, b.im - t.a.re};
  }
  friend Split<T> operator-(Split<T> b, Turned t) { return b + Turned<-sign, T>{t.a}; }
};

template <int sign, class T>
[[gnu::always_inline]] inline Turned<sign, T> turned(Split<T> a) {
  return {a};
}
template <class T>
[[gnu::always_inline]] inline Split<T> negated(Split<T> a) {
  const auto zero = Lanes<Real<T>>::zero();
  return {zero - a.re, zero - a.im};
}
template <class T>
[[gnu::always_inline]] inline Split<T> times(Split<T> a, Real<T> c, Real<T> s) {
  using P = Lanes<Real<T>>;
  return {a.re * P::all(c) - a.im * P::all(s), a.im * P::all(c) + a.re * P::all(s)};
}
template <class T>
[[gnu::always_inline]] inline Split<T> scaled(Split<T> a, Real<T> factor) {
  const auto f = Lanes<Real<T>>::all(factor);
  return {a.re * f, a.im * f};
}

// a w (sign -1) or a conj(w) (sign 1), where w = c - i s stands in memory as a block c | s.
template <int sign, class T>
[[gnu::always_inline]] inline Split<T> times_root(Split<T> a, const Real<T>* w) {
  using P = Lanes<Real<T>>;
  const P c = P::load_aligned(w), s = P::load_aligned(w + P::count);
  if constexpr (sign < 0)
    return {a.re * c + a.im * s, a.im * c - a.re * s};
  else
    return {a.re * c - a.im * s, a.im * c + a.re * s};
}

// Elements side by side as users have them, at addresses that suit load_elements().
template <class T>
[[gnu::always_inline]] inline Split<T> split_elements(const T* p) {
  constexpr int half = Split<T>::count / 2;
  const auto a = load_elements(p).parts, b = load_elements(p + half).parts;
  return {parts_of<0>(a, b), parts_of<1>(a, b)};
}
template <class T>
[[gnu::always_inline]] inline void join_elements(Split<T> a, T* p) {
  store_elements(Lanes<T>{low_in_turn(a.re, a.im)}, p);
  store_elements(Lanes<T>{high_in_turn(a.re, a.im)}, p + Split<T>::count / 2);
}

// Blocks, on 16-byte boundaries.
template <class T>
[[gnu::always_inline]] inline Split<T> load_block(const T* p) {
  using P = Lanes<Real<T>>;
  return {P::load_aligned(&p->re), P::load_aligned(&p->re + P::count)};
}
template <class T>
[[gnu::always_inline]] inline void store_block(Split<T> a, T* p) {
  a.re.store_aligned(&p->re);
  a.im.store_aligned(&p->re + Split<T>::count);
}

// Elements at places of their own, a distance apart.
template <class T>
[[gnu::always_inline]] inline void scatter_elements(Split<T> a, T* p, ptrdiff_t distance) {
  scatter_elements(Lanes<T>{low_in_turn(a.re, a.im)}, p, distance);
  scatter_elements(Lanes<T>{high_in_turn(a.re, a.im)}, p + Split<T>::count / 2 * distance,
                   distance);
}

}  // namespace jex::simd
