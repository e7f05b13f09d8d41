// C := C + alpha op(A) B for block sparse rows of every kind, dense operands by columns.
//
// Blocks of any side share a loop; two columns of B go with one reading of A.
#pragma once

#include "serv/lsame.h"
#include "spblas/bsr/product.h"

namespace jex::spblas::bsr {

// op by the word that selects it.
inline Op operation(int mode) {
  return mode == 1 ? Op::none : mode == 3 ? Op::conj_transpose : Op::transpose;
}

// The operands of one call. Block rows of A: rows; block columns: columns.
template <class T>
struct Operands {
  int rows, columns, n, lb;
  T alpha;
  Matrix<T> a;
  Dense<const T> b;
  Dense<T> c;
};

template <Parts parts, class T>
[[gnu::noinline]] void multiply_matrix(const Operands<T>& o, Selection blocks, const T& alpha,
                                       const T& mirror_alpha) {
  const Side<0> lb{o.lb};
  for (int i = 0; i < o.rows; ++i) {
    int n = 0;
    for (; n + 2 <= o.n; n += 2)
      multiply_block_row<parts, false, 2>(o.a, lb, i, blocks, alpha, mirror_alpha,
                                          {o.b.p + n * o.b.ld, o.b.ld},
                                          {o.c.p + n * o.c.ld, o.c.ld});
    if (n < o.n)
      multiply_block_row<parts, false, 1>(o.a, lb, i, blocks, alpha, mirror_alpha,
                                          {o.b.p + n * o.b.ld, o.b.ld},
                                          {o.c.p + n * o.c.ld, o.c.ld});
  }
}

// A triangle of each diagonal block, and the ones of a unit diagonal.
template <bool transposed, bool conj, class T>
void add_triangles(const Operands<T>& o, bool lower, bool unit) {
  const int lb = o.lb;
  const auto add_element = [&](ptrdiff_t i, ptrdiff_t j, T value) {
    const T scaled = multiply(blas::conjugate_if<conj>(value), o.alpha);
    if constexpr (transposed) std::swap(i, j);
    for (int n = 0; n < o.n; ++n) {
      T& c = o.c.p[i + n * o.c.ld];
      c = add(c, multiply(scaled, o.b.p[j + n * o.b.ld]));
    }
  };
  for (int i = 0; i < o.rows; ++i) {
    const ptrdiff_t place = ptrdiff_t(i) * lb;
    o.a.for_row(Side<0>{lb}, i, [&](const T* block, int j) {
      if (j != i) return;
      for (int c = 0; c < lb; ++c) {
        const int first = lower ? c + unit : 0, last = lower ? lb : c + !unit;
        for (int r = first; r < last; ++r)
          add_element(place + r, place + c, block[c * ptrdiff_t(lb) + r]);
      }
    });
    if (unit)
      for (int r = 0; r < lb; ++r) add_element(place + r, place + r, blas::real_element<T>(1));
  }
}

template <Kind kind, Op op, class T>
void multiply_kind(const Operands<T>& o, bool upper, bool unit) {
  constexpr bool turned = op != Op::none, conj = op == Op::conj_transpose;
  constexpr Parts one_part = {!turned, turned, conj};
  const T& alpha = o.alpha;
  if constexpr (kind == Kind::general) {
    multiply_matrix<one_part>(o, {Which::all, false}, alpha, alpha);
  } else if constexpr (kind == Kind::symmetric) {  // the transpose is A itself
    multiply_matrix<Parts{true, true, conj}>(o, triangle(upper), alpha, alpha);
  } else if constexpr (kind == Kind::skew) {  // the transpose is -A
    const T minus = negated(alpha);
    multiply_matrix<Parts{true, true, conj}>(o, triangle(upper), turned ? minus : alpha,
                                             turned ? alpha : minus);
  } else if constexpr (kind == Kind::triangular) {
    multiply_matrix<one_part>(o, {triangle(upper).which, false}, alpha, alpha);
    add_triangles<turned, conj>(o, !upper, unit);
  } else if (!unit) {
    multiply_matrix<one_part>(o, {Which::diagonal, false}, alpha, alpha);
  } else {
    for (int n = 0; n < o.n; ++n)
      blas::axpy(o.rows * o.lb, alpha, o.b.p + n * o.b.ld, 1, o.c.p + n * o.c.ld, 1);
  }
}

template <Kind kind, class T>
void mm(int mode, const char* uplo, const char* diag, const Operands<T>& o) {
  if (o.rows < 1 || o.columns < 1 || o.n < 1 || o.lb < 1) return;
  constexpr bool has_triangle = kind != Kind::general && kind != Kind::diagonal;
  constexpr bool has_unit = kind == Kind::triangular || kind == Kind::diagonal;
  const bool upper = has_triangle && serv::lsame(uplo, "U");
  const bool unit = has_unit && serv::lsame(diag, "U");
  switch (operation(mode)) {
    case Op::none:
      return multiply_kind<kind, Op::none>(o, upper, unit);
    case Op::conj_transpose:
      if constexpr (is_complex<T>) return multiply_kind<kind, Op::conj_transpose>(o, upper, unit);
      [[fallthrough]];
    default:
      return multiply_kind<kind, Op::transpose>(o, upper, unit);
  }
}

}  // namespace jex::spblas::bsr
