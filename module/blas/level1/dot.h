// Dot products. Increments whose product is 1 pair the same elements in both vectors, so that both
// walk forward from their first stored element.
#pragma once

#include "blas/level1/sums.h"

namespace jex::blas {

// Sums in R, the type T itself or double for float vectors.
template <class R, class T, class X, class Y>
inline R sum_products(int n, int peel, const X& x, const Y& y) {
  const auto product = [](Lanes<R> x, Lanes<R> y) { return x * y; };
  if constexpr (std::is_same_v<R, T>)
    return sum_terms<R>(n, peel, product, x, y);
  else
    return sum_terms<R>(n, peel, product, Widened<X>{x}, Widened<Y>{y});
}

// Vectors that reach 16-byte boundaries together are peeled to them; others run unpeeled.
template <class T>
inline int common_peel(int n, const T* x, const T* y) {
  return ((uintptr_t)x - (uintptr_t)y) % 16 == 0 ? elements_to_boundary(x, n) : 0;
}

template <class R, class T>
inline R dot(int n, const T* x, int incx, const T* y, int incy) {
  if (n < 1) return 0;
  if (incx == incy && (incx == 1 || incx == -1))
    return sum_products<R, T>(n, common_peel(n, x, y), Contiguous<T>{x}, Contiguous<T>{y});
  return sum_products<R, T>(n, 0, Spaced<T>{start_of(x, n, incx), incx},
                            Spaced<T>{start_of(y, n, incy), incy});
}

template <class T>
inline T doti(int nz, const T* x, const jex_int* indx, const T* y) {
  if (nz < 1) return 0;
  return sum_products<T, T>(nz, 0, Contiguous<T>{x}, Gathered<T>{y, indx});
}

enum class Conj { no, yes };

// Complex products keep the four kinds of real products apart until the end:
//   straight = sums of (x.re y.re, x.im y.im), crossed = sums of (x.re y.im, x.im y.re);
// then x . y = (s0 - s1, c0 + c1) and conj(x) . y = (s0 + s1, c0 - c1).
// The registers of a block of four alternate between two pairs of sums.
template <Conj conj, class T, class X, class Y>
inline T complex_dot(int n, const X& x, const Y& y) {
  using R = Real<T>;
  constexpr int width = Lanes<T>::count;
  Lanes<R> straight[2] = {Lanes<R>::zero(), Lanes<R>::zero()};
  Lanes<R> crossed[2] = {Lanes<R>::zero(), Lanes<R>::zero()};
  const auto add = [&](int k, Lanes<T> x, Lanes<T> y) __attribute__((always_inline)) {
    const Lanes<R> xp = pinned(x.parts), yp = pinned(y.parts);
    straight[k] = pinned(straight[k] + xp * yp);
    crossed[k] = pinned(crossed[k] + xp * simd::swap_parts(yp));
  };
  int i = 0;
  for (; i + 4 * width <= n; i += 4 * width) {
    add(0, x.lanes(i), y.lanes(i));
    add(1, x.lanes(i + width), y.lanes(i + width));
    add(0, x.lanes(i + 2 * width), y.lanes(i + 2 * width));
    add(1, x.lanes(i + 3 * width), y.lanes(i + 3 * width));
  }
  for (; i + width <= n; i += width) add(0, x.lanes(i), y.lanes(i));
  for (; i < n; ++i) add(0, x.first(i), y.first(i));
  const auto s = simd::sum_complex_lanes<T>({straight[0] + straight[1]});
  const auto c = simd::sum_complex_lanes<T>({crossed[0] + crossed[1]});
  if constexpr (conj == Conj::yes) return {s.re + s.im, c.re - c.im};
  return {s.re - s.im, c.re + c.im};
}

template <Conj conj, class T>
inline T dot(int n, const T* x, int incx, const T* y, int incy) {
  if (n < 1) return {0, 0};
  if (incx == incy && (incx == 1 || incx == -1))
    return complex_dot<conj, T>(n, Contiguous<T>{x}, Contiguous<T>{y});
  return complex_dot<conj, T>(n, Spaced<T>{start_of(x, n, incx), incx},
                              Spaced<T>{start_of(y, n, incy), incy});
}

template <Conj conj, class T>
inline T doti(int nz, const T* x, const jex_int* indx, const T* y) {
  if (nz < 1) return {0, 0};
  return complex_dot<conj, T>(nz, Contiguous<T>{x}, Gathered<T>{y, indx});
}

}  // namespace jex::blas
