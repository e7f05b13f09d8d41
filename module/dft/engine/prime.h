// A prime length N as a convolution. With a generator g of the residues modulo N,
//
//   y(g^b) = x(0) + sum over a of x(g^-a) w^(g^(b-a)),
//
// which transforms of length N - 1 compute (C. M. Rader, "Discrete Fourier Transforms When the
// Number of Data Samples Is Prime", Proceedings of the IEEE 56, 1968). All tables are constants.
#pragma once

#include <stdint.h>

#include "dft/engine/butterfly.h"
#include "dft/engine/factor.h"

namespace jex::dft {

constexpr int longest_convolved = 149;

// Primes whose two transforms take less time than the sums of the definition: those where half of
// n - 1 is no prime without a kernel.
constexpr bool is_convolved(int n) {
  if (n <= largest_kernel_prime || n > longest_convolved || !is_prime(n)) return false;
  const int inner = largest_prime(n - 1);
  return inner <= largest_kernel_prime || 2 * inner < n - 1;
}

// The least number whose powers are all residues but 0.
constexpr int generator(int n) {
  for (int g = 2;; ++g) {
    int order = 1;
    for (int power = g; power != 1; power = power * g % n) ++order;
    if (order == n - 1) return g;
  }
}

template <int N, class T>
struct ConstantConvolution {
  uint8_t powers[N];            // g^a, the last one again the first
  alignas(16) T filter[N - 1];  // the forward transform of w^(g^c), by N - 1

  constexpr ConstantConvolution() : powers(), filter() {
    constexpr int n = N - 1, g = generator(N);
    Root values[n], roots[n];
    for (int a = 0, power = 1; a < N; ++a, power = power * g % N) powers[a] = uint8_t(power);
    for (int a = 0; a < n; ++a) {
      values[a] = constant_root(powers[a], N);
      roots[a] = constant_root(a, n);
    }
    for (int k = 0; k < n; ++k) {
      long double re = 0, im = 0;
      for (int a = 0; a < n; ++a) {
        const Root v = values[a], w = roots[a * k % n];
        re += v.c * w.c - v.s * w.s;
        im -= v.c * w.s + v.s * w.c;
      }
      filter[k] = {Real<T>(re / n), Real<T>(im / n)};
    }
  }
};
template <int N, class T>
inline constexpr ConstantConvolution<N, T> constant_convolution{};

// The backward transform is the forward one of conjugates, conjugated: the directions within change
// places, and the filter is conjugated.
template <int N, Direction d, class T, template <int, Direction, class> class Inner>
void run_convolved(const T* in, T* out, Real<T> scale) {
  using V = Lanes<T>;
  constexpr int n = N - 1;
  constexpr Direction other = d == Direction::forward ? Direction::backward : Direction::forward;
  const ConstantConvolution<N, T>& table = constant_convolution<N, T>;
  alignas(64) T data[n];
  const V first = V::load_first(in);
  for (int a = 0; a < n; ++a) V::load_first(in + table.powers[n - a]).store_first(data + a);
  Inner<n, d, T>::run(data, data, 1);
  // x(0) comes to all results by the sum of the products, which is their element 0.
  const V sum = first + V::load_first(data);
  for (int k = 0; k < n; k += V::count)
    simd::times_elements<-sign(d)>(V::load(data + k), V::load(table.filter + k)).store(data + k);
  (V::load_first(data) + first).store_first(data);
  Inner<n, other, T>::run(data, data, scale);
  simd::scaled(sum, scale).store_first(out);
  for (int b = 0; b < n; ++b) V::load_first(data + b).store_first(out + table.powers[b]);
}

}  // namespace jex::dft
