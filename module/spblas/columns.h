// Columns of the dense operands that a kernel advances together: one vector, or as many columns as
// fill some registers. Kernels are written once, on the values of such a group.
//
//   One<T>                     one element of each row; also the vector kernels
//   Several<T, n, layout>      n registers of columns
//
//     column_major   element (r, c) at p[r + c ld]      a register gathers its columns
//     row_major      element (r, c) at p[r ld + c]      a register is one load
//
// p is the element of the group's first column in a row. SideBySide is the group in a row of its
// own, whose elements are neighbours.
#pragma once

#include "simd/lanes.h"

#include <stddef.h>
#include <type_traits>
#include <utility>

namespace jex::spblas {

using simd::Coefficient;
using simd::is_complex;
using simd::Lanes;
using simd::pinned;

enum class Layout { column_major, row_major };

template <Layout layout, class T>
[[gnu::always_inline]] inline T* at_row(T* p, ptrdiff_t row, ptrdiff_t ld) {
  return p + (layout == Layout::row_major ? row * ld : row);
}
template <Layout layout, class T>
[[gnu::always_inline]] inline T* at_column(T* p, ptrdiff_t column, ptrdiff_t ld) {
  return p + (layout == Layout::row_major ? column : column * ld);
}

// Factors are stored values, or alpha, ready to multiply; scaled() is the product of two of them.
template <class T>
struct One {
  static constexpr int columns = 1;
  using Value = T;
  using Factor = T;
  using SideBySide = One;

  static Value zero() { return 0; }
  static Value load(const T* p, ptrdiff_t) { return *p; }
  static void store(T* p, ptrdiff_t, Value v) { *p = v; }
  template <bool conj>
  static Factor factor(const T& a) {
    return a;
  }
  static Factor scaled(Factor a, Factor b) { return a * b; }
};

template <class T>
requires is_complex<T>
struct One<T> {
  static constexpr int columns = 1;
  using Value = Lanes<T>;
  using Factor = Coefficient<T>;
  using SideBySide = One;

  static Value zero() { return Value::zero(); }
  static Value load(const T* p, ptrdiff_t) { return Value::load_first(p); }
  static void store(T* p, ptrdiff_t, Value v) { v.store_first(p); }
  template <bool conj>
  static Factor factor(const T& a) {
    return Factor::template load<conj>(a);
  }
  static Factor scaled(Factor a, Factor b) { return a * b; }
};

template <class T, int n>
struct Registers {
  Lanes<T> v[n];
};

// f(k) for k = 0 .. n - 1, constants, as registers.
template <class T, int n, class F>
[[gnu::always_inline]] inline Registers<T, n> registers(F f) {
  return [&]<int... k>(std::integer_sequence<int, k...>) __attribute__((always_inline)) {
    return Registers<T, n>{{f(std::integral_constant<int, k>())...}};
  }
  (std::make_integer_sequence<int, n>());
}

template <class T, int n>
[[gnu::always_inline]] inline Registers<T, n> operator+(Registers<T, n> a, Registers<T, n> b) {
  return registers<T, n>([&](auto k) { return pinned(a.v[k] + b.v[k]); });
}
template <class T, int n>
[[gnu::always_inline]] inline Registers<T, n> operator-(Registers<T, n> a, Registers<T, n> b) {
  return registers<T, n>([&](auto k) { return a.v[k] - b.v[k]; });
}
template <class T, int n>
[[gnu::always_inline]] inline Registers<T, n> operator*(Registers<T, n> a, Coefficient<T> f) {
  return registers<T, n>([&](auto k) { return a.v[k] * f; });
}

template <class T, int n, Layout layout>
struct Several {
  static constexpr int width = Lanes<T>::count;
  static constexpr int columns = n * width;
  using Value = Registers<T, n>;
  using Factor = Coefficient<T>;
  using SideBySide = Several<T, n, Layout::row_major>;

  static Value zero() {
    return registers<T, n>([](auto) { return Lanes<T>::zero(); });
  }
  [[gnu::always_inline]] static Value load(const T* p, ptrdiff_t ld) {
    return registers<T, n>([=](auto k) __attribute__((always_inline)) {
      if constexpr (layout == Layout::row_major) return Lanes<T>::load(p + k * width);
      return Lanes<T>::gather(p + k * width * ld, ld);
    });
  }
  [[gnu::always_inline]] static void store(T* p, ptrdiff_t ld, Value v) {
    registers<T, n>([=](auto k) __attribute__((always_inline)) {
      if constexpr (layout == Layout::row_major)
        v.v[k].store(p + k * width);
      else
        v.v[k].scatter(p + k * width * ld, ld);
      return v.v[k];
    });
  }
  template <bool conj>
  static Factor factor(const T& a) {
    return Factor::template load<conj>(a);
  }
  static Factor scaled(Factor a, Factor b) { return a * b; }
};

// call(group, column) over columns first .. last - 1: as many registers at once as may be, then one
// register, then one column.
template <class T, int most, Layout layout, class Call>
[[gnu::always_inline]] inline void for_columns(int first, int last, Call call) {
  using Many = Several<T, most, layout>;
  using Single = Several<T, 1, layout>;
  int j = first;
  if constexpr (most > 1)
    for (; j + Many::columns <= last; j += Many::columns) call(Many(), j);
  if constexpr (Single::columns > 1 || most == 1)
    for (; j + Single::columns <= last; j += Single::columns) call(Single(), j);
  if constexpr (Single::columns > 1 || most > 1)
    for (; j < last; ++j) call(One<T>(), j);
}

// The layout of a kernel's letter.
consteval Layout layout(const char* letter) {
  return *letter == 'c' ? Layout::row_major : Layout::column_major;
}

}  // namespace jex::spblas
