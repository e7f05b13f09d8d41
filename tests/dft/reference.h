// Transforms in extended precision: by the definition, and by factors for longer lengths.
#pragma once

#include <cmath>
#include <complex>
#include <vector>

namespace jex::test {

using Wide = std::complex<long double>;
using Spectrum = std::vector<Wide>;

// exp(-2 pi i k / n), the angle taken to less than an eighth of a turn.
inline Wide root(uint64_t k, uint64_t n) {
  const long double unit = acosl(-1.0L) / 4 / n;
  uint64_t x = 8 * (k % n);
  const int octant = int(x / n);
  x = octant % 2 ? (octant + 1) * n - x : x - octant * n;
  const long double c = cosl(unit * x), s = sinl(unit * x);
  const bool swapped = octant % 4 == 1 || octant % 4 == 2;
  const long double re = swapped ? s : c, im = swapped ? c : s;
  return {octant >= 2 && octant < 6 ? -re : re, octant < 4 ? -im : im};
}

// x(j) times w^(jk), added up: n^2 products.
inline Spectrum transform_by_definition(const Spectrum& x) {
  const size_t n = x.size();
  Spectrum w(n), y(n);
  for (size_t k = 0; k < n; ++k) w[k] = root(k, n);
  for (size_t k = 0; k < n; ++k) {
    long double re = 0, im = 0;
    for (size_t j = 0, index = 0; j < n; ++j, index += k, index -= index >= n ? n : 0) {
      re += x[j].real() * w[index].real() - x[j].imag() * w[index].imag();
      im += x[j].real() * w[index].imag() + x[j].imag() * w[index].real();
    }
    y[k] = {re, im};
  }
  return y;
}

// The same through the smallest prime factor of n, again and again; stride picks the roots of the
// smaller lengths from the table of the whole.
inline Spectrum transform_by_factors(const Spectrum& x, const Spectrum& w) {
  const size_t n = x.size(), stride = w.size() / n;
  size_t p = 2;
  while (p * p <= n && n % p) ++p;
  if (n % p) p = n;
  if (n < 2) return x;
  const size_t m = n / p;
  Spectrum part(m), y(n);
  std::vector<Spectrum> parts;
  for (size_t i = 0; i < p; ++i) {
    for (size_t j = 0; j < m; ++j) part[j] = x[j * p + i];
    parts.push_back(m > 1 ? transform_by_factors(part, w) : part);
  }
  for (size_t k = 0; k < n; ++k)
    for (size_t i = 0; i < p; ++i) {
      const Wide a = parts[i][k % m], b = w[i * k % n * stride];
      y[k] += Wide(a.real() * b.real() - a.imag() * b.imag(),
                   a.real() * b.imag() + a.imag() * b.real());
    }
  return y;
}
inline Spectrum transform(const Spectrum& x) {
  Spectrum w(x.size());
  for (size_t k = 0; k < w.size(); ++k) w[k] = root(k, w.size());
  return transform_by_factors(x, w);
}

// Root-mean-square distance relative to that of the reference; NaN stays NaN.
template <class T>
double relative_error(const T* y, const Spectrum& reference) {
  long double distance = 0, size = 0;
  for (size_t k = 0; k < reference.size(); ++k) {
    distance += std::norm(Wide(y[k].re, y[k].im) - reference[k]);
    size += std::norm(reference[k]);
  }
  return double(sqrtl(distance / size));
}

// A backward transform is the forward one with the results k and n - k exchanged.
inline Spectrum backward(Spectrum forward) {
  for (size_t k = 1; 2 * k < forward.size(); ++k)
    std::swap(forward[k], forward[forward.size() - k]);
  return forward;
}

}  // namespace jex::test
