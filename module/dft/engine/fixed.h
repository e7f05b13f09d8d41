// Transforms whose length the compiler knows: straight through the registers up to 32 where the
// length has small factors, most primes as a convolution, else two passes over a buffer on the
// stack. Their roots are constants.
#pragma once

#include "dft/engine/factor.h"
#include "dft/engine/odd.h"
#include "dft/engine/pass.h"
#include "dft/engine/prime.h"

namespace jex::dft {

// N = A B with the first pass of radix A: a large prime is the second, else both are 20 at most and
// cheap, near each other and A even if they can be; 1 where there are no such.
constexpr int first_radix(int n) {
  const int prime = largest_prime(n);
  if (prime > largest_kernel_prime) return n / prime;
  int best = 1;
  float best_cost = 0;
  for (int a = 2; a <= 20; ++a) {
    const int b = n / a;
    if (n % a || b > 20 || !has_kernel(a) || !has_kernel(b)) continue;
    const float apart = a < b ? 0.03f * (b - a) + 0.01f : 0.03f * (a - b);
    const float cost = pass_cost[a] + pass_cost[b] + 0.5f * (a % 2) + apart;
    if (best == 1 || cost < best_cost) best = a, best_cost = cost;
  }
  return best;
}

// Every length from 2 up to here; beyond, to the end of the table, two passes and convolutions.
constexpr int longest_fixed = 64, longest_fixed_table = 256;
constexpr bool is_fixed(int n) {
  return (n >= 2 && n <= longest_fixed) || is_convolved(n) ||
         (n <= longest_fixed_table && largest_prime(n) <= largest_kernel_prime &&
          first_radix(n) > 1);
}

// y := scale times the transform of x; any alignment; the same array or two.
template <class T>
using FixedFunction = void (*)(const T* in, T* out, Real<T> scale);

// The functions of one element type and direction, compiled in a file of their own. Data, so that a
// caller gets at one in a single load.
template <class T>
struct FixedTable {
  FixedFunction<T> function[longest_fixed_table + 1];
};
template <class T, Direction d>
struct Fixeds {
  static const FixedTable<T> table;
};

// Null where there is none.
template <class T>
inline FixedFunction<T> fixed_function(int n, Direction d) {
  const FixedTable<T>& table = d == Direction::forward ? Fixeds<T, Direction::forward>::table
                                                       : Fixeds<T, Direction::backward>::table;
  return n <= longest_fixed_table ? table.function[n] : nullptr;
}

// Pairs of registers for the roots w^(p k) of order N, k = 1 .. A - 1, in groups of neighbours p.
template <int N, int A, class T>
struct ConstantRoots {
  static constexpr int group = Lanes<T>::count, lanes = Lanes<Real<T>>::count;
  static constexpr int groups = (N / A + group - 1) / group;
  alignas(16) Real<T> pair[groups * (A - 1) * 2 * lanes + 4];

  constexpr ConstantRoots() : pair() {
    Real<T>* at = pair;
    for (int g = 0; g < groups; ++g)
      for (int k = 1; k < A; ++k, at += 2 * lanes)
        for (int e = 0; e < group; ++e) {
          const Root w = constant_root((g * group + e) * k, N);
          at[2 * e] = at[2 * e + 1] = Real<T>(w.c);
          at[lanes + 2 * e] = Real<T>(w.s);
          at[lanes + 2 * e + 1] = Real<T>(-w.s);
        }
  }
};
template <int N, int A, class T>
inline constexpr ConstantRoots<N, A, T> constant_roots{};

template <int R, class T>
struct ConstantOdd {
  static constexpr int h = R / 2, lanes = Lanes<Real<T>>::count;
  alignas(16) Real<T> roots[R * 2 * lanes];
  uint16_t offsets[h * h];

  constexpr ConstantOdd() : roots(), offsets() {
    for (int index = 0; index < R; ++index)
      for (int i = 0; i < lanes; ++i) {
        const Root w = constant_root(index, R);
        roots[index * 2 * lanes + i] = Real<T>(w.c);
        roots[index * 2 * lanes + lanes + i] = Real<T>(w.s);
      }
    for (int k = 0; k < h; ++k)
      for (int j = 0; j < h; ++j)
        offsets[k * h + j] = uint16_t((j + 1) * (k + 1) % R * 2 * lanes * int(sizeof(Real<T>)));
  }
};
template <int R, class T>
inline constexpr ConstantOdd<R, T> constant_odd{};

template <int N, Direction d, class T>
struct Fixed {
  using V = Lanes<T>;
  static constexpr int A = first_radix(N), B = N / A;
  static constexpr bool straight = N <= 32 && largest_prime(N) <= largest_kernel_prime;

  static void run(const T* in, T* out, Real<T> scale) {
    if constexpr (is_convolved(N))
      run_convolved<N, d, T, Fixed>(in, out, scale);
    else if constexpr (straight && V::count == 2 && N % 2 == 0)
      run_halves(in, out, scale);
    else if constexpr (straight)
      Dft<N, d, T>::run([&](int j) JEX_INLINE { return V::load_first(in + j); },
                        [&](int k, V y)
                            JEX_INLINE { simd::scaled(y, scale).store_first(out + k); });
    else
      run_passes(in, out, scale);
  }

 private:
  // Even and odd elements in the two lanes, then their butterflies.
  static void run_halves(const T* in, T* out, Real<T> scale) {
    constexpr int M = N / 2;
    V half[M + 1];
    Dft<M, d, T>::run([&](int j) JEX_INLINE { return V::load(in + 2 * j); },
                      [&](int k, V y) JEX_INLINE { half[k] = simd::scaled(y, scale); });
    half[M] = half[M - 1];
    unrolled<(M + 1) / 2>([&](auto i) JEX_INLINE {
      constexpr int k = 2 * i;
      const V even = simd::first_column(half[k], half[k + 1]);
      V odd = simd::second_column(half[k], half[k + 1]);
      odd = simd::times_root<sign(d)>(odd, constant_roots<N, 2, T>.pair + i * 8);
      if constexpr (k + 1 < M) {
        (even + odd).store(out + k);
        (even - odd).store(out + k + M);
      } else {
        (even + odd).store_first(out + k);
        (even - odd).store_first(out + k + M);
      }
    });
  }

  // The passes are compiled into each length anew, with constant counts and distances: up to a
  // third faster than calls of what all lengths share.
  [[gnu::flatten]] static void run_passes(const T* in, T* out, Real<T> scale) {
    alignas(64) T buffer[N];
    const T* between = in;
    Pass<T> pass{};
    pass.c_count = pass.q_count = 1;
    if constexpr (A > 1) {
      pass.in = in;
      pass.out = buffer;
      pass.roots = constant_roots<N, A, T>.pair;
      pass.p_count = B;
      pass.in_k = B;
      run_first<A, d>(pass);
      between = buffer;
    }
    pass.in = between;
    pass.out = out;
    pass.scale = scale;
    pass.radix = B;
    pass.p_count = 1;
    pass.c_count = pass.in_k = pass.out_k = A;
    if constexpr (largest_prime(N) > largest_kernel_prime) {
      const OddTable odd{constant_odd<B, T>.offsets, constant_odd<B, T>.roots};
      pass.odd = &odd;
      run_odd_pass(pass, d, Kind::scaled);
    } else if (scale == 1) {
      run_pass<B, d, Kind::last>(pass);
    } else {
      run_pass<B, d, Kind::scaled>(pass);
    }
  }
};

template <class T, Direction d>
constexpr FixedTable<T> make_fixed_table() {
  FixedTable<T> table{};
  [&]<int... n>(std::integer_sequence<int, n...>) {
    const auto put = [&]<int N>(std::integral_constant<int, N>) {
      if constexpr (is_fixed(N)) table.function[N] = Fixed<N, d, T>::run;
    };
    (put(std::integral_constant<int, n>()), ...);
  }
  (std::make_integer_sequence<int, longest_fixed_table + 1>());
  return table;
}

}  // namespace jex::dft
