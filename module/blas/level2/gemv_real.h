// Inner kernels of gemv for real matrices, unit strides.
//
// Both products take six columns at a time, which fills the eight registers:
//
//   y += A t   six factors t(j), one register of y, one product
//   s = A' x   six sums, one register of x, one product
//
// so that each register of y (of x) is loaded once for six of A, and the two loads a cycle that the
// processor has go to the matrix.
#pragma once

#include "blas/level1/sums.h"
#include "blas/level1/scalar.h"
#include "simd/prefetch.h"
#include "simd/repeat.h"

#include <algorithm>
#include <stddef.h>
#include <utility>

namespace jex::blas {

using simd::accumulate;
using simd::unrolled;

inline constexpr int columns_at_once = 6;

// A matrix beyond the second-level cache is asked for two kilobytes ahead in each column; the
// processor's own prefetch follows six columns at two thirds of the bandwidth. Within the caches
// that costs a twentieth.
enum class Memory { near, far };
inline constexpr size_t near_bytes = 1 << 20;
inline constexpr size_t bytes_ahead = 2048;

// A call may see a few columns of a larger matrix, as the blocks of the triangular kernels do: the
// leading dimension tells of it.
template <class T>
inline bool is_far(int lda, int n, size_t bytes = near_bytes) {
  return size_t(lda) > bytes / sizeof(T) / std::max(lda, n);
}

// Calls kernel(k), k a compile-time constant, for k = count, from 1 to most; 0 calls nothing.
template <int most, class Kernel>
[[gnu::always_inline]] inline void with_count(int count, Kernel kernel) {
  [&]<int... k>(std::integer_sequence<int, k...>) {
    ((count == k + 1 ? kernel(std::integral_constant<int, k + 1>()) : void()), ...);
  }
  (std::make_integer_sequence<int, most>());
}

// A row of up to six columns. The columns are reached from two pointers, the first and the fourth
// column's: base, base + step and base + 2 step are addresses of one instruction.
template <class T>
struct Columns {
  const T *first, *fourth;
  ptrdiff_t step;  // bytes

  Columns(const T* a, ptrdiff_t lda)
      : first(a), fourth(a + 3 * lda), step(lda * ptrdiff_t(sizeof(T))) {}
  template <int j>
  const T* at(int row) {
    const T* const base = j < 3 ? first : fourth;
    step = pinned(step);
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(base) + j % 3 * step) + row;
  }
  void advance(int rows) {
    first = pinned(first + rows);
    fourth = pinned(fourth + rows);
  }
};

// y(i) := y(i) + a(i,0) t(0) + ... + a(i,columns-1) t(columns-1), added from left to right: the
// same order for every number of columns at once and every alignment.
template <int columns, Memory memory = Memory::near, class T>
[[gnu::noinline]] void add_columns(int m, const T* a, ptrdiff_t lda, const T* t, T* y) {
  [=]<int... j>(std::integer_sequence<int, j...>) __attribute__((always_inline)) {
    constexpr int width = Lanes<T>::count;
    Columns<T> column(a, lda);
    T* to = y;
    const Lanes<T> f[columns] = {pinned(Lanes<T>::all(t[j]))...};
    const auto rows = [&](int i) __attribute__((always_inline)) {
      auto sum = pinned(Lanes<T>::load(to + i));
      ((sum = pinned(sum + pinned(Lanes<T>::load(column.template at<j>(i))) * f[j])), ...);
      sum.store(to + i);
    };
    const auto row = [&] __attribute__((always_inline)) {
      auto sum = pinned(Lanes<T>::load_first(to));
      ((sum = pinned(sum + pinned(Lanes<T>::load_first(column.template at<j>(0))) * f[j])), ...);
      sum.store_first(to);
    };
    const auto advance = [&](int count) __attribute__((always_inline)) {
      column.advance(count);
      to = pinned(to + count);
    };
    T* const end = y + m;
    T* const begin = y + elements_to_boundary(y, m);
    for (; to < begin; advance(1)) row();
    for (T* const last = end - 4 * width; to <= last; advance(4 * width)) {
      if constexpr (memory == Memory::far)
        (simd::prefetch(column.template at<j>(bytes_ahead / sizeof(T))), ...);
      unrolled<4>([&](auto r) __attribute__((always_inline)) { rows(r * width); });
    }
    for (T* const last = end - width; to <= last; advance(width)) rows(0);
    for (; to < end; advance(1)) row();
  }
  (std::make_integer_sequence<int, columns>());
}

// How the rows of a dot product are shared out to its partial sums, one for each lane:
//   lane 0   starts as the product of row 0, and takes the rows up to first
//   lane k   takes row first + k, then every width-th row, up to last
// then the lanes are added, upper half onto lower, and the rows from last on one by one.
struct RowPlan {
  int first, last;
};

// y(j) := alpha (a(.,j) . x) + y(j)
template <int columns, Memory memory = Memory::near, class T>
[[gnu::noinline]] void dot_columns(int m, RowPlan plan, const T* a, ptrdiff_t lda, const T* x,
                                   T alpha, T* y) {
  [=]<int... j>(std::integer_sequence<int, j...>) __attribute__((always_inline)) {
    constexpr int width = Lanes<T>::count;
    Columns<T> column(a, lda);
    const T* from = x;
    const auto advance = [&](int count) __attribute__((always_inline)) {
      column.advance(count);
      from = pinned(from + count);
    };
    const auto x0 = Lanes<T>::load_first(from);
    Lanes<T> s[columns] = {pinned(Lanes<T>::load_first(column.template at<j>(0)) * x0)...};
    const auto row = [&] __attribute__((always_inline)) {
      const auto xi = pinned(Lanes<T>::load_first(from));
      (accumulate(s[j], pinned(Lanes<T>::load_first(column.template at<j>(0))) * xi), ...);
    };
    const auto rows = [&](int i) __attribute__((always_inline)) {
      const auto xi = pinned(Lanes<T>::load(from + i));
      (accumulate(s[j], pinned(Lanes<T>::load(column.template at<j>(i))) * xi), ...);
    };
    advance(1);
    for (const T* const end = x + plan.first; from < end; advance(1)) row();
    const T* const last = x + plan.last;
    for (; from + 4 * width <= last; advance(4 * width)) {
      if constexpr (memory == Memory::far)
        (simd::prefetch(column.template at<j>(bytes_ahead / sizeof(T))), ...);
      unrolled<4>([&](auto r) __attribute__((always_inline)) { rows(r * width); });
    }
    for (; from < last; advance(width)) rows(0);
    T sum[columns] = {plan.first < plan.last ? sum_lanes(s[j]) : s[j].first()...};
    for (const T* const end = x + m; from < end; advance(1))
      ((sum[j] = sum[j] + *column.template at<j>(0) * *from), ...);
    ((y[j] = sum[j] * alpha + y[j]), ...);
  }
  (std::make_integer_sequence<int, columns>());
}

}  // namespace jex::blas
