// Block sparse rows as the kernels see them, and the strips in which they take a block.
//
//   block row i (from 0):  blocks begin[i] - begin[0] .. end[i] - begin[0] - 1
//   element (r, c) of block k:  values[k side side + c side + r]
//
// A strip is some neighbouring rows of a block row, as many as fill a few registers. A column of a
// block meets it as a column of the strip's registers, of which the last may be part full:
//
//   side 5, double        a0 a1 | a2 a3 | a4 0          the strip is the whole
//   side 12, double       a0 a1 | .. | a6 a7            then rows 8 .. 11
//
// Blocks of 2 to 6 are compiled for their side and unrolled; all others share a loop.
#pragma once

#include "simd/complex.h"
#include "simd/repeat.h"
#include "spblas/columns.h"

#include <jex/types.h>

namespace jex::spblas::bsr {

using simd::unrolled;

// The side of the blocks: a constant, or (0) known when the kernel runs.
template <int constant>
struct Side {
  static constexpr int fixed = constant;
  int given;
  operator int() const { return constant ? constant : given; }
};

template <class T>
struct Matrix {
  const T* values;
  const jex_int *columns, *begin, *end;
  int base;

  // f(block, column) for the blocks of block row i; the column counts from 0.
  template <int side, class F>
  [[gnu::always_inline]] void for_row(Side<side> lb, int i, F f) const {
    const ptrdiff_t first = begin[i] - begin[0], last = end[i] - begin[0];
    const ptrdiff_t size = ptrdiff_t(lb) * lb;
    const T* block = values + first * size;
    for (ptrdiff_t k = first; k < last; ++k, block += size) f(block, columns[k] - base);
  }
};

// count elements of a column in registers.
template <class T, int elements>
struct Strip {
  static constexpr int count = elements;
  static constexpr int width = Lanes<T>::count;
  static constexpr int full = count / width, rest = count % width;
  static constexpr int pieces = full + (rest + 1) / 2;  // a rest of three is two and one
  using Value = Registers<T, pieces>;

  [[gnu::always_inline]] static Value zero() {
    return registers<T, pieces>([](auto) { return Lanes<T>::zero(); });
  }
  [[gnu::always_inline]] static Value load(const T* p) {
    return registers<T, pieces>([=](auto k) __attribute__((always_inline)) {
      constexpr int place = k < full ? k * width : full * width + 2 * (k - full);
      if constexpr (k < full)
        return Lanes<T>::load(p + place);
      else if constexpr (count - place >= 2)
        return Lanes<T>::load_two(p + place);
      else
        return Lanes<T>::load_first(p + place);
    });
  }
  [[gnu::always_inline]] static void store(T* p, Value v) {
    unrolled<pieces>([&](auto k) __attribute__((always_inline)) {
      constexpr int place = k < full ? k * width : full * width + 2 * (k - full);
      if constexpr (k < full)
        v.v[k].store(p + place);
      else if constexpr (count - place >= 2)
        v.v[k].store_first(p + place), simd::swap_parts(v.v[k]).store_first(p + place + 1);
      else
        v.v[k].store_first(p + place);
    });
  }
};

template <bool conj, class T, int n>
[[gnu::always_inline]] inline Registers<T, n> conjugate_if(Registers<T, n> a) {
  if constexpr (conj && is_complex<T>)
    return registers<T, n>([&](auto k) { return simd::conjugate(a.v[k]); });
  else
    return a;
}

// Sum of the products of two columns, element by element: the registers one after the other, then
// the lanes. Lanes that are not filled add nothing: both operands are zero there.
template <class T, int n>
[[gnu::always_inline]] inline T dot(Registers<T, n> a, Registers<T, n> x) {
  const auto product = [&](int k) __attribute__((always_inline)) {
    if constexpr (is_complex<T>)
      return simd::times_elements<1>(a.v[k], x.v[k]);
    else
      return a.v[k] * x.v[k];
  };
  Lanes<T> sum = product(0);
  unrolled<n - 1>([&](auto k) __attribute__((always_inline)) { sum = sum + product(k + 1); });
  if constexpr (is_complex<T>)
    return simd::sum_complex_lanes(sum);
  else
    return simd::sum_lanes(sum);
}

// call(strip, first row) for the strips of a block, of at most the given number of registers.
// Strips of a side that is not known halve, down to a part of a register.
template <class T, int most, int side, class Call>
[[gnu::always_inline]] inline void for_strips(Side<side> lb, Call call) {
  if constexpr (side > 0) {
    constexpr int strips = (Strip<T, side>::pieces + most - 1) / most;
    constexpr int each = (side + strips - 1) / strips;
    unrolled<strips>([&](auto s) __attribute__((always_inline)) {
      constexpr int first = s * each;
      call(Strip<T, (side - first < each ? side - first : each)>(), first);
    });
  } else {
    int r = 0;
    const auto whole = [&](auto registers) __attribute__((always_inline)) {
      constexpr int count = registers * Lanes<T>::count;
      for (; r + count <= lb; r += count) call(Strip<T, count>(), r);
    };
    if constexpr (most >= 4) whole(std::integral_constant<int, 4>());
    if constexpr (most >= 2) whole(std::integral_constant<int, 2>());
    whole(std::integral_constant<int, 1>());
    unrolled<Lanes<T>::count - 1>([&](auto k) __attribute__((always_inline)) {
      if (lb - r == k + 1) call(Strip<T, k + 1>(), r);
    });
  }
}

// call(Side) with a constant where there is a path for it.
template <class Call>
[[gnu::always_inline]] inline void with_side(int lb, Call call) {
  switch (lb) {
    case 2:
      return call(Side<2>());
    case 3:
      return call(Side<3>());
    case 4:
      return call(Side<4>());
    case 5:
      return call(Side<5>());
    case 6:
      return call(Side<6>());
    default:
      return call(Side<0>{lb});
  }
}

}  // namespace jex::spblas::bsr
