// Matrices as the transpositions see them: an element (i, k) is element k of line i. From delivers
// registers along its lines, To takes them along its own; both step about by lines and elements,
// and name the lines of a register block by their number r.
#pragma once

#include "simd/prefetch.h"
#include "trans/scale.h"

#include <stddef.h>
#include <type_traits>

namespace jex::trans {

// Distance of the elements of a line: 1 known to the compiler, or any number.
using Unit = std::integral_constant<ptrdiff_t, 1>;

template <class T_, class Scale, class Step = Unit>
struct From {
  using T = T_;
  static constexpr bool unit = std::is_same_v<Step, Unit>;
  const T* a;
  ptrdiff_t ld;
  Scale scale;
  Step step{};

  From at(ptrdiff_t i, ptrdiff_t k) const { return {a + i * ld + k * step, ld, scale, step}; }
  Lanes<T> load(int r) const { return scale(Lanes<T>::load(a + r * ld)); }
  Lanes<T> load_first() const { return scale(Lanes<T>::load_first(a)); }
};

// The sum of two matrices of one shape, each with its own factor.
template <class A, class B>
struct FromSum {
  using T = typename A::T;
  static constexpr bool unit = true;
  A a;
  B b;

  FromSum at(ptrdiff_t i, ptrdiff_t k) const { return {a.at(i, k), b.at(i, k)}; }
  Lanes<T> load(int r) const { return a.load(r) + b.load(r); }
  Lanes<T> load_first() const { return a.load_first() + b.load_first(); }
};

template <class T, class Step = Unit>
struct To {
  T* b;
  ptrdiff_t ld;
  Step step{};

  To at(ptrdiff_t i, ptrdiff_t k) const { return {b + i * ld + k * step, ld, step}; }
  void store(int r, Lanes<T> a) const { a.store(b + r * ld); }
  void store_first(Lanes<T> a) const { a.store_first(b); }
  void prefetch(int r) const { simd::prefetch(b + r * ld); }
};

// Writes past the caches; every register lies on a 16-byte boundary.
template <class T>
struct ToMemory : To<T> {
  ToMemory at(ptrdiff_t i, ptrdiff_t k) const { return {To<T>::at(i, k)}; }
  void store(int r, Lanes<T> a) const { simd::stream(a, this->b + r * this->ld); }
  void prefetch(int) const {}
};

// Adds what arrives to the elements of X and stores the sum.
template <class X, class T>
struct ToSum {
  X x;
  To<T> to;

  ToSum at(ptrdiff_t i, ptrdiff_t k) const { return {x.at(i, k), to.at(i, k)}; }
  void store(int r, Lanes<T> a) const { to.store(r, x.load(r) + a); }
  void store_first(Lanes<T> a) const { to.store_first(x.load_first() + a); }
  void prefetch(int r) const { to.prefetch(r); }
};

}  // namespace jex::trans
