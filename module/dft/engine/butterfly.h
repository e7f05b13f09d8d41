// Transforms of a fixed small length, unrolled at compile time from its factors.
//
//   y(k) = sum over j of x(j) w^(jk),  w = exp(-+ 2 pi i / N)
//
// Operands come from load(j) and go to store(k, y): a caller may read at any stride, multiply by
// roots, scale or transpose there. All loads of a column are made before its first store.
#pragma once

#include "dft/engine/roots.h"
#include "simd/complex.h"
#include "simd/repeat.h"

namespace jex::dft {

using simd::Lanes;
using simd::Real;
using simd::unrolled;

enum class Direction { forward, backward };
constexpr int sign(Direction d) { return d == Direction::forward ? -1 : 1; }

#define JEX_INLINE __attribute__((always_inline))

constexpr int gcd(int a, int b) { return b ? gcd(b, a % b) : a; }

// The factor taken first: 4 before the small primes; 0 for a length with a kernel of its own.
constexpr int first_factor(int n) {
  if (n <= 4 || n == 5 || n == 7 || n == 8 || n == 11 || n == 13) return 0;
  if (n == 16 || n == 32) return 4;
  if (n % 13 == 0) return 13;
  if (n % 11 == 0) return 11;
  if (n % 7 == 0) return 7;
  if (n % 5 == 0) return 5;
  if (n % 9 == 0 && n > 9) return 9;
  if (n % 3 == 0) return 3;
  return n % 8 == 0 && n >= 64 ? 8 : 4;
}

// a w^index of order N, in as few operations as the root needs.
template <int N, int index, Direction d, class T, class V>
JEX_INLINE inline auto times_constant(V a) {
  constexpr int k = index % N;
  constexpr Real<T> half_root = Real<T>(constant_root(1, 8).c);
  if constexpr (k == 0) {
    return a;
  } else if constexpr (4 * k == N) {
    return simd::turned<sign(d)>(a);
  } else if constexpr (2 * k == N) {
    return simd::negated(a);
  } else if constexpr (8 * k == N) {
    return simd::scaled(a + simd::turned<sign(d)>(a), half_root);
  } else if constexpr (8 * k == 3 * N) {
    return simd::scaled(a - simd::turned<sign(d)>(a), -half_root);
  } else {
    constexpr Root w = constant_root(k, N);
    return simd::times(a, Real<T>(w.c), Real<T>(sign(d) * w.s));
  }
}

template <int N, Direction d, class T>
struct Dft {
  using V = Lanes<T>;

  template <class Load, class Store>
  JEX_INLINE static void run(Load load, Store store) {
    if constexpr (N == 1)
      store(0, load(0));
    else if constexpr (N == 2)
      two(load, store);
    else if constexpr (N == 4)
      four(load, store);
    else if constexpr (N == 5)
      five(load, store);
    else if constexpr (N == 8)
      eight(load, store);
    else if constexpr (first_factor(N) == 0)
      odd(load, store);
    else if constexpr (gcd(first_factor(N), N / first_factor(N)) == 1)
      coprime<first_factor(N)>(load, store);
    else
      composite<first_factor(N)>(load, store);
  }

 private:
  template <class Load, class Store>
  JEX_INLINE static void two(Load load, Store store) {
    const V a = load(0), b = load(1);
    store(0, a + b);
    store(1, a - b);
  }

  template <class Load, class Store>
  JEX_INLINE static void four(Load load, Store store) {
    const V x0 = load(0), x2 = load(2);
    const V a = x0 + x2, b = x0 - x2;
    const V x1 = load(1), x3 = load(3);
    const V c = x1 + x3;
    const auto e = simd::turned<sign(d)>(x1 - x3);
    store(0, a + c);
    store(2, a - c);
    store(1, b + e);
    store(3, b - e);
  }

  // The cosines of 72 and 144 degrees are -1/4 +- sqrt(5)/4.
  template <class Load, class Store>
  JEX_INLINE static void five(Load load, Store store) {
    constexpr Root w1 = constant_root(1, 5), w2 = constant_root(2, 5);
    const V x1 = load(1), x4 = load(4), a1 = x1 + x4, b1 = x1 - x4;
    const V x2 = load(2), x3 = load(3), a2 = x2 + x3, b2 = x2 - x3;
    const V x0 = load(0), sum = a1 + a2;
    const V mean = x0 - simd::scaled(sum, Real<T>(0.25));
    const V half = simd::scaled(a1 - a2, Real<T>((w1.c - w2.c) / 2));
    const V c1 = mean + half, c2 = mean - half;
    constexpr Real<T> sine1 = Real<T>(sign(d) * w1.s), sine2 = Real<T>(sign(d) * w2.s);
    const V s1 = simd::scaled_turned(b1, sine1) + simd::scaled_turned(b2, sine2);
    const V s2 = simd::scaled_turned(b1, sine2) - simd::scaled_turned(b2, sine1);
    store(0, x0 + sum);
    store(1, c1 + s1);
    store(4, c1 - s1);
    store(2, c2 + s2);
    store(3, c2 - s2);
  }

  // Columns of two, (x(j), x(j + 4)), then rows of four. The roots of the columns 1 and -1 are
  // conjugates, so that one product with a real number serves their sum and one their difference
  // (I. Kamar and Y. Elcherif, "Conjugate Pair Fast Fourier Transform", Electronics Letters 25,
  // 1989).
  template <class Load, class Store>
  JEX_INLINE static void eight(Load load, Store store) {
    constexpr Real<T> half_root = Real<T>(constant_root(1, 8).c);
    const V x0 = load(0), x4 = load(4), a0 = x0 + x4, a1 = x0 - x4;
    const V x1 = load(1), x5 = load(5), b0 = x1 + x5, b1 = x1 - x5;
    const V x2 = load(2), x6 = load(6), c0 = x2 + x6;
    const auto c1 = simd::turned<sign(d)>(x2 - x6);
    const V x7 = load(7), x3 = load(3), d0 = x7 + x3, d1 = x7 - x3;
    {
      const V even = a0 + c0, odd = b0 + d0, rest = a0 - c0;
      const auto turned = simd::turned<sign(d)>(b0 - d0);
      store(0, even + odd);
      store(4, even - odd);
      store(2, rest + turned);
      store(6, rest - turned);
    }
    const V p = simd::scaled(b1 + d1, half_root);
    const V q = simd::scaled_turned(b1 - d1, sign(d) * half_root);
    const V even = a1 + c1, plus = p + q, rest = a1 - c1, minus = q - p;
    store(1, even + plus);
    store(5, even - plus);
    store(3, rest + minus);
    store(7, rest - minus);
  }

  // A prime: x(j) and x(N-j) meet roots that differ in the sign of the sine alone.
  template <class Load, class Store>
  JEX_INLINE static void odd(Load load, Store store) {
    constexpr int h = N / 2;
    V a[h + 1], b[h + 1];
    a[0] = load(0);
    V sum = a[0];
    unrolled<h>([&](auto i) JEX_INLINE {
      constexpr int j = i + 1;
      const V x = load(j), y = load(N - j);
      a[j] = x + y;
      b[j] = x - y;
      sum = sum + a[j];
    });
    store(0, sum);
    constexpr int together = 3;
    unrolled<(h + together - 1) / together>([&](auto group) JEX_INLINE {
      constexpr int first = 1 + together * group, rest = h + 1 - first;
      constexpr int count = rest < together ? rest : together;
      odd_results<first, count>(a, b, store);
    });
  }

  // Results first .. first + count - 1 and their mirror images: each sum or difference is loaded
  // once for all of them.
  template <int first, int count, class Store>
  JEX_INLINE static void odd_results(const V* a, const V* b, Store store) {
    V c[count], s[count];
    unrolled<N / 2>([&](auto l) JEX_INLINE {
      constexpr int j = l + 1;
      unrolled<count>([&](auto i) JEX_INLINE {
        const V term = simd::scaled(a[j], Real<T>(constant_root(j * (first + i), N).c));
        c[i] = simd::pinned((j == 1 ? a[0] : c[i]) + term);
      });
    });
    unrolled<N / 2>([&](auto l) JEX_INLINE {
      constexpr int j = l + 1;
      unrolled<count>([&](auto i) JEX_INLINE {
        const Real<T> sine = Real<T>(sign(d) * constant_root(j * (first + i), N).s);
        const V term = simd::scaled_turned(b[j], sine);
        s[i] = simd::pinned(j == 1 ? term : s[i] + term);
      });
    });
    unrolled<count>([&](auto i) JEX_INLINE {
      store(first + i, c[i] + s[i]);
      store(N - first - i, c[i] - s[i]);
    });
  }

  // N = A B: B columns of A, roots, A rows of B.
  template <int A, class Load, class Store>
  JEX_INLINE static void composite(Load load, Store store) {
    constexpr int B = N / A;
    V t[N];
    unrolled<B>([&](auto j) JEX_INLINE {
      V column[A];
      Dft<A, d, T>::run([&](int i) JEX_INLINE { return load(j + B * i); },
                        [&](int k, V y) JEX_INLINE { column[k] = y; });
      unrolled<A>([&](auto k)
                      JEX_INLINE { t[k * B + j] = times_constant<N, j * k, d, T>(column[k]); });
    });
    unrolled<A>([&](auto k) JEX_INLINE {
      Dft<B, d, T>::run([&](int j) JEX_INLINE { return t[k * B + j]; },
                        [&](int l, V y) JEX_INLINE { store(k + A * l, y); });
    });
  }

  // The same without roots, where A and B have no common factor (I. J. Good, "The Interaction
  // Algorithm and Practical Fourier Analysis", Journal of the Royal Statistical Society B 20,
  // 1958).
  template <int A, class Load, class Store>
  JEX_INLINE static void coprime(Load load, Store store) {
    constexpr int B = N / A;
    V t[N];
    unrolled<B>([&](auto first) JEX_INLINE {
      constexpr int j = column_from<A, B>(first);
      Dft<A, d, T>::run([&](int i) JEX_INLINE { return load((B * i + A * j) % N); },
                        [&](int k, V y) JEX_INLINE { t[k * B + j] = y; });
    });
    unrolled<A>([&](auto k) JEX_INLINE {
      Dft<B, d, T>::run([&](int j) JEX_INLINE { return t[k * B + j]; },
                        [&](int l, V y) JEX_INLINE { store(meeting<A, B>(k, l), y); });
    });
  }

  // The j with A j = first modulo B.
  template <int A, int B>
  JEX_INLINE static constexpr int column_from(int first) {
    int j = 0;
    while (A * j % B != first) ++j;
    return j;
  }

  // The index that is k modulo A and l modulo B.
  template <int A, int B>
  JEX_INLINE static constexpr int meeting(int k, int l) {
    constexpr int a = [] {
      int i = 0;
      while (i % A != 1 || i % B != 0) i += B;
      return i;
    }();
    return (a * k + (N + 1 - a) * l) % N;
  }
};

}  // namespace jex::dft
