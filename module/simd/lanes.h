// Lanes: one 128-bit register seen as a vector of float, double or complex elements.
//
//   Lanes<float>         f0 f1 f2 f3        Lanes<jex_scomplex>  re0 im0 re1 im1
//   Lanes<double>        d0 d1              Lanes<jex_dcomplex>  re0 im0
//
// This is the only place with intrinsics. The same members work on part of a register: load_first
// fills the first element and clears the others, so that the last elements of a vector run through
// the same code, and round the same way, as the full lanes.
//
// Loads and stores take any address: an unaligned access costs nothing by itself, only when it
// crosses a cache line, which the callers avoid by peeling.
#pragma once

#include <emmintrin.h>
#include <pmmintrin.h>
#include <type_traits>

#include <jex/types.h>

namespace jex::simd {

template <class T>
struct Element {
  using Real = T;
  static constexpr bool complex = false;
};
template <>
struct Element<jex_scomplex> {
  using Real = float;
  static constexpr bool complex = true;
};
template <>
struct Element<jex_dcomplex> {
  using Real = double;
  static constexpr bool complex = true;
};
template <class T>
using Real = typename Element<T>::Real;
template <class T>
inline constexpr bool is_complex = Element<T>::complex;

template <class T>
struct Lanes;

template <>
struct Lanes<float> {
  static constexpr int count = 4;
  __m128 v;

  static Lanes zero() { return {_mm_setzero_ps()}; }
  static Lanes all(float a) { return {_mm_set1_ps(a)}; }
  static Lanes load(const float* p) { return {_mm_loadu_ps(p)}; }
  static Lanes load_aligned(const float* p) { return {_mm_load_ps(p)}; }
  static Lanes load_all(const float* p) { return {_mm_load1_ps(p)}; }
  static Lanes load_first(const float* p) { return {_mm_load_ss(p)}; }
  static Lanes load_two(const float* p) {
    return {_mm_loadl_pi(_mm_setzero_ps(), (const __m64*)p)};
  }
  static Lanes gather_two(const float* p, int inc) {
    return {_mm_unpacklo_ps(_mm_load_ss(p), _mm_load_ss(p + inc))};
  }
  static Lanes gather(const float* p, int inc) {
    return {_mm_movelh_ps(gather_two(p, inc).v, gather_two(p + 2 * inc, inc).v)};
  }
  void store(float* p) const { _mm_storeu_ps(p, v); }
  void store_aligned(float* p) const { _mm_store_ps(p, v); }
  void store_first(float* p) const { _mm_store_ss(p, v); }
  void scatter(float* p, int inc) const {
    _mm_store_ss(p, v);
    _mm_store_ss(p + inc, _mm_shuffle_ps(v, v, 1));
    _mm_store_ss(p + 2 * inc, _mm_movehl_ps(v, v));
    _mm_store_ss(p + 3 * inc, _mm_shuffle_ps(v, v, 3));
  }
  float first() const { return _mm_cvtss_f32(v); }

  friend Lanes operator+(Lanes a, Lanes b) { return {_mm_add_ps(a.v, b.v)}; }
  friend Lanes operator-(Lanes a, Lanes b) { return {_mm_sub_ps(a.v, b.v)}; }
  friend Lanes operator*(Lanes a, Lanes b) { return {_mm_mul_ps(a.v, b.v)}; }
  friend Lanes operator/(Lanes a, Lanes b) { return {_mm_div_ps(a.v, b.v)}; }
};

template <>
struct Lanes<double> {
  static constexpr int count = 2;
  __m128d v;

  static Lanes zero() { return {_mm_setzero_pd()}; }
  static Lanes all(double a) { return {_mm_set1_pd(a)}; }
  static Lanes load(const double* p) { return {_mm_loadu_pd(p)}; }
  static Lanes load_aligned(const double* p) { return {_mm_load_pd(p)}; }
  static Lanes load_all(const double* p) { return {_mm_loaddup_pd(p)}; }
  static Lanes load_first(const double* p) { return {_mm_load_sd(p)}; }
  static Lanes gather(const double* p, int inc) { return {_mm_loadh_pd(_mm_load_sd(p), p + inc)}; }
  void store(double* p) const { _mm_storeu_pd(p, v); }
  void store_aligned(double* p) const { _mm_store_pd(p, v); }
  void store_first(double* p) const { _mm_store_sd(p, v); }
  void scatter(double* p, int inc) const {
    _mm_storel_pd(p, v);
    _mm_storeh_pd(p + inc, v);
  }
  double first() const { return _mm_cvtsd_f64(v); }

  friend Lanes operator+(Lanes a, Lanes b) { return {_mm_add_pd(a.v, b.v)}; }
  friend Lanes operator-(Lanes a, Lanes b) { return {_mm_sub_pd(a.v, b.v)}; }
  friend Lanes operator*(Lanes a, Lanes b) { return {_mm_mul_pd(a.v, b.v)}; }
  friend Lanes operator/(Lanes a, Lanes b) { return {_mm_div_pd(a.v, b.v)}; }
};

// Magnitudes: the sign bits cleared, NaN and infinities kept.
inline Lanes<float> abs(Lanes<float> a) {
  return {_mm_and_ps(a.v, _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff)))};
}
inline Lanes<double> abs(Lanes<double> a) {
  return {_mm_and_pd(a.v, _mm_castsi128_pd(_mm_set_epi32(0x7fffffff, -1, 0x7fffffff, -1)))};
}

// If either operand is NaN, the second is taken.
inline Lanes<float> max(Lanes<float> a, Lanes<float> b) { return {_mm_max_ps(a.v, b.v)}; }
inline Lanes<double> max(Lanes<double> a, Lanes<double> b) { return {_mm_max_pd(a.v, b.v)}; }
inline Lanes<float> min(Lanes<float> a, Lanes<float> b) { return {_mm_min_ps(a.v, b.v)}; }
inline Lanes<double> min(Lanes<double> a, Lanes<double> b) { return {_mm_min_pd(a.v, b.v)}; }

// Masks: all bits of a lane set where the relation holds.
inline Lanes<float> unordered(Lanes<float> a, Lanes<float> b) {
  return {_mm_cmpunord_ps(a.v, b.v)};
}
inline Lanes<double> unordered(Lanes<double> a, Lanes<double> b) {
  return {_mm_cmpunord_pd(a.v, b.v)};
}
inline Lanes<float> not_greater_equal(Lanes<float> a, Lanes<float> b) {
  return {_mm_cmpnge_ps(a.v, b.v)};
}
inline Lanes<double> not_greater_equal(Lanes<double> a, Lanes<double> b) {
  return {_mm_cmpnge_pd(a.v, b.v)};
}
inline Lanes<float> operator|(Lanes<float> a, Lanes<float> b) { return {_mm_or_ps(a.v, b.v)}; }
inline Lanes<double> operator|(Lanes<double> a, Lanes<double> b) { return {_mm_or_pd(a.v, b.v)}; }
inline bool any(Lanes<float> mask) { return _mm_movemask_ps(mask.v) != 0; }
inline bool any(Lanes<double> mask) { return _mm_movemask_pd(mask.v) != 0; }

// re + im of the elements of a, then of b.
inline Lanes<float> add_parts(Lanes<float> a, Lanes<float> b) {
  return {_mm_add_ps(_mm_shuffle_ps(a.v, b.v, _MM_SHUFFLE(2, 0, 2, 0)),
                     _mm_shuffle_ps(a.v, b.v, _MM_SHUFFLE(3, 1, 3, 1)))};
}
inline Lanes<double> add_parts(Lanes<double> a, Lanes<double> b) {
  return {_mm_add_pd(_mm_unpacklo_pd(a.v, b.v), _mm_unpackhi_pd(a.v, b.v))};
}

// The lanes named by the bits of which; the others become +0, whatever they held.
template <unsigned which>
inline Lanes<float> keep(Lanes<float> a) {
  constexpr auto word = [](int lane) { return (which >> lane & 1) ? -1 : 0; };
  return {_mm_and_ps(a.v, _mm_castsi128_ps(_mm_setr_epi32(word(0), word(1), word(2), word(3))))};
}
template <unsigned which>
inline Lanes<double> keep(Lanes<double> a) {
  constexpr auto word = [](int lane) { return (which >> lane & 1) ? -1 : 0; };
  return {_mm_and_pd(a.v, _mm_castsi128_pd(_mm_setr_epi32(word(0), word(0), word(1), word(1))))};
}

// Two floats, widened to double without rounding.
inline Lanes<double> widen_low(Lanes<float> a) { return {_mm_cvtps_pd(a.v)}; }

// Sum of the lanes, the upper half onto the lower until one is left:
// (f0 + f2) + (f1 + f3), or d0 + d1.
inline float sum_lanes(Lanes<float> a) {
  const __m128 half = _mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v));
  return _mm_cvtss_f32(_mm_add_ss(half, _mm_shuffle_ps(half, half, 1)));
}
inline double sum_lanes(Lanes<double> a) {
  return _mm_cvtsd_f64(_mm_add_sd(a.v, _mm_unpackhi_pd(a.v, a.v)));
}

// The real and imaginary parts of a complex register change places. The integer shuffle is the one
// that leaves its operand alone, which saves a copy and a register.
inline Lanes<float> swap_parts(Lanes<float> a) {
  return {_mm_castsi128_ps(_mm_shuffle_epi32(_mm_castps_si128(a.v), _MM_SHUFFLE(2, 3, 0, 1)))};
}
inline Lanes<double> swap_parts(Lanes<double> a) {
  return {_mm_castsi128_pd(_mm_shuffle_epi32(_mm_castpd_si128(a.v), _MM_SHUFFLE(1, 0, 3, 2)))};
}

// Elements of a and b in turn, a0 b0 a1 b1 ..: the first half and the second half of them.
inline Lanes<float> low_in_turn(Lanes<float> a, Lanes<float> b) {
  return {_mm_unpacklo_ps(a.v, b.v)};
}
inline Lanes<float> high_in_turn(Lanes<float> a, Lanes<float> b) {
  return {_mm_unpackhi_ps(a.v, b.v)};
}
inline Lanes<double> low_in_turn(Lanes<double> a, Lanes<double> b) {
  return {_mm_unpacklo_pd(a.v, b.v)};
}
inline Lanes<double> high_in_turn(Lanes<double> a, Lanes<double> b) {
  return {_mm_unpackhi_pd(a.v, b.v)};
}

// The lanes of one parity, first those of a and then those of b: the real parts (0) or the
// imaginary parts (1) of complex elements.
template <int parity>
inline Lanes<float> parts_of(Lanes<float> a, Lanes<float> b) {
  return {_mm_shuffle_ps(a.v, b.v, parity ? _MM_SHUFFLE(3, 1, 3, 1) : _MM_SHUFFLE(2, 0, 2, 0))};
}
template <int parity>
inline Lanes<double> parts_of(Lanes<double> a, Lanes<double> b) {
  return {parity ? _mm_unpackhi_pd(a.v, b.v) : _mm_unpacklo_pd(a.v, b.v)};
}

// a - b in the even lanes, a + b in the odd ones: a + i c for complex elements where b is c with
// its parts swapped.
inline Lanes<float> add_alternating(Lanes<float> a, Lanes<float> b) {
  return {_mm_addsub_ps(a.v, b.v)};
}
inline Lanes<double> add_alternating(Lanes<double> a, Lanes<double> b) {
  return {_mm_addsub_pd(a.v, b.v)};
}

// Complex lanes are real lanes of twice the length; R is the real element.
template <class T>
struct ComplexLanes {
  using R = Real<T>;
  using Parts = Lanes<R>;
  static constexpr int count = Parts::count / 2;
  Parts parts;

  static Lanes<T> zero() { return {Parts::zero()}; }
  static Lanes<T> load(const T* p) { return {Parts::load(&p->re)}; }
  void store(T* p) const { parts.store(&p->re); }
};

template <>
struct Lanes<jex_scomplex> : ComplexLanes<jex_scomplex> {
  static Lanes all(jex_scomplex a) { return {Parts{_mm_setr_ps(a.re, a.im, a.re, a.im)}}; }
  static Lanes load_first(const jex_scomplex* p) { return {Parts::load_two(&p->re)}; }
  static Lanes gather(const jex_scomplex* p, int inc) {
    return {Parts{_mm_loadh_pi(load_first(p).parts.v, (const __m64*)(p + inc))}};
  }
  void store_first(jex_scomplex* p) const { _mm_storel_pi((__m64*)p, parts.v); }
  void scatter(jex_scomplex* p, int inc) const {
    store_first(p);
    _mm_storeh_pi((__m64*)(p + inc), parts.v);
  }
};

template <>
struct Lanes<jex_dcomplex> : ComplexLanes<jex_dcomplex> {
  static Lanes all(jex_dcomplex a) { return load(&a); }
  static Lanes load_first(const jex_dcomplex* p) { return load(p); }
  static Lanes gather(const jex_dcomplex* p, int) { return load(p); }
  void store_first(jex_dcomplex* p) const { store(p); }
  void scatter(jex_dcomplex* p, int) const { store(p); }
};

// The imaginary parts change their sign.
inline Lanes<jex_scomplex> conjugate(Lanes<jex_scomplex> a) {
  return {Lanes<float>{_mm_xor_ps(a.parts.v, _mm_setr_ps(0, -0.0f, 0, -0.0f))}};
}
inline Lanes<jex_dcomplex> conjugate(Lanes<jex_dcomplex> a) {
  return {Lanes<double>{_mm_xor_pd(a.parts.v, _mm_setr_pd(0, -0.0))}};
}

// As many registers as a register has elements, seen as the lines of a square, are transposed.
inline void transpose(Lanes<float> (&r)[4]) {
  const __m128 low01 = _mm_unpacklo_ps(r[0].v, r[1].v), low23 = _mm_unpacklo_ps(r[2].v, r[3].v);
  const __m128 high01 = _mm_unpackhi_ps(r[0].v, r[1].v), high23 = _mm_unpackhi_ps(r[2].v, r[3].v);
  r[0].v = _mm_movelh_ps(low01, low23);
  r[1].v = _mm_movehl_ps(low23, low01);
  r[2].v = _mm_movelh_ps(high01, high23);
  r[3].v = _mm_movehl_ps(high23, high01);
}
inline void transpose(Lanes<double> (&r)[2]) {
  const __m128d low = _mm_unpacklo_pd(r[0].v, r[1].v);
  r[1].v = _mm_unpackhi_pd(r[0].v, r[1].v);
  r[0].v = low;
}
inline void transpose(Lanes<jex_scomplex> (&r)[2]) {
  const __m128 low = _mm_movelh_ps(r[0].parts.v, r[1].parts.v);
  r[1].parts.v = _mm_movehl_ps(r[1].parts.v, r[0].parts.v);
  r[0].parts.v = low;
}
inline void transpose(Lanes<jex_dcomplex> (&)[1]) {}

// Stores past the caches, on a 16-byte boundary; order_streams() puts such stores before later
// ones.
inline void stream(Lanes<float> a, float* p) { _mm_stream_ps(p, a.v); }
inline void stream(Lanes<double> a, double* p) { _mm_stream_pd(p, a.v); }
template <class T>
inline void stream(Lanes<T> a, T* p) {
  stream(a.parts, &p->re);
}
inline void order_streams() { _mm_sfence(); }

// Says that a value is in a register here. The compiler otherwise moves the loads of an unrolled
// loop ahead of its sums, until the eight registers overflow to the stack.
template <class T>
[[gnu::always_inline]] inline Lanes<T> pinned(Lanes<T> a) {
  if constexpr (is_complex<T>) {
    return {pinned(a.parts)};
  } else {
    auto v = a.v;
    asm("" : "+x"(v));
    return {v};
  }
}

// sum += term, in the register that holds the sum. The compiler is free to leave the sum of a
// commutative operation in the other operand; where sums fill the registers it then runs out of
// them.
[[gnu::always_inline]] inline void accumulate(Lanes<float>& sum, Lanes<float> term) {
  asm("addps %1, %0" : "+x"(sum.v) : "x"(term.v));
}
[[gnu::always_inline]] inline void accumulate(Lanes<double>& sum, Lanes<double> term) {
  asm("addpd %1, %0" : "+x"(sum.v) : "x"(term.v));
}

// The first elements of a register, `count` of them and not all: those that are not loaded are
// zero, and those that are not stored stay as they are in memory.
template <class T>
[[gnu::always_inline]] inline Lanes<T> gather_some(const T* p, int inc, int count) {
  if constexpr (std::is_same_v<T, float>)
    if (count > 1) {
      const auto two = Lanes<T>::gather_two(p, inc);
      return count == 2 ? two : Lanes<T>{_mm_movelh_ps(two.v, _mm_load_ss(p + 2 * inc))};
    }
  return Lanes<T>::load_first(p);
}
template <class T>
[[gnu::always_inline]] inline void store_some(Lanes<T> a, T* p, int count) {
  if constexpr (std::is_same_v<T, float>)
    if (count > 1) {
      _mm_storel_pi((__m64*)p, a.v);
      if (count == 2) return;
      p += 2;
      a.v = _mm_movehl_ps(a.v, a.v);
    }
  a.store_first(p);
}

// An address or a distance that is kept as it is, not rewritten into sums of others.
template <class T>
requires std::is_scalar_v<T>
[[gnu::always_inline]] inline T pinned(T a) {
  asm("" : "+r"(a));
  return a;
}

// sum + term, in the register of the sum. Left to choose, the compiler may take the term's and copy
// the result back in every step of a loop.
[[gnu::always_inline]] inline Lanes<float> accumulated(Lanes<float> sum, Lanes<float> term) {
  asm("addps %1, %0" : "+x"(sum.v) : "x"(term.v));
  return sum;
}
[[gnu::always_inline]] inline Lanes<double> accumulated(Lanes<double> sum, Lanes<double> term) {
  asm("addpd %1, %0" : "+x"(sum.v) : "x"(term.v));
  return sum;
}

// sum += factor * a[0 ..], where a is a multiple of 16 and the product is taken from memory. The
// statement works on a copy: a sum that it named itself might be left in memory, in an array.
[[gnu::always_inline]] inline void accumulate_product(Lanes<float>& sum, Lanes<float> factor,
                                                      const float* a) {
  auto v = sum.v;
  asm("mulps %2, %1\n\taddps %1, %0"
      : "+x"(v), "+x"(factor.v)
      : "m"(*reinterpret_cast<const __m128*>(a)));
  sum.v = v;
}
[[gnu::always_inline]] inline void accumulate_product(Lanes<double>& sum, Lanes<double> factor,
                                                      const double* a) {
  auto v = sum.v;
  asm("mulpd %2, %1\n\taddpd %1, %0"
      : "+x"(v), "+x"(factor.v)
      : "m"(*reinterpret_cast<const __m128d*>(a)));
  sum.v = v;
}

// A load from any address that stays where it stands.
[[gnu::always_inline]] inline Lanes<float> loaded(const float* a) {
  Lanes<float> lane;
  asm("movups %1, %0" : "=x"(lane.v) : "m"(*reinterpret_cast<const float(*)[4]>(a)));
  return lane;
}
[[gnu::always_inline]] inline Lanes<double> loaded(const double* a) {
  Lanes<double> lane;
  asm("movupd %1, %0" : "=x"(lane.v) : "m"(*reinterpret_cast<const double(*)[2]>(a)));
  return lane;
}

// A load from a multiple of 16 that stays where it stands.
[[gnu::always_inline]] inline Lanes<float> loaded_aligned(const float* a) {
  __m128 v;
  asm("movaps %1, %0" : "=x"(v) : "m"(*reinterpret_cast<const __m128*>(a)));
  return {v};
}
[[gnu::always_inline]] inline Lanes<double> loaded_aligned(const double* a) {
  __m128d v;
  asm("movapd %1, %0" : "=x"(v) : "m"(*reinterpret_cast<const __m128d*>(a)));
  return {v};
}

// The number in every element of a register, loaded where the call stands.
[[gnu::always_inline]] inline Lanes<float> repeated(const float* b) {
  __m128 v;
  asm("movss %1, %0\n\tshufps $0, %0, %0" : "=x"(v) : "m"(*b));
  return {v};
}
[[gnu::always_inline]] inline Lanes<double> repeated(const double* b) {
  __m128d v;
  asm("movddup %1, %0" : "=x"(v) : "m"(*b));
  return {v};
}

// sum += b[0] * lane, the number in every element of a register.
[[gnu::always_inline]] inline void accumulate_repeated(Lanes<float>& sum, Lanes<float> lane,
                                                       const float* b) {
  __m128 repeated;
  asm("movss %2, %1\n\tshufps $0, %1, %1\n\tmulps %3, %1\n\taddps %1, %0"
      : "+x"(sum.v), "=&x"(repeated)
      : "m"(*b), "x"(lane.v));
}
[[gnu::always_inline]] inline void accumulate_repeated(Lanes<double>& sum, Lanes<double> lane,
                                                       const double* b) {
  __m128d repeated;
  asm("movddup %2, %1\n\tmulpd %3, %1\n\taddpd %1, %0"
      : "+x"(sum.v), "=&x"(repeated)
      : "m"(*b), "x"(lane.v));
}

template <class T>
requires is_complex<T>
inline Lanes<T> operator+(Lanes<T> a, Lanes<T> b) { return {a.parts + b.parts}; }
template <class T>
requires is_complex<T>
inline Lanes<T> operator-(Lanes<T> a, Lanes<T> b) { return {a.parts - b.parts}; }

// Sum of the elements of a register, part by part.
template <class T>
inline T sum_complex_lanes(Lanes<T> a) {
  if constexpr (Lanes<T>::count == 2)
    a.parts.v = _mm_add_ps(a.parts.v, _mm_movehl_ps(a.parts.v, a.parts.v));
  T sum;
  a.store_first(&sum);
  return sum;
}

// A factor is a scalar made ready to multiply many lanes.
//   real * real        one product
//   complex * real     one product of each part
//   complex * complex  (x.re f.re - x.im f.im, x.im f.re + x.re f.im): four products, two sums; the
//                      factor carries the minus sign, which is exact
template <class T>
struct Factor {
  Lanes<T> all;
  explicit Factor(T a) : all(Lanes<T>::all(a)) {}
  friend Lanes<T> operator*(Lanes<T> x, Factor f) { return x * f.all; }
};

template <class T>
requires is_complex<T>
struct Factor<T> {
  using R = Real<T>;
  Lanes<R> re, im;  // f.re f.re .., -f.im f.im ..
  explicit Factor(T a) : re(Lanes<R>::all(a.re)), im(Lanes<T>::all({-a.im, a.im}).parts) {}
  friend Lanes<T> operator*(Lanes<T> x, Factor f) {
    const Lanes<R> parts = pinned(x.parts);
    return {parts * f.re + swap_parts(parts) * f.im};
  }
};

template <class T>
requires is_complex<T>
inline Lanes<T> operator*(Lanes<T> x, Factor<Real<T>> f) { return {x.parts * f.all}; }

// A stored value made ready to multiply a few lanes: quicker to make than a Factor, which is for
// many. Complex: a.re in all lanes of re, a.im in those of im, and the sum of products is SSE3's,
// which subtracts in the real lanes and adds in the imaginary ones. A conjugate changes the sign of
// im, which is exact.
template <class T>
struct Coefficient {
  Lanes<T> all;

  template <bool conj = false>
  static Coefficient load(const T& a) {
    return {Lanes<T>::all(a)};
  }
  friend Lanes<T> operator*(Lanes<T> x, Coefficient f) { return x * f.all; }
  friend Coefficient operator*(Coefficient a, Coefficient b) { return {a.all * b.all}; }
};

template <class T>
requires is_complex<T>
struct Coefficient<T> {
  using R = Real<T>;
  Lanes<R> re, im;

  template <bool conj = false>
  static Coefficient load(const T& a) {
    Coefficient f;
    if constexpr (Lanes<T>::count == 2) {
      const __m128 both = _mm_castpd_ps(_mm_loaddup_pd(reinterpret_cast<const double*>(&a)));
      f = {{_mm_moveldup_ps(both)}, {_mm_movehdup_ps(both)}};
      if constexpr (conj) f.im.v = _mm_xor_ps(f.im.v, _mm_set1_ps(-0.f));
    } else {
      f = {{_mm_loaddup_pd(&a.re)}, {_mm_loaddup_pd(&a.im)}};
      if constexpr (conj) f.im.v = _mm_xor_pd(f.im.v, _mm_set1_pd(-0.));
    }
    return f;
  }
  friend Lanes<T> operator*(Lanes<T> x, Coefficient f) {
    return {add_alternating(x.parts * f.re, swap_parts(x.parts) * f.im)};
  }
  friend Coefficient operator*(Coefficient a, Coefficient b) {
    return {a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im};
  }
};

}  // namespace jex::simd
