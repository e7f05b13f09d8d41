// Partial sums: the order in which every reduction of this family adds its terms.
//
// Eight sums S0..S7 (or sixteen), all zero at first. The terms come in blocks of 8 and then, from
// what is left, one block of 4, one of 2 and one single term; term j of a block goes to sum j.
// Terms peeled to reach a 16-byte boundary go to S0 before all others. At the end the upper half of
// the sums is added to the lower half until one is left:
//
//   ((S0 + S4) + (S2 + S6)) + ((S1 + S5) + (S3 + S7))
//
// In registers: floats   S0 S1 S2 S3 | S4 S5 S6 S7
//               doubles  S0 S1 | S2 S3 | S4 S5 | S6 S7
//
// The independent sums hide the latency of the adder; a loop from left to right would wait for it.
#pragma once

#include "blas/level1/streams.h"

#include <utility>

namespace jex::blas {

using simd::abs;
using simd::sum_lanes;

// Sources deliver the terms' operands: lanes(i) the elements from i on that fill one register,
// two(i) two of them and first(i) one, the other lanes zero.

template <class T>
struct Contiguous {
  const T* p;
  Lanes<T> lanes(int i) const { return Lanes<T>::load(p + i); }
  Lanes<T> two(int i) const { return Lanes<T>::load_two(p + i); }
  Lanes<T> first(int i) const { return Lanes<T>::load_first(p + i); }
};

template <class T>
struct Spaced {
  const T* p;
  int inc;
  Lanes<T> lanes(int i) const { return Lanes<T>::gather(p + i * inc, inc); }
  Lanes<T> two(int i) const { return Lanes<T>::gather_two(p + i * inc, inc); }
  Lanes<T> first(int i) const { return Lanes<T>::load_first(p + i * inc); }
};

// The parts of spaced complex elements as one run of reals: re0 im0 re1 im1 ...
template <class T>
struct SpacedParts {
  using Real = simd::Real<T>;
  const T* p;
  int inc;
  Lanes<Real> lanes(int i) const { return Lanes<T>::gather(p + i / 2 * inc, inc).parts; }
  Lanes<Real> two(int i) const { return Lanes<T>::load_first(p + i / 2 * inc).parts; }
  Lanes<Real> first(int i) const { return Lanes<Real>::load_first(&p[i / 2 * inc].re + i % 2); }
};

// Elements of a dense vector named by 1-based indices.
template <class T>
struct Gathered {
  const T* p;
  const jex_int* index;
  Lanes<T> lanes(int i) const {
    T run[Lanes<T>::count];
    for (int k = 0; k < Lanes<T>::count; ++k) run[k] = p[index[i + k] - 1];
    return Lanes<T>::load(run);
  }
  Lanes<T> two(int i) const {
    const T run[2] = {p[index[i] - 1], p[index[i + 1] - 1]};
    return Lanes<T>::load_two(run);
  }
  Lanes<T> first(int i) const { return Lanes<T>::load_first(p + (index[i] - 1)); }
};

// Sources whose elements lie side by side are worth an unrolled loop.
template <class Source>
inline constexpr bool side_by_side = false;
template <class T>
inline constexpr bool side_by_side<Contiguous<T>> = true;

// A source of floats as doubles.
template <class Source>
struct Widened {
  Source source;
  Lanes<double> lanes(int i) const { return simd::widen_low(source.two(i)); }
  Lanes<double> first(int i) const { return simd::widen_low(source.first(i)); }
};

template <class Source>
inline constexpr bool side_by_side<Widened<Source>> = side_by_side<Source>;

template <class R, int count>
struct PartialSums {
  static constexpr int registers = count / Lanes<R>::count;
  static_assert(registers == 2 || registers == 4);
  // Cleared to zero. Indexed by constants only, so that the compiler takes them apart.
  Lanes<R> s[registers] = {};

  template <int r>
  [[gnu::always_inline]] void add(Lanes<R> term) {
    s[r] = pinned(s[r] + term);
  }
  R total() const {
    if constexpr (registers == 4)
      return sum_lanes((s[0] + s[2]) + (s[1] + s[3]));
    else
      return sum_lanes(s[0] + s[1]);
  }
};

// Sum over n terms in count partial sums; term(lanes of each source) gives the terms of one
// register.
template <class R, int count = 8, class Term, class... Source>
inline R sum_terms(int n, int peel, Term term, const Source&... source) {
  PartialSums<R, count> sums;
  constexpr int width = Lanes<R>::count;
  const auto add_register = [&]<int k>(int i) __attribute__((always_inline)) {
    sums.template add<k % sums.registers>(term(source.lanes(i + k * width)...));
  };
  const auto add_registers = [&]<int... k>(int i, std::integer_sequence<int, k...>)
      __attribute__((always_inline)) {
    (add_register.template operator()<k>(i), ...);
  };
  const auto add_block = [&]<int size>(int& i) __attribute__((always_inline)) {
    add_registers(i, std::make_integer_sequence<int, size / width>());
    i += size;
  };
  int i = 0;
  for (; i < peel; ++i) sums.template add<0>(term(source.first(i)...));
  if constexpr ((side_by_side<Source> && ...))
    while (i + 8 * width <= n) add_block.template operator()<8 * width>(i);
  while (i + count <= n) add_block.template operator()<count>(i);
  if constexpr (count == 16)
    if (i + 8 <= n) add_block.template operator()<8>(i);
  if (i + 4 <= n) add_block.template operator()<4>(i);
  if (i + 2 <= n) {
    if constexpr (width == 2)
      sums.template add<0>(term(source.lanes(i)...));
    else
      sums.template add<0>(term(source.two(i)...));
    i += 2;
  }
  if (i < n) sums.template add<0>(term(source.first(i)...));
  return sums.total();
}

}  // namespace jex::blas
