// How a product of real, complex or mixed matrices is made of real products.
//
// The micro-kernel knows only real lanes of rows and real columns. A scheme says what stands in the
// lanes of A, which real columns a column of B becomes, and what is done with their product v:
//
//   scheme    lanes of A          columns of B       added to C
//   real      a                   b                  v
//   complex   (re a, im a)        re b               v
//                                 im b               i v
//   mixed     a, real             re alpha b         (v, 0)
//                                 im alpha b         (0, v)
//   three     re a                re b               ( v, -v)
//   products  im a                im b               (-v, -v)
//             re a + im a         re b + im b        ( 0,  v)
//
// The last one makes three passes ("planes") with a quarter less arithmetic; its imaginary parts
// are exact only to eps times the largest part: N. J. Higham, "Stability of a Method for
// Multiplying Complex Matrices with Three Real Matrix Multiplications", SIAM J. Matrix Anal. Appl.
// 13 (1992), 681-687. Conjugation and alpha come in while packing.
#pragma once

#include "blas/gemm/operand.h"
#include "blas/level1/scalar.h"
#include "blas/level1/streams.h"
#include "simd/repeat.h"

namespace jex::blas {

using namespace simd;

// What becomes of C in the first block of steps; beta comes in there.
enum class First { overwrite, accumulate, general };

// A, B and C of one real type.
template <class T>
struct RealScheme {
  using A = T;
  using C = T;
  using R = T;
  static constexpr int planes = 1, parts = 1, lane_rows = Lanes<T>::count;
  T alpha, beta;

  template <int plane>
  Lanes<R> lane(const A* a, ptrdiff_t inc, bool) const {
    return (inc == 1 ? Lanes<R>::load(a) : Lanes<R>::gather(a, inc)) * Lanes<R>::all(alpha);
  }
  template <int plane, int part>
  R factor(T b, bool) const {
    return b;
  }
  template <int plane, int part, First now>
  [[gnu::always_inline]] void store(Lanes<R> v, T* c) const {
    if constexpr (now == First::accumulate) v = Lanes<R>::load(c) + v;
    if constexpr (now == First::general) v = v + Lanes<R>::load(c) * Lanes<R>::all(beta);
    v.store(c);
  }
};

template <class T>
struct ComplexBase {
  using C = T;
  using R = Real<T>;
  T alpha;
  Factor<T> beta;

  explicit ComplexBase(T alpha, T beta = {}) : alpha(alpha), beta(beta) {}
  static R sign(bool conjugated) { return conjugated ? R(-1) : R(1); }
  Lanes<T> scaled(Lanes<T> a, bool conjugated) const {
    if (conjugated) a = conjugate(a);
    return is_one(alpha) ? a : a * Factor<T>(alpha);
  }
  // What v is added to.
  template <First now>
  [[gnu::always_inline]] Lanes<R> old(const C* c) const {
    if constexpr (now == First::overwrite) return Lanes<R>::zero();
    const auto c_old = Lanes<T>::load(c);
    return now == First::general ? (c_old * beta).parts : c_old.parts;
  }
  // C := C + (re v, im v) for lane_rows = Lanes<R>::count elements, v times the signs of the parts.
  template <int re, int im, First now>
  [[gnu::always_inline]] void spread(Lanes<R> v, C* c) const {
    const auto signs = Lanes<T>::all({R(re), R(im)}).parts;
    constexpr unsigned kept = (re ? 5u : 0u) | (im ? 10u : 0u);
    const auto add = [&](C* c, Lanes<R> doubled) {
      const auto term = re && im ? doubled * signs : keep<kept>(doubled);
      (old<now>(c) + term).store(&c->re);
    };
    add(c, low_in_turn(v, v));
    add(c + Lanes<T>::count, high_in_turn(v, v));
  }
};

template <class T>
struct ComplexScheme : ComplexBase<T> {
  using A = T;
  using typename ComplexBase<T>::R;
  static constexpr int planes = 1, parts = 2, lane_rows = Lanes<T>::count;
  bool conjugates_b;

  ComplexScheme(T alpha, T beta, bool conjugates_b)
      : ComplexBase<T>(alpha, beta), conjugates_b(conjugates_b) {}
  template <int plane>
  Lanes<R> lane(const A* a, ptrdiff_t inc, bool conjugated) const {
    return this->scaled(inc == 1 ? Lanes<T>::load(a) : Lanes<T>::gather(a, inc), conjugated).parts;
  }
  // B is read as it is; sums of its imaginary parts change their sign if it is conjugated.
  template <int plane, int part>
  R factor(T b, bool) const {
    return part == 0 ? b.re : b.im;
  }
  template <int plane, int part, First now>
  [[gnu::always_inline]] void store(Lanes<R> v, T* c) const {
    const auto old = this->template old<now>(c);
    if (part == 1 && conjugates_b) v = Lanes<R>::zero() - v;
    (part == 0 ? old + v : add_alternating(old, swap_parts(v))).store(&c->re);
  }
};

// A real, B and C complex.
template <class T>
struct MixedScheme : ComplexBase<T> {
  using typename ComplexBase<T>::R;
  using ComplexBase<T>::ComplexBase;
  using A = R;
  static constexpr int planes = 1, parts = 2, lane_rows = Lanes<R>::count;

  template <int plane>
  Lanes<R> lane(const A* a, ptrdiff_t inc, bool) const {
    return inc == 1 ? Lanes<R>::load(a) : Lanes<R>::gather(a, inc);
  }
  template <int plane, int part>
  R factor(T b, bool conjugated) const {
    b.im *= this->sign(conjugated);
    if (!is_one(this->alpha)) b = multiply(b, this->alpha);
    return part == 0 ? b.re : b.im;
  }
  template <int plane, int part, First now>
  [[gnu::always_inline]] void store(Lanes<R> v, T* c) const {
    this->template spread<part == 0, part == 1, now>(v, c);
  }
};

template <class T>
struct ThreeProducts : ComplexBase<T> {
  using A = T;
  using typename ComplexBase<T>::R;
  using ComplexBase<T>::ComplexBase;
  static constexpr int planes = 3, parts = 1, lane_rows = Lanes<R>::count;

  template <int plane>
  Lanes<R> lane(const A* a, ptrdiff_t inc, bool conjugated) const {
    constexpr int half = Lanes<T>::count;
    const auto load = [&](const A* p) {
      return this->scaled(inc == 1 ? Lanes<T>::load(p) : Lanes<T>::gather(p, inc), conjugated)
          .parts;
    };
    const Lanes<R> low = load(a), high = load(a + half * inc);
    if constexpr (plane == 2)
      return parts_of<0>(low, high) + parts_of<1>(low, high);
    else
      return parts_of<plane>(low, high);
  }
  template <int plane, int part>
  R factor(T b, bool conjugated) const {
    const R im = b.im * this->sign(conjugated);
    return plane == 0 ? b.re : plane == 1 ? im : b.re + im;
  }
  template <int plane, int part, First now>
  [[gnu::always_inline]] void store(Lanes<R> v, T* c) const {
    if constexpr (plane == 0)
      this->template spread<1, -1, now>(v, c);
    else if constexpr (plane == 1)
      this->template spread<-1, -1, now>(v, c);
    else
      this->template spread<0, 1, now>(v, c);
  }
};

}  // namespace jex::blas
