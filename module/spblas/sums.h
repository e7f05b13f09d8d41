// The orders in which the terms of a row's sum are added.
//
//   chain   one sum, from the row's first entry to its last
//   four    partial sums S0 .. S3 that start at zero; entries come in blocks of four as long as
//           they last, entry k of a block goes to Sk; then ((S0 + S1) + S2) + S3, to which the
//           entries that are left are added one by one
//
// The place of an entry in its row decides where its term goes. An entry that has no part in the
// sum leaves a gap: the others stay where they are.
#pragma once

#include "simd/lanes.h"
#include "simd/repeat.h"

#include <jex/types.h>

namespace jex::spblas {

enum class Order { chain, four };

// An entry is named by the address of its column number.
using Entry = const jex_int*;

// add(k, sum) adds the term of entry k to a sum, if it has one. A chain begins at start.
template <Order order, class Value, class Add>
[[gnu::always_inline]] inline Value row_sum(Entry first, Entry last, Value start, Add add) {
  Value s0 = start;
  Entry k = first;
  if constexpr (order == Order::four) {
    if (last - k >= 4) {
      Value s1 = start, s2 = start, s3 = start;
      do {
        add(k, s0);
        add(k + 1, s1);
        add(k + 2, s2);
        add(k + 3, s3);
        // Pinned: the compiler would otherwise count as well, or walk values and columns apart, and
        // spill what the row needs.
        k = simd::pinned(k + 4);
      } while (last - k >= 4);
      s0 = ((s0 + s1) + s2) + s3;
    }
  }
  for (; k < last; k = simd::pinned(k + 1)) add(k, s0);
  return s0;
}

// The partial sums of a row all of whose entries have a term. S0 alone starts at zero: then no -0
// of another sum can come through, and the bits are those of four that start there.
template <class Value, class Term>
[[gnu::always_inline]] inline Value full_row_sum(Entry first, Entry last, Value zero, Term term) {
  Value s0 = zero;
  Entry k = first;
  if (last - k >= 4) {
    s0 = s0 + term(k);
    Value s1 = term(k + 1), s2 = term(k + 2), s3 = term(k + 3);
    k = simd::pinned(k + 4);
    for (; last - k >= 4; k = simd::pinned(k + 4)) {
      s0 = s0 + term(k);
      s1 = s1 + term(k + 1);
      s2 = s2 + term(k + 2);
      s3 = s3 + term(k + 3);
    }
    s0 = ((s0 + s1) + s2) + s3;
  }
  for (; k < last; k = simd::pinned(k + 1)) s0 = s0 + term(k);
  return s0;
}

// The same for real numbers, the partial sums side by side in registers. terms(k) are those of
// entry k and of the ones behind it that fill a register.
template <class T, class Terms, class Term>
[[gnu::always_inline]] inline T full_row_sum_in_lanes(Entry first, Entry last, Terms terms,
                                                      Term term) {
  using simd::Lanes;
  constexpr int width = Lanes<T>::count, registers = 4 / width;
  T s0 = 0;
  Entry k = first;
  if (last - k >= 4) {
    Lanes<T> sums[registers];
    simd::unrolled<registers>([&](auto r)
                                  __attribute__((always_inline)) { sums[r] = Lanes<T>::zero(); });
    do {
      simd::unrolled<registers>([&](auto r) __attribute__((always_inline)) {
        sums[r] = sums[r] + terms(k + r * width);
      });
      k = simd::pinned(k + 4);
    } while (last - k >= 4);
    T s[4];
    simd::unrolled<registers>([&](auto r)
                                  __attribute__((always_inline)) { sums[r].store(s + r * width); });
    s0 = ((s[0] + s[1]) + s[2]) + s[3];
  }
  for (; k < last; k = simd::pinned(k + 1)) s0 = s0 + term(k);
  return s0;
}

// A chain of the terms of all entries, two in each step.
template <class Value, class Term>
[[gnu::always_inline]] inline Value full_row_chain(Entry first, Entry last, Value sum, Term term) {
  Entry k = first;
  for (; last - k >= 2; k = simd::pinned(k + 2)) sum = (sum + term(k)) + term(k + 1);
  return k < last ? sum + term(k) : sum;
}

// Partial sums of n entries, a constant: without a branch.
template <int n, class Value, class Term>
[[gnu::always_inline]] inline Value full_row_sum(Entry first, Value zero, Term term) {
  constexpr int in_blocks = n / 4 * 4;
  Value s0 = zero;
  if constexpr (in_blocks > 0) {
    s0 = s0 + term(first);
    Value s1 = term(first + 1), s2 = term(first + 2), s3 = term(first + 3);
    simd::unrolled<n / 4 - 1>([&](auto block) __attribute__((always_inline)) {
      const Entry k = first + 4 * (block + 1);
      s0 = s0 + term(k);
      s1 = s1 + term(k + 1);
      s2 = s2 + term(k + 2);
      s3 = s3 + term(k + 3);
    });
    s0 = ((s0 + s1) + s2) + s3;
  }
  simd::unrolled<n - in_blocks>([&](auto rest) __attribute__((always_inline)) {
    s0 = s0 + term(first + in_blocks + rest);
  });
  return s0;
}

}  // namespace jex::spblas
