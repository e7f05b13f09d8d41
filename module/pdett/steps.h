// What turns a Fourier transform of n real numbers into a trigonometric one: loops before it and
// behind it. The spectrum stands in the order
//
//   n even:  r0 r(n/2) r1 i1 r2 i2 ..        n odd:  r0 r1 i1 r2 i2 ..
//
// and h = (n - 1) / 2 (truncated) is the number of pairs behind the single ones.
//
// (W. H. Press et al., "Numerical Recipes", section 12.4, for the transforms with ends on the grid;
// J. Makhoul, "A Fast Cosine Transform in One and Two Dimensions", IEEE Transactions on Acoustics,
// Speech and Signal Processing 28, 1980, for the staggered ones.)
#pragma once

#include "dft/engine/butterfly.h"
#include "simd/mirror.h"

namespace jex::pdett {

using simd::in_lanes;
using simd::Lanes;
using simd::load_pairs;
using simd::store_pairs;

enum class Wave { cosine, sine };

constexpr int pairs_of(int n) { return (n - 1) / 2; }
constexpr int singles_of(int n) { return n % 2 ? 1 : 2; }

// y(j) for the transforms on all points of the grid: with s = sin(j pi / n),
//   sine:    y(j) = s (f(j) + f(n-j)) + (f(j) - f(n-j)) / 2
//   cosine:  y(j) = (f(j) + f(n-j)) / 2 - s (f(j) - f(n-j))
// Returned is the cosine transform's result of index 1, the first link of its chain of odd ones:
// each lane sums its own share of j = 1 .. h.
template <Wave wave, class R>
R fold(const R* f, int n, const R* sines, const R* cosines, R* y) {
  constexpr bool is_sine = wave == Wave::sine;
  R first = R(0.5) * (f[0] - f[n]);
  auto firsts = Lanes<R>::zero();
  in_lanes<R>(pairs_of(n), [&](auto v, int i) JEX_INLINE {
    using V = decltype(v);
    const V a = V::load(f + 1 + i), b = reversed(V::load(f + n - i - V::count));
    const V half = V::all(R(0.5)), sum = a + b, difference = a - b, s = V::load(sines + i);
    const V even = (is_sine ? s : half) * sum, odd = (is_sine ? half : s) * difference;
    (is_sine ? even + odd : even - odd).store(y + 1 + i);
    reversed(is_sine ? even - odd : even + odd).store(y + n - i - V::count);
    if constexpr (!is_sine) {
      const V term = difference * V::load(cosines + i);
      if constexpr (V::count > 1)
        firsts = firsts + term;
      else
        first += term.v;
    }
  });
  y[0] = is_sine ? R(0) : R(0.5) * (f[0] + f[n]);
  if (n % 2 == 0) y[n / 2] = is_sine ? 2 * f[n / 2] : f[n / 2];
  return first + sum_lanes(firsts);
}

// Results of even index are parts of the spectrum, those of odd index their running sums:
//   sine:    S(2k) = -i(k),  S(2k+1) = S(2k-1) + r(k),  S(1) = r(0) / 2
//   cosine:  C(2k) = r(k),   C(2k+1) = C(2k-1) - i(k),  C(1) = first
template <Wave wave, class R>
void unfold(R* y, int n, R first, R scale, R* f) {
  const bool is_even = n % 2 == 0;
  const R r0 = y[0], middle = is_even ? y[1] : R(0);
  const R start = wave == Wave::sine ? R(0.5) * r0 : first;
  // Pairs (r, i) from k = 1 on become pairs of results (2k - 1 or 2k, the other one).
  const R* from = y + singles_of(n);
  const int pairs = pairs_of(n);
  R carry = start;
  auto carries = Lanes<R>::all(start);
  const auto factor = Lanes<R>::all(scale);
  int done = 0;
  if (is_even) {
    R* const to = f + 2;
    for (; done + Lanes<R>::count <= pairs; done += Lanes<R>::count) {
      Lanes<R> re, im;
      load_pairs(from + 2 * done, re, im);
      const Lanes<R> sums = running_sum(wave == Wave::sine ? re : negated(im));
      const Lanes<R> odd = carries + sums;
      carries = carries + last_in_all(sums);
      store_pairs(factor * (wave == Wave::sine ? negated(im) : re), factor * odd, to + 2 * done);
    }
    carry = carries.first();
  }
  // Odd lengths: the odd result before the even one.
  for (; done < pairs; ++done) {
    const R re = from[2 * done], im = from[2 * done + 1];
    const R even = wave == Wave::sine ? -im : re;
    const R next = carry + (wave == Wave::sine ? re : -im);
    if (is_even) {
      f[2 + 2 * done] = scale * even;
      f[3 + 2 * done] = scale * next;
    } else {
      f[1 + 2 * done] = scale * carry;
      f[2 + 2 * done] = scale * even;
    }
    carry = next;
  }
  f[0] = wave == Wave::sine ? R(0) : scale * r0;
  if (is_even) f[1] = scale * start;
  f[n] = wave == Wave::sine ? R(0) : scale * (is_even ? middle : carry);
}

// The order in which a staggered transform meets its n points. A sine transform is the cosine
// transform of the points in reverse, with the signs of the odd frequencies changed.
//   v(j) = x(2j),  v(n-1-j) = x(2j+1), these negated for sines; weights(i) multiplies x(i).
template <Wave wave, bool weighted, class R>
void part(const R* x, int n, const R* weights, R* v) {
  in_lanes<R>(n / 2, [&](auto w, int j) JEX_INLINE {
    using V = decltype(w);
    V even, odd;
    load_pairs(x + 2 * j, even, odd);
    if constexpr (weighted) {
      V a, b;
      load_pairs(weights + 2 * j, a, b);
      even = a * even;
      odd = b * odd;
    }
    even.store(v + j);
    reversed(wave == Wave::sine ? negated(odd) : odd).store(v + n - j - V::count);
  });
  if (n % 2) v[n / 2] = weighted ? weights[n - 1] * x[n - 1] : x[n - 1];
}

// The way back, with a factor.
template <Wave wave, class R>
void join(const R* v, int n, R scale, R* x) {
  in_lanes<R>(n / 2, [&](auto w, int j) JEX_INLINE {
    using V = decltype(w);
    const V odd = reversed(V::load(v + n - j - V::count));
    store_pairs(V::all(scale) * V::load(v + j), V::all(wave == Wave::sine ? -scale : scale) * odd,
                x + 2 * j);
  });
  if (n % 2) x[n - 1] = scale * v[n / 2];
}

// Place of result k, 0 <= k < n, beside n - k: sines are counted from the other end of f(0 .. n).
template <Wave wave>
constexpr int place(int k, int n) {
  return wave == Wave::sine ? n - k : k;
}

constexpr double half_root = 0.70710678118654752440, root_of_2 = 1.4142135623730950488;

// With c, s = cos, sin(k pi / 2n): C(k) = r c + i s, C(n-k) = r s - i c.
template <Wave wave, class R>
void turn(const R* y, int n, const R* c, const R* s, R scale, R* f) {
  const int first = singles_of(n);
  f[place<wave>(0, n)] = scale * y[0];
  if (n % 2 == 0) f[n / 2] = scale * R(half_root) * y[1];
  R* const low = f + 1;
  R* const high = f + n;
  in_lanes<R>(pairs_of(n), [&](auto v, int i) JEX_INLINE {
    using V = decltype(v);
    V re, im;
    load_pairs(y + first + 2 * i, re, im);
    const V a = V::all(scale) * V::load(c + i), b = V::all(scale) * V::load(s + i);
    const V at_k = re * a + im * b, at_n_k = re * b - im * a;
    (wave == Wave::sine ? at_n_k : at_k).store(low + i);
    reversed(wave == Wave::sine ? at_k : at_n_k).store(high - i - V::count);
  });
}

// The way back: r = C(k) c + C(n-k) s, i = C(k) s - C(n-k) c.
template <Wave wave, class R>
void turn_back(const R* f, int n, const R* c, const R* s, R* y) {
  const int first = singles_of(n);
  y[0] = f[place<wave>(0, n)];
  if (n % 2 == 0) y[1] = R(root_of_2) * f[n / 2];
  const R* const low = f + 1;
  const R* const high = f + n;
  in_lanes<R>(pairs_of(n), [&](auto v, int i) JEX_INLINE {
    using V = decltype(v);
    const V up = V::load(low + i), down = reversed(V::load(high - i - V::count));
    const V at_k = wave == Wave::sine ? down : up, at_n_k = wave == Wave::sine ? up : down;
    const V a = V::load(c + i), b = V::load(s + i);
    store_pairs(at_k * a + at_n_k * b, at_k * b - at_n_k * a, y + first + 2 * i);
  });
}

// The fourth kind of an even n as a Fourier transform of n/2 complex elements (the rotations of
// both sides are the same): with w(j) = c(j) - i s(j) = exp(-i (8j+1) pi / 8n),
//   z(j) = w(j) (x(2j) + i x(n-1-2j)),   C(2k) = Re w(k) Z(k),  C(n-1-2k) = -Im w(k) Z(k)
// A sine transform is the cosine transform of the points with alternating signs, in reverse. Both
// steps take j and n/2-1-j at once, in the places of x(2j), x(2j+1) and their mirrors.
//
// (H. S. Malvar, "Signal Processing with Lapped Transforms", 1992.)
template <bool conjugates, class V>
JEX_INLINE inline void rotate(V& re, V& im, V c, V s) {
  const V real = re * c + im * s;
  im = conjugates ? re * s - im * c : im * c - re * s;
  re = real;
}

template <Wave wave, class R>
void rotate_points(const R* x, int n, const R* c, const R* s, R* z) {
  const auto signed_odd = [](auto v) JEX_INLINE { return wave == Wave::sine ? negated(v) : v; };
  const int m = n / 2;
  in_lanes<R>(m / 2, [&](auto v, int j) JEX_INLINE {
    using V = decltype(v);
    const int k = m - j - V::count;
    V even, odd, high_even, high_odd;
    load_pairs(x + 2 * j, even, odd);
    load_pairs(x + 2 * k, high_even, high_odd);
    V im = signed_odd(reversed(high_odd)), high_im = signed_odd(reversed(odd));
    rotate<false>(even, im, V::load(c + j), V::load(s + j));
    rotate<false>(high_even, high_im, V::load(c + k), V::load(s + k));
    store_pairs(even, im, z + 2 * j);
    store_pairs(high_even, high_im, z + 2 * k);
  });
  if (m % 2 == 0) return;
  R re = x[m - 1], im = wave == Wave::sine ? -x[m] : x[m];
  rotate<false>(re, im, c[m / 2], s[m / 2]);
  z[m - 1] = re;
  z[m] = im;
}

template <Wave wave, class R>
void rotate_frequencies(const R* z, int n, const R* c, const R* s, R scale, R* f) {
  constexpr bool is_sine = wave == Wave::sine;
  const int m = n / 2;
  in_lanes<R>(m / 2, [&](auto v, int j) JEX_INLINE {
    using V = decltype(v);
    const int k = m - j - V::count;
    const V factor = V::all(scale);
    V re, im, high_re, high_im;
    load_pairs(z + 2 * j, re, im);
    load_pairs(z + 2 * k, high_re, high_im);
    rotate<true>(re, im, factor * V::load(c + j), factor * V::load(s + j));
    rotate<true>(high_re, high_im, factor * V::load(c + k), factor * V::load(s + k));
    store_pairs(is_sine ? im : re, reversed(is_sine ? high_re : high_im), f + 2 * j);
    store_pairs(is_sine ? high_im : high_re, reversed(is_sine ? re : im), f + 2 * k);
  });
  if (m % 2 == 0) return;
  R re = z[m - 1], im = z[m];
  rotate<true>(re, im, scale * c[m / 2], scale * s[m / 2]);
  f[m - 1] = is_sine ? im : re;
  f[m] = is_sine ? re : im;
}

// The fourth kind of an odd n. D(k) = C(k) + C(k-1), with D(0) = 2 C(0), gives the fourth kind in
// place:
//   cosine:  C(k) = D(k) - C(k-1)
//   sine:    e(k) = (-1)^k C(k) = (-1)^k D(k) + e(k-1)
// that is, the running sum e in both cases, with the signs taken back for cosines.
template <Wave wave, class R>
void chain(R* x, int n) {
  R e = R(-0.5) * x[0];
  auto carries = Lanes<R>::all(e);
  R signs[4] = {1, -1, 1, -1};
  const auto sign = Lanes<R>::load(signs);
  // Two registers in turn: each sum of all lanes waits for the one before it.
  int k = 0;
  for (; k + 2 * Lanes<R>::count <= n; k += 2 * Lanes<R>::count) {
    R* const second = x + k + Lanes<R>::count;
    const Lanes<R> low = running_sum(sign * Lanes<R>::load(x + k));
    const Lanes<R> high = last_in_all(low) + running_sum(sign * Lanes<R>::load(second));
    const Lanes<R> a = carries + low, b = carries + high;
    carries = carries + last_in_all(high);
    (wave == Wave::sine ? a : sign * a).store(x + k);
    (wave == Wave::sine ? b : sign * b).store(second);
  }
  e = carries.first();
  for (; k < n; ++k) {
    const R flip = k % 2 ? R(-1) : R(1);
    e += flip * x[k];
    x[k] = wave == Wave::sine ? e : flip * e;
  }
}

}  // namespace jex::pdett
