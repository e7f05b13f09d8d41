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

// One lane of rows by a few columns: at most four registers of sums.
template <class T>
struct SmallWalk {
  int steps;
  bool conjugates_a, conjugates_b, scaled;
  T alpha;
  ptrdiff_t inc, next;        // elements of A: to the next row, to the next step
  ptrdiff_t b_row, b_column;  // real numbers of B: to the next step, to the next column

  explicit SmallWalk(const Small<T>& q)
      : steps(q.steps),
        conjugates_a(is_complex<T> && q.a.conjugates()),
        conjugates_b(is_complex<T> && q.b.conjugates()),
        scaled(!is_one(q.alpha)),
        alpha(q.alpha),
        inc(q.a.row_distance()),
        next(q.a.column_distance()),
        b_row(q.b.row_distance() * parts),
        b_column(q.b.column_distance() * parts) {}

  using R = Real<T>;
  static constexpr int parts = is_complex<T> ? 2 : 1;

  // Complex sums stay apart by the parts of b: they are added to C one after the other.
  template <int columns, class Load>
  [[gnu::always_inline]] void sum(const T* a, const R* b, Load load,
                                  Lanes<R> (&sum)[columns * parts]) const {
    unrolled<columns * parts>([&](auto k)
                                  __attribute__((always_inline)) { sum[k] = Lanes<R>::zero(); });
    for (int p = steps; p > 0; --p, a += next, b += b_row) {
      Lanes<T> lane = load(a);
      if constexpr (is_complex<T>)
        if (conjugates_a) lane = conjugate(lane);
      if (scaled) lane = lane * Factor<T>(alpha);
      Lanes<R> row;
      if constexpr (is_complex<T>)
        row = pinned(lane.parts);
      else
        row = pinned(lane);
      unrolled<columns * parts>([&](auto k) __attribute__((always_inline)) {
        accumulate(sum[k],
                   pinned(Lanes<R>::load_all(b + (k / parts) * b_column + k % parts)) * row);
      });
    }
    if constexpr (is_complex<T>)
      if (conjugates_b)
        unrolled<columns>([&](auto k) __attribute__((always_inline)) {
          sum[2 * k + 1] = Lanes<R>::zero() - sum[2 * k + 1];
        });
  }
};

// Columns j, j + 1, ... of C.
template <int columns, First first, bool contiguous, class T>
[[gnu::noinline]] void multiply_columns(const Small<T>& q, int j) {
  constexpr int height = Lanes<T>::count;
  using L = Lanes<T>;
  const SmallWalk<T> walk(q);
  const T beta = q.beta;
  const ptrdiff_t ldc = q.ldc, inc = walk.inc;
  const T* a = q.a.x;
  const Real<T>* const b = reinterpret_cast<const Real<T>*>(q.b.from(0, j).x);
  T* c = q.c + j * ldc;
  Lanes<Real<T>> sum[columns * walk.parts];
  const auto store = [&](auto load_c, auto store_c) __attribute__((always_inline)) {
    unrolled<columns>([&](auto k) __attribute__((always_inline)) {
      T* const to = c + k * ldc;
      L old = L::zero();
      if constexpr (first != First::overwrite) old = load_c(to);
      if constexpr (first == First::general) old = old * Factor<T>(beta);
      if constexpr (is_complex<T>)
        store_c({add_alternating(old.parts + sum[2 * k], swap_parts(sum[2 * k + 1]))}, to);
      else
        store_c(first == First::overwrite ? sum[k] : old + sum[k], to);
    });
  };
  int left = q.rows;
  for (; left >= height; left -= height, a += height * inc, c += height) {
    walk.template sum<columns>(
        a, b,
        [=](const T* a)
            __attribute__((always_inline)) { return contiguous ? L::load(a) : L::gather(a, inc); },
        sum);
    store([](const T* c) { return L::load(c); }, [](L v, T* c) { v.store(c); });
  }
  for (; left > 0; --left, a += inc, ++c) {
    walk.template sum<columns>(
        a, b, [](const T* a) __attribute__((always_inline)) { return L::load_first(a); }, sum);
    store([](const T* c) { return L::load_first(c); }, [](L v, T* c) { v.store_first(c); });
  }
}

template <class T>
void multiply_small(const Small<T>& q, int columns) {
  constexpr int together = is_complex<T> ? 2 : 4;
  const auto walk = [&](auto first, auto contiguous) {
    int j = 0;
    for (; j + together <= columns; j += together)
      multiply_columns<together, first, contiguous>(q, j);
    for (; j < columns; ++j) multiply_columns<1, first, contiguous>(q, j);
  };
  const auto with_first = [&](auto first) {
    q.a.row_distance() == 1 ? walk(first, std::true_type()) : walk(first, std::false_type());
  };
  if (is_zero(q.beta))
    with_first(std::integral_constant<First, First::overwrite>());
  else if (is_one(q.beta))
    with_first(std::integral_constant<First, First::accumulate>());
  else
    with_first(std::integral_constant<First, First::general>());
}

}  // namespace jex::blas
