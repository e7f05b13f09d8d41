// Euclidean norms and sums of magnitudes.
#pragma once

#include "blas/level1/sums.h"

#include <math.h>

namespace jex::blas {

// Sum of the squares of elements that lie side by side (for complex vectors, of all their parts).
// double: terms up to a multiple of four in partial sums, the rest added to their total one by one.
// float: every element widened to double, peeled to a 16-byte boundary.
inline double sum_squares(int n, const double* x) {
  const int whole = n & ~3;
  double sum = sum_terms<double>(
      whole, 0, [](Lanes<double> x) { return x * x; }, Contiguous<double>{x});
  for (int i = whole; i < n; ++i) sum += x[i] * x[i];
  return sum;
}
inline double sum_squares(int n, const float* x) {
  return sum_terms<double>(
      n, elements_to_boundary(x, n), [](Lanes<double> x) { return x * x; },
      Widened<Contiguous<float>>{{x}});
}

// Sum of the squares of spaced elements in two partial sums: even and odd elements, or, for complex
// vectors, real and imaginary parts. Increment 0 takes the first element n times.
template <class T>
inline double sum_squares_spaced(int n, const T* x, int inc) {
  double even = 0, odd = 0;
  const auto square = [](double a) { return a * a; };
  if constexpr (is_complex<T>) {
    for (int i = 0; i < n; ++i, x += inc) {
      even += square(x->re);
      odd += square(x->im);
    }
  } else {
    int i = 0;
    for (; i + 2 <= n; i += 2, x += 2 * inc) {
      even += square(x[0]);
      odd += square(x[inc]);
    }
    if (i < n) even += square(x[0]);
  }
  return even + odd;
}

// The plain, unscaled sum: one pass and no division; magnitudes beyond the square root of the
// largest double overflow to infinity.
template <class T>
inline Real<T> nrm2(int n, const T* x, int incx) {
  if (n < 1) return 0;
  double sum;
  if (incx == 1 || incx == -1)
    sum = sum_squares(is_complex<T> ? 2 * n : n, reinterpret_cast<const Real<T>*>(x));
  else
    sum = sum_squares_spaced(n, start_of(x, n, incx), incx);
  return Real<T>(sqrt(sum));
}

// Sums of magnitudes use four registers: 8 sums in double, 16 in single precision.
template <class R, class Source>
inline R sum_magnitudes(int n, int peel, const Source& x) {
  return sum_terms<R, 4 * Lanes<R>::count>(
      n, peel, [](Lanes<R> x) { return abs(x); }, x);
}

template <class T>
inline T asum(int n, const T* x, int incx) {
  if (n < 1) return 0;
  if (incx == 1 || incx == -1)
    return sum_magnitudes<T>(n, elements_to_boundary(x, n), Contiguous<T>{x});
  return sum_magnitudes<T>(n, 0, Spaced<T>{start_of(x, n, incx), incx});
}

// |re| + |im| of every element.
template <class T>
requires is_complex<T>
inline Real<T> asum(int n, const T* x, int incx) {
  using R = Real<T>;
  if (incx == 1 || incx == -1) return asum(2 * n, reinterpret_cast<const R*>(x), 1);
  if (n < 1) return 0;
  return sum_magnitudes<R>(2 * n, 0, SpacedParts<T>{start_of(x, n, incx), incx});
}

template <class T>
inline Real<T> cabs1(const T& x) {
  return fabs(x.re) + fabs(x.im);
}

}  // namespace jex::blas
