// What one block does, for a strip of its rows and for some columns of the dense operands:
//
//   row part      s := s + a x(j)            for every column c of the block, in order
//   mirror part   y(j)(c) := y(j)(c) + (a(:, c) . x(i)) alpha
//
// a is the strip's part of the block, plain or conjugated.
#pragma once

#include "blas/level1/scalar.h"
#include "spblas/bsr/matrix.h"
#include "spblas/operands.h"

namespace jex::spblas::bsr {

using blas::add;
using blas::multiply;
using blas::negated;
using simd::Factor;

// The values of a strip for several columns of the dense operands.
template <class Strip, int columns>
struct Group {
  typename Strip::Value v[columns];
};

template <int side, class Body>
[[gnu::always_inline]] inline void for_block_columns(Side<side> lb, Body body) {
  if constexpr (side > 0)
    unrolled<side>(body);
  else
    for (int c = 0; c < lb; ++c) body(c);
}

// block: element (first row of the strip, 0). xj: the rows of block column j.
template <bool conj, class Strip, int columns, int side, class T>
[[gnu::always_inline]] inline void add_row_part(Side<side> lb, const T* block, Dense<const T> xj,
                                                Group<Strip, columns>& sums) {
  for_block_columns(
      lb, [&](auto c) __attribute__((always_inline)) {
        const auto a = conjugate_if<conj>(Strip::load(block + c * ptrdiff_t(lb)));
        unrolled<columns>([&](auto n) __attribute__((always_inline)) {
          sums.v[n] = sums.v[n] + a * Coefficient<T>::load(xj.p[c + n * xj.ld]);
        });
      });
}

// Both parts; xi: the strip's own rows of x, yj: the rows of block column j.
template <bool conj, bool row, class Strip, int columns, int side, class T>
[[gnu::always_inline]] inline void add_mirror_part(Side<side> lb, const T* block, Dense<const T> xj,
                                                   const T& alpha, const Group<Strip, columns>& xi,
                                                   Group<Strip, columns>& sums, Dense<T> yj) {
  for_block_columns(
      lb, [&](auto c) __attribute__((always_inline)) {
        const auto a = conjugate_if<conj>(Strip::load(block + c * ptrdiff_t(lb)));
        unrolled<columns>([&](auto n) __attribute__((always_inline)) {
          if constexpr (row) sums.v[n] = sums.v[n] + a * Coefficient<T>::load(xj.p[c + n * xj.ld]);
          T& y = yj.p[c + n * yj.ld];
          y = add(y, multiply(dot(a, xi.v[n]), alpha));
        });
      });
}

}  // namespace jex::spblas::bsr
