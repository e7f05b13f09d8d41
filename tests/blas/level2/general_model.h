// Scalar models of gemv: every product and sum in the order that docs/numerics.md tells.
#pragma once

#include "blas/level1/arithmetic.h"
#include "blas/level2/general_matrix.h"

namespace jex::test {

template <class T>
void scale_model(Vector<T>& y, int n, T beta) {
  const bool one = [&] {
    if constexpr (is_complex<T>)
      return beta.re == 1 && beta.im == 0;
    else
      return beta == 1;
  }();
  if (one) return;
  for (int i = 0; i < n; ++i) y.at(i) = is_zero(beta) ? T{} : multiply(y.at(i), beta);
}

// y += A (alpha x): columns from left to right; a complex product is added in two steps.
template <class T>
void product_model(GeneralMatrix<T>& a, T alpha, Vector<T>& x, Vector<T>& y) {
  for (int j = 0; j < a.n; ++j) {
    const T t = multiply(alpha, x.at(j));
    for (int i = 0; i < a.m; ++i) {
      const T e = a.at(i, j);
      T& s = y.at(i);
      if constexpr (is_complex<T>) {
        s = {s.re + e.re * t.re, s.im + e.im * t.re};
        s = {s.re - e.im * t.im, s.im + e.re * t.im};
      } else {
        s = s + e * t;
      }
    }
  }
}

// One dot product of a real transposed product, vectors of increment 1. Lanes: 2 for double, 4 for
// float.
template <class T>
T real_dot_model(GeneralMatrix<T>& a, int j, Vector<T>& x) {
  constexpr int lanes = 16 / sizeof(T);
  const int m = a.m;
  int first = m, last = m;
  if (j >= a.n / 4 * 4) {
    first = 1;
    last = first + (m - 1) / lanes * lanes;
  } else if (m - 1 >= 9 && uintptr_t(x.data()) % sizeof(T) == 0) {
    first = 1;
    while (uintptr_t(x.data() + first) % 16 != 0) ++first;
    last = first + (m - first) / 8 * 8;
  }
  T sum[lanes] = {a.at(0, j) * x.at(0)};
  for (int i = 1; i < first; ++i) sum[0] += a.at(i, j) * x.at(i);
  for (int i = first; i < last; ++i) sum[(i - first) % lanes] += a.at(i, j) * x.at(i);
  if (last > first) {
    for (int half = lanes / 2; half > 0; half /= 2)
      for (int k = 0; k < half; ++k) sum[k] += sum[k + half];
  }
  for (int i = last; i < m; ++i) sum[0] += a.at(i, j) * x.at(i);
  return sum[0];
}

template <class T>
T plain_dot_model(GeneralMatrix<T>& a, int j, Vector<T>& x) {
  T sum = a.at(0, j) * x.at(0);
  for (int i = 1; i < a.m; ++i) sum += a.at(i, j) * x.at(i);
  return sum;
}

// A complex dot product: straight and crossed products apart; for single precision the even and the
// odd rows apart as well.
template <class T>
T complex_dot_model(GeneralMatrix<T>& a, int j, Vector<T>& x, bool conj) {
  constexpr int lanes = 16 / sizeof(T);
  T straight[2] = {}, crossed[2] = {};
  for (int i = 0; i < a.m; ++i) {
    const T e = a.at(i, j), f = x.at(i);
    T &s = straight[i % lanes], &c = crossed[i % lanes];
    s = {s.re + e.re * f.re, s.im + e.im * f.im};
    c = {c.re + e.re * f.im, c.im + e.im * f.re};
  }
  const T s = lanes == 2 ? add(straight[0], straight[1]) : straight[0];
  const T c = lanes == 2 ? add(crossed[0], crossed[1]) : crossed[0];
  if (conj) return {s.re + s.im, c.re - c.im};
  return {s.re - s.im, c.re + c.im};
}

template <class T>
void gemv_model(char trans, GeneralMatrix<T>& a, T alpha, Vector<T>& x, T beta, Vector<T>& y) {
  const bool plain = trans == 'N' || trans == 'n';
  if (a.m == 0 || a.n == 0) return;
  scale_model(y, plain ? a.m : a.n, beta);
  if (is_zero(alpha)) return;
  if (plain) {
    product_model(a, alpha, x, y);
    return;
  }
  for (int j = 0; j < a.n; ++j) {
    T dot;
    if constexpr (is_complex<T>)
      dot = complex_dot_model(a, j, x, trans == 'C' || trans == 'c');
    else
      dot = x.inc() == 1 && y.inc() == 1 ? real_dot_model(a, j, x) : plain_dot_model(a, j, x);
    y.at(j) = add(multiply(alpha, dot), y.at(j));
  }
}

}  // namespace jex::test
