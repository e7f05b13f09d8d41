// C := alpha op(A) op(B) + beta C without packing.
//
// The arithmetic is that of the packed multiply in a single block of steps: one sum for each
// element of C (for complex ones a sum for each part of B), from the first step to the last, of
// (alpha a) b; then C := sum, C + sum, or sum + beta C.
#pragma once

#include "blas/gemm/scheme.h"

#include <algorithm>

namespace jex::blas {

template <class T>
struct Small {
  int rows, steps;
  T alpha, beta;
  Operand<T> a, b;
  T* c;
  int ldc;
};

// beta c + sum; c is not read where beta is 0.
template <class T>
[[gnu::always_inline]] inline Lanes<T> with_beta(Lanes<T> sum, T beta, auto load_c) {
  if (is_zero(beta)) return sum;
  return is_one(beta) ? load_c() + sum : sum + load_c() * Factor<T>(beta);
}

// Columns j, j + 1, ... of C.
template <int columns, class T>
[[gnu::noinline]] void multiply_columns(const Small<T>& q, int j) {
  constexpr int height = Lanes<T>::count;
  using L = Lanes<T>;
  const ptrdiff_t inc = q.a.row_distance(), next = q.a.column_distance(),
                  b_row = q.b.row_distance(), b_column = q.b.column_distance();
  const Factor<T> alpha(q.alpha);
  const auto rows = [&](int i, auto load) __attribute__((always_inline)) {
    L sum[columns];
    unrolled<columns>([&](auto k) __attribute__((always_inline)) { sum[k] = L::zero(); });
    const T *a = q.a.from(i, 0).x, *b = q.b.from(0, j).x;
    for (int p = 0; p < q.steps; ++p, a += next, b += b_row) {
      L lane = load(a);
      if constexpr (is_complex<T>)
        if (q.a.conjugates()) lane.parts = lane.parts * L::all({1, -1}).parts;
      lane = lane * alpha;
      unrolled<columns>([&](auto k) __attribute__((always_inline)) {
        T factor = b[k * b_column];
        if constexpr (is_complex<T>)
          if (q.b.conjugates()) factor.im = -factor.im;
        sum[k] = sum[k] + lane * Factor<T>(factor);
      });
    }
    return [=](int k) { return sum[k]; };
  };
  int i = 0;
  T* c = q.c + ptrdiff_t(j) * q.ldc;
  for (; i + height <= q.rows; i += height) {
    const auto sum = rows(
        i, [=](const T* a) __attribute__((always_inline)) {
          return inc == 1 ? L::load(a) : L::gather(a, inc);
        });
    unrolled<columns>([&](auto k) __attribute__((always_inline)) {
      T* const to = c + i + ptrdiff_t(k) * q.ldc;
      with_beta(sum(k), q.beta, [=] { return L::load(to); }).store(to);
    });
  }
  for (; i < q.rows; ++i) {
    const auto sum = rows(
        i, [](const T* a) __attribute__((always_inline)) { return L::load_first(a); });
    unrolled<columns>([&](auto k) __attribute__((always_inline)) {
      T* const to = c + i + ptrdiff_t(k) * q.ldc;
      with_beta(sum(k), q.beta, [=] { return L::load_first(to); }).store_first(to);
    });
  }
}

template <class T>
void multiply_small(const Small<T>& q, int columns) {
  constexpr int together = is_complex<T> ? 2 : 4;
  int j = 0;
  for (; j + together <= columns; j += together) multiply_columns<together>(q, j);
  for (; j < columns; ++j) multiply_columns<1>(q, j);
}

}  // namespace jex::blas
