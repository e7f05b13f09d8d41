// Products of block sparse rows with dense operands by columns.
//
// A block row's sum s starts at zero and takes the blocks in order, each column by column; so every
// element of it is one chain, whatever the strips and the side of the blocks. Then y := s, or
// y := y + s alpha.
#pragma once

#include "blas/level1/update.h"
#include "spblas/bsr/block.h"
#include "spblas/variant.h"

namespace jex::spblas::bsr {

// What a block adds: the parts that are compiled.
struct Parts {
  bool row, mirror, conj;
};

enum class Which { all, lower, upper, diagonal };

// The blocks that do, by their place; diagonal ones may beside them add their row part alone.
struct Selection {
  Which which = Which::all;
  bool whole_diagonal = false;

  bool takes(int i, int j) const {
    switch (which) {
      case Which::lower:
        return j < i;
      case Which::upper:
        return j > i;
      case Which::diagonal:
        return j == i;
      default:
        return true;
    }
  }
};

// Registers of a strip: sums, and beside mirror parts as many operands, have to find place in eight
// with a factor and a product.
template <class T>
consteval int strip_registers(bool row, bool mirror, int columns) {
  const int most = is_complex<T> ? 3 : 4;
  const int share = columns * (row && mirror ? 2 : 1);
  return most / share > 0 ? most / share : 1;
}

// Block row i of C := C + alpha op(A) B, or (overwrites, all blocks) of C := A B, for some columns.
// mirror_alpha multiplies mirror parts: -alpha for a skew-symmetric matrix.
template <Parts parts, bool overwrites, int columns, int side, class T>
[[gnu::always_inline]] inline void multiply_block_row(const Matrix<T>& a, Side<side> lb, int i,
                                                      Selection blocks, const T& alpha,
                                                      const T& mirror_alpha, Dense<const T> b,
                                                      Dense<T> c) {
  for_strips<T, strip_registers<T>(parts.row, parts.mirror, columns)>(
      lb, [&](auto strip, int r) __attribute__((always_inline)) {
        using Strip = decltype(strip);
        Group<Strip, columns> sums, xi;
        const ptrdiff_t place = ptrdiff_t(i) * lb + r;
        unrolled<columns>([&](auto n) __attribute__((always_inline)) {
          sums.v[n] = Strip::zero();
          if constexpr (parts.mirror) xi.v[n] = Strip::load(b.p + place + n * b.ld);
        });
        a.for_row(
            lb, i, [&](const T* block, int j) __attribute__((always_inline)) {
              const Dense<const T> bj = {b.p + ptrdiff_t(j) * lb, b.ld};
              const Dense<T> cj = {c.p + ptrdiff_t(j) * lb, c.ld};
              if (overwrites || blocks.takes(i, j)) {
                if constexpr (parts.mirror)
                  add_mirror_part<parts.conj, parts.row>(lb, block + r, bj, mirror_alpha, xi, sums,
                                                         cj);
                else
                  add_row_part<parts.conj>(lb, block + r, bj, sums);
              } else if (parts.row && parts.mirror && blocks.whole_diagonal && i == j) {
                add_row_part<parts.conj>(lb, block + r, bj, sums);
              }
            });
        if constexpr (parts.row)
          unrolled<columns>([&](auto n) __attribute__((always_inline)) {
            T* const to = c.p + place + n * c.ld;
            if constexpr (overwrites)
              Strip::store(to, sums.v[n]);
            else
              Strip::store(to, Strip::load(to) + sums.v[n] * Coefficient<T>::load(alpha));
          });
      });
}

// y := A x, block rows first .. last - 1, counted from 0. The paths for the sides 2 to 6 take the
// end of a block row from where the next begins.
template <class T, int side>
[[gnu::noinline]] void multiply_rows(const Matrix<T>& matrix, Side<side> lb, int first, int last,
                                     const T* x, T* y) {
  Matrix<T> a = matrix;
  if (side > 0) a.end = a.begin + 1;
  const T unread = {};
  for (int i = first; i < last; ++i)
    multiply_block_row<Parts{true, false, false}, true, 1>(a, lb, i, Selection(), unread, unread,
                                                           Dense<const T>{x, 0}, Dense<T>{y, 0});
}

template <class T>
void gemv(int first, int last, int m, int lb, const Matrix<T>& a, const T* x, T* y) {
  if (m < 1 || lb < 1) return;
  with_side(lb, [&](auto side) { multiply_rows(a, side, first - 1, last, x, y); });
}

inline Selection triangle(bool upper) { return {upper ? Which::upper : Which::lower, true}; }

template <class T, int side>
[[gnu::noinline]] void multiply_symmetric(const Matrix<T>& a, Side<side> lb, int first, int last,
                                          bool upper, const T& alpha, const T* x, T* y) {
  for (int i = first; i < last; ++i)
    multiply_block_row<Parts{true, true, false}, false, 1>(a, lb, i, triangle(upper), alpha, alpha,
                                                           Dense<const T>{x, 0}, Dense<T>{y, 0});
}

// y := y + alpha A x for a symmetric A, blocks of one triangle stored.
template <class T>
void symmetric_mv(Variant v, int first, int last, int m, int lb, const T& alpha, const Matrix<T>& a,
                  const T* x, T* y) {
  if (m < 1 || lb < 1) return;
  with_side(lb, [&](auto side) {
    multiply_symmetric(a, side, first - 1, last, v.uplo == Uplo::upper, alpha, x, y);
  });
}

}  // namespace jex::spblas::bsr
