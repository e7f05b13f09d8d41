// One pass of a transform whose output comes in order, without a permutation (the scheme of
// Stockham: W. T. Cochran et al., "What is the Fast Fourier Transform?", Proceedings of the IEEE
// 55, 1967).
//
// The length is n = s R m: s is the product of the radices of earlier passes. A pass takes, for
// each p < m and q < s, the R elements x(q, p + m j), transforms them, multiplies result k by the
// root w^(p k) of order R m and stores it as y(q, R p + k). In the last pass m is 1 and there are
// no roots.
//
//        in:   p + m j ->                     out:  R p + k ->
//      q  . . x . . x . . x . .             q  . . . y y y . . .
//
// Each (q, p) is a run of c elements: c transforms done at once, element by element. Where a run
// follows on the one before it on both sides, q and c are one.
#pragma once

#include <stddef.h>

#include "dft/engine/butterfly.h"

namespace jex::dft {

struct OddTable;

template <class T>
struct Pass {
  const T* in;
  T* out;
  const Real<T>* roots;  // of p = 0, then p = 1, ..: R - 1 pairs of registers for each
  const T* twist;        // R registers for each run, in the order of the loops
  const OddTable* odd;   // of a radix without a kernel of its own
  Real<T> scale;
  int radix, p_count, q_count, c_count;
  ptrdiff_t in_p, in_q, in_k;  // distances in elements, in_k that of the R elements
  ptrdiff_t out_p, out_q, out_k;
  ptrdiff_t out_c;  // of twisted results alone, which are a matrix turned on its side
};

enum class Kind {
  inner,    // with roots
  last,     // without roots
  scaled,   // the last one, results multiplied by the scale
  twisted,  // the last one, result k of each run multiplied by an element of its own
  first     // with roots, one transform: neighbours in p lie side by side, and so do results
};

constexpr int kinds = 5;

template <class T>
using PassFunction = void (*)(const Pass<T>&);

// A distance between elements as the loops use it: bytes, with the multiples that an address cannot
// have by scaling.
struct Step {
  ptrdiff_t one, group, group3;
  template <class T>
  static Step of(ptrdiff_t elements, int groups, const T*) {
    const ptrdiff_t one = elements * ptrdiff_t(sizeof(T));
    return {simd::pinned(one), simd::pinned(one * groups), simd::pinned(3 * one * groups)};
  }
};

// The elements of a butterfly, visited group by group upwards: element j is the (j / groups)-th of
// group j % groups. One pointer goes from group to group; four elements have addresses beside it,
// and four more beside the fifth.
template <int groups, class T>
struct Walk {
  const char* at;
  const Step& step;
  int group = 0;

  JEX_INLINE T* operator()(int j) {
    for (; group < j % groups; ++group) at = simd::pinned(at + step.one);
    const int i = j / groups, near = i % 4;
    return place(at + i / 4 * 4 * step.group + (near == 3 ? step.group3 : near * step.group));
  }
  JEX_INLINE static T* place(const char* p) { return reinterpret_cast<T*>(const_cast<char*>(p)); }
};

// A butterfly reads columns whose elements are a fixed distance apart, and writes such rows.
constexpr int load_groups(int radix) {
  return radix == 8 ? 4 : first_factor(radix) ? radix / first_factor(radix) : 1;
}
constexpr int store_groups(int radix) {
  return radix == 8 ? 2 : first_factor(radix) ? first_factor(radix) : 1;
}

template <int R, Direction d, Kind kind, bool whole, class T>
[[gnu::always_inline]] inline void butterfly(const T* in, const Step& in_step, T* out,
                                             const Step& out_step, ptrdiff_t out_c,
                                             const Real<T>* roots, const T* twist, Real<T> scale) {
  using V = Lanes<T>;
  Walk<load_groups(R), const T> from{reinterpret_cast<const char*>(in), in_step};
  Walk<store_groups(R), T> to{reinterpret_cast<const char*>(out), out_step};
  // Without whole, the first element of a register.
  const auto load = [&](int j) JEX_INLINE {
    return whole ? simd::load_elements(from(j)) : simd::load_element(from(j));
  };
  const auto store = [&](int k, V y) JEX_INLINE {
    if constexpr (kind == Kind::inner)
      if (k > 0) y = simd::times_root<sign(d)>(y, roots + (k - 1) * 2 * Lanes<Real<T>>::count);
    if constexpr (kind == Kind::scaled) y = simd::scaled(y, scale);
    if constexpr (kind == Kind::twisted)
      y = simd::times_elements<-sign(d)>(y, simd::load_elements(twist + k * V::count));
    T* const p = to(k);
    if constexpr (!whole)
      simd::store_element(y, p);
    else if constexpr (kind == Kind::twisted)
      simd::scatter_elements(y, p, out_c);
    else
      simd::store_elements(y, p);
  };
  Dft<R, d, T>::run(load, store);
}

template <int R, Direction d, Kind kind, class T>
void run_pass(const Pass<T>& pass) {
  constexpr int width = Lanes<T>::count;
  const Pass<T> a = pass;
  const Step in_step = Step::of(a.in_k, load_groups(R), a.in);
  const Step out_step = Step::of(a.out_k, store_groups(R), a.out);
  const Real<T>* roots = a.roots;
  const T* twist = a.twist;
  for (int p = 0; p < a.p_count; ++p) {
    for (int q = 0; q < a.q_count; ++q) {
      const T* in = a.in + p * a.in_p + q * a.in_q;
      T* out = a.out + p * a.out_p + q * a.out_q;
      int c = a.c_count;
      const ptrdiff_t out_next = kind == Kind::twisted ? a.out_c * width : width;
      for (; c >= width; c -= width, in += width, out += out_next) {
        butterfly<R, d, kind, true>(in, in_step, out, out_step, a.out_c, roots, twist, a.scale);
        if (kind == Kind::twisted) twist += R * width;
      }
      if (width > 1 && c) {
        butterfly<R, d, kind, false>(in, in_step, out, out_step, a.out_c, roots, twist, a.scale);
        if (kind == Kind::twisted) twist += R * width;
      }
    }
    roots += (R - 1) * 2 * Lanes<Real<T>>::count;
  }
}

// The first pass of one transform: the lanes of a register are neighbours in p.
template <int R, Direction d, class T>
void run_first(const Pass<T>& pass) {
  using V = Lanes<T>;
  constexpr int width = V::count, entry = 2 * Lanes<Real<T>>::count;
  const Step step = Step::of(pass.in_k, load_groups(R), pass.in);
  const T* in = pass.in;
  T* out = pass.out;
  const Real<T>* roots = pass.roots;
  const auto rotated = [&](int k, V y) JEX_INLINE {
    return k > 0 ? simd::times_root<sign(d)>(y, roots + (k - 1) * entry) : y;
  };
  int p = pass.p_count;
  for (; p >= width; p -= width) {
    Walk<load_groups(R), const T> from{reinterpret_cast<const char*>(in), step};
    Dft<R, d, T>::run([&](int j) JEX_INLINE { return simd::load_elements(from(j)); },
                      [&](int k, V y) JEX_INLINE {
                        y = rotated(k, y);
                        simd::store_element(y, out + k);
                        if constexpr (width > 1) simd::store_second(y, out + R + k);
                      });
    in += width;
    out += width * R;
    roots += (R - 1) * entry;
  }
  if (width > 1 && p) {
    Walk<load_groups(R), const T> from{reinterpret_cast<const char*>(in), step};
    Dft<R, d, T>::run([&](int j) JEX_INLINE { return simd::load_element(from(j)); },
                      [&](int k, V y) JEX_INLINE { simd::store_element(rotated(k, y), out + k); });
  }
}

// Radices with kernels of their own.
constexpr int largest_kernel_radix = 32;
constexpr bool has_kernel(int radix) {
  return radix >= 2 && (radix <= 16 || radix == 20 || radix == 32);
}

// The functions of a radix, by kind.
template <class T>
struct PassKinds {
  PassFunction<T> function[kinds];
};
template <class T>
const PassKinds<T>* pass_kinds(int radix, Direction d);

// A pass of any odd radix up to 149, roots and scale where they are given.
template <class T>
void run_odd_pass(const Pass<T>& pass, Direction d, Kind kind);

}  // namespace jex::dft
