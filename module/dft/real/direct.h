// Real transforms of 1 to 16 numbers, unrolled at compile time; Perm on the packed side.
//
// Even lengths: a complex transform of half the length and the split step, all in registers. Odd
// ones by the definition: x(j) - x(n-j) and x(j) + x(n-j) side by side in a register meet a sine
// and a cosine, and give an imaginary and a real part.
#pragma once

#include "dft/engine/butterfly.h"
#include "dft/engine/fixed.h"
#include "dft/real/plan.h"
#include "simd/shuffle.h"

namespace jex::dft {

// Parts by element: those of odd_weights(k, j) are (-sin, cos) of 2 pi j k / n forward, twice
// (cos, sin) backward; registers of neighbours k, zero beyond the last.
template <int n, class T, Direction d>
struct OddWeights {
  static constexpr int h = n / 2, width = Lanes<T>::count, groups = (h + width - 1) / width;
  alignas(16) Real<T> part[(groups * h + 1) * 2 * width];

  constexpr OddWeights() : part() {
    Real<T>* at = part;
    for (int g = 0; g < groups; ++g)
      for (int j = 1; j <= h; ++j)
        for (int e = 0; e < width; ++e, at += 2) {
          const int k = g * width + e + 1;
          if (k > h) continue;
          const Root w = constant_root(j * k, n);
          at[0] = Real<T>(d == Direction::forward ? -w.s : 2 * w.c);
          at[1] = Real<T>(d == Direction::forward ? w.c : 2 * w.s);
        }
  }
};
template <int n, class T, Direction d>
inline constexpr OddWeights<n, T, d> odd_weights{};

template <int n, class T, bool scales>
struct RealDirect {
  using R = Real<T>;
  using V = Lanes<T>;
  using P = Lanes<R>;
  static constexpr int m = n / 2, h = n / 2, width = V::count;

  static void forward(const R* in, R* out, R scale) {
    if constexpr (n == 1)
      *out = scales ? *in * scale : *in;
    else if constexpr (n % 2 == 0)
      forward_even(in, reinterpret_cast<T*>(out), scale);
    else
      forward_odd(in, out, scale);
  }
  static void backward(const R* in, R* out, R scale) {
    if constexpr (n == 1)
      *out = scales ? *in * scale : *in;
    else if constexpr (n % 2 == 0)
      backward_even(reinterpret_cast<const T*>(in), reinterpret_cast<T*>(out), scale);
    else
      backward_odd(in, out, scale);
  }

 private:
  JEX_INLINE static V maybe_scaled(V v, R scale) { return scales ? simd::scaled(v, scale) : v; }

  static void forward_even(const R* in, T* out, R scale) {
    V z[m];
    Dft<m, Direction::forward, T>::run(
        [&](int j) JEX_INLINE { return V::load_first(reinterpret_cast<const T*>(in) + j); },
        [&](int k, V y) JEX_INLINE { z[k] = maybe_scaled(y, scale); });
    const P crossed = simd::swap_parts(z[0].parts);
    out->re = (z[0].parts + crossed).first();
    out->im = (z[0].parts - crossed).first();
    unrolled<(m - 1) / 2>([&](auto i) JEX_INLINE {
      constexpr int k = i + 1;
      constexpr Root w = constant_root(k, n);
      const V a = z[k], b = simd::conjugate(z[m - k]);
      const V even = simd::scaled(a + b, R(0.5));
      const V odd = simd::times(a - b, R(-0.5L * w.s), R(-0.5L * w.c));
      (even + odd).store_first(out + k);
      simd::conjugate(even - odd).store_first(out + m - k);
    });
    if constexpr (m % 2 == 0) simd::conjugate(z[m / 2]).store_first(out + m / 2);
  }

  static void backward_even(const T* in, T* out, R scale) {
    V z[m];
    const P first = V::load_first(in).parts, crossed = simd::swap_parts(first);
    z[0] = maybe_scaled({simd::keep<1>(first + crossed) + simd::keep<2>(crossed - first)}, scale);
    unrolled<(m - 1) / 2>([&](auto i) JEX_INLINE {
      constexpr int k = i + 1;
      constexpr Root w = constant_root(k, n);
      const V a = maybe_scaled(V::load_first(in + k), scale);
      const V b = maybe_scaled(simd::conjugate(V::load_first(in + m - k)), scale);
      const V even = a + b, odd = simd::times(a - b, R(-w.s), R(w.c));
      z[k] = even + odd;
      z[m - k] = simd::conjugate(even - odd);
    });
    if constexpr (m % 2 == 0) {
      const V middle = maybe_scaled(simd::conjugate(V::load_first(in + m / 2)), scale);
      z[m / 2] = middle + middle;
    }
    Dft<m, Direction::backward, T>::run([&](int j) JEX_INLINE { return z[j]; },
                                        [&](int k, V y) JEX_INLINE { y.store_first(out + k); });
  }

  // Groups of results k = 1 + width g, ..
  template <Direction d>
  JEX_INLINE static P sums(P start, const P (&pairs)[h + 1], int g) {
    const R* weights = odd_weights<n, T, d>.part + g * h * 2 * width;
    unrolled<h>([&](auto j) JEX_INLINE {
      start = start + pairs[j + 1] * P::load_aligned(weights + j * 2 * width);
    });
    return start;
  }

  static void forward_odd(const R* in, R* out, R scale) {
    P pairs[h + 1];
    P sum = pairs[0] = P::load_all(in);
    unrolled<h>([&](auto i) JEX_INLINE {
      constexpr int j = i + 1;
      pairs[j] = simd::add_alternating(P::load_all(in + j), P::load_all(in + n - j));
      sum = sum + pairs[j];
    });
    const P start = alternate_zero(pairs[0]);
    const R first = simd::swap_parts(sum).first();
    out[0] = scales ? first * scale : first;
    unrolled<(h + width - 1) / width>([&](auto g) JEX_INLINE {
      V y{simd::swap_parts(sums<Direction::forward>(start, pairs, g))};
      y = maybe_scaled(y, scale);
      T* const to = reinterpret_cast<T*>(out + 1) + g * width;
      if constexpr (g * width + width <= h)
        y.store(to);
      else
        y.store_first(to);
    });
  }
  JEX_INLINE static P alternate_zero(P a) { return simd::keep<0xa>(a); }

  static void backward_odd(const R* in, R* out, R scale) {
    P pairs[h + 1], sum = simd::keep<0x5>(P::load_all(in));
    pairs[0] = sum;
    unrolled<h>([&](auto i) JEX_INLINE {
      pairs[i + 1] = simd::low_pair(V::load_first(reinterpret_cast<const T*>(in + 1) + i).parts);
      sum = sum + (pairs[i + 1] + pairs[i + 1]);
    });
    const R first = sum.first();
    out[0] = scales ? first * scale : first;
    unrolled<(h + width - 1) / width>([&](auto g) JEX_INLINE {
      P y = sums<Direction::backward>(pairs[0], pairs, g);
      if (scales) y = y * P::all(scale);
      const P crossed = simd::swap_parts(y), minus = y - crossed, plus = y + crossed;
      constexpr int j = g * width + 1;
      out[j] = minus.first();
      out[n - j] = plus.first();
      if constexpr (width == 2 && j < h) {
        out[j + 1] = simd::high_pair(minus).first();
        out[n - j - 1] = simd::high_pair(plus).first();
      }
    });
  }
};

template <class T, Direction d>
constexpr RealKernels<Real<T>> make_real_kernels() {
  using R = Real<T>;
  RealKernels<R> table{};
  [&]<int... i>(std::integer_sequence<int, i...>) {
    ((table.plain[i + 1] =
          [](const R* in, R* out) {
            if constexpr (d == Direction::forward)
              RealDirect<i + 1, T, false>::forward(in, out, 1);
            else
              RealDirect<i + 1, T, false>::backward(in, out, 1);
          }),
     ...);
    ((table.scaled[i + 1] =
          [](const R* in, R* out, double scale) {
            if constexpr (d == Direction::forward)
              RealDirect<i + 1, T, true>::forward(in, out, R(scale));
            else
              RealDirect<i + 1, T, true>::backward(in, out, R(scale));
          }),
     ...);
  }
  (std::make_integer_sequence<int, longest_real_kernel>());
  return table;
}

// Whether the even length n has a kernel beyond the table: with lanes of one element, where half of
// it goes straight through the registers.
template <class T>
constexpr bool is_halved(int n) {
  return Lanes<T>::count == 1 && n > longest_real_kernel && n % 2 == 0 && n <= longest_halved &&
         largest_prime(n / 2) <= 5;
}

template <class T, Direction d>
constexpr HalvedKernels<Real<T>> make_halved_kernels() {
  using R = Real<T>;
  HalvedKernels<R> table{};
  [&]<int... i>(std::integer_sequence<int, i...>) {
    const auto put = [&]<int n>(std::integral_constant<int, n>) {
      if constexpr (is_halved<T>(n))
        table.scaled[n / 2] = d == Direction::forward ? RealDirect<n, T, true>::forward
                                                      : RealDirect<n, T, true>::backward;
    };
    (put(std::integral_constant<int, 2 * i>()), ...);
  }
  (std::make_integer_sequence<int, longest_halved / 2 + 1>());
  return table;
}

#define JEX_HALVED_KERNELS(T, d)                                                 \
  template <>                                                                    \
  const HalvedKernels<Real<T>>& halved_kernels<Real<T>, d>() {                   \
    static constexpr HalvedKernels<Real<T>> table = make_halved_kernels<T, d>(); \
    return table;                                                                \
  }

#define JEX_REAL_KERNELS(T)                                                                    \
  template <>                                                                                  \
  const RealKernels<Real<T>>& real_kernels<Real<T>, Direction::forward>() {                    \
    static constexpr RealKernels<Real<T>> table = make_real_kernels<T, Direction::forward>();  \
    return table;                                                                              \
  }                                                                                            \
  template <>                                                                                  \
  const RealKernels<Real<T>>& real_kernels<Real<T>, Direction::backward>() {                   \
    static constexpr RealKernels<Real<T>> table = make_real_kernels<T, Direction::backward>(); \
    return table;                                                                              \
  }

}  // namespace jex::dft
