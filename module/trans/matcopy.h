// The four routines: options decoded, then one kernel.
#pragma once

#include "blas/level1/copy.h"
#include "trans/in_place.h"
#include "trans/options.h"

namespace jex::trans {

template <class T, class Scale>
void copy_lines(int m, int n, Scale scale, const T* a, ptrdiff_t lda, int stridea, T* b,
                ptrdiff_t ldb, int strideb) {
  const auto body = [scale](Lanes<T> a, Lanes<T>& b) { b = scale(a); };
  if (n < 1) return;
  for (int i = 0; i < m; ++i, a += lda, b += ldb) {
    if (stridea != 1 || strideb != 1)
      blas::for_each_element(n, body, blas::In<T>{a, stridea}, blas::Out<T>{{b, strideb}});
    else if constexpr (std::is_same_v<Scale, Move>)
      blas::copy(n, a, 1, b, 1);
    else
      blas::for_each_unit<T>(n, body, blas::In<T>{a}, blas::Out<T>{{b}});
  }
}

// B := alpha op(A), out of place.
template <class T>
void omatcopy(char ordering, char trans, int rows, int cols, T alpha, const T* a, int lda,
              int stridea, T* b, int ldb, int strideb) {
  const Order order = order_of(ordering);
  const Op op = op_of(trans);
  const auto [m, n] = lines_of(order, rows, cols);
  if (order == Order::unknown || !op.known || m < 1 || n < 1) return;
  with_scale(alpha, op.conjugates, [&, m = m, n = n](auto scale) {
    using Scale = decltype(scale);
    if (!op.transposes)
      copy_lines(m, n, scale, a, lda, stridea, b, ldb, strideb);
    else if (stridea == 1 && strideb == 1)
      transpose_to(m, n, From<T, Scale>{a, lda, scale}, To<T>{b, ldb});
    else
      transpose(m, n, From<T, Scale, ptrdiff_t>{a, lda, scale, stridea},
                To<T, ptrdiff_t>{b, ldb, strideb});
  });
}

// AB := alpha op(AB), from distance lda to distance ldb.
template <class T>
void imatcopy(char ordering, char trans, int rows, int cols, T alpha, T* ab, int lda, int ldb) {
  const Order order = order_of(ordering);
  const Op op = op_of(trans);
  const auto [m, n] = lines_of(order, rows, cols);
  if (order == Order::unknown || !op.known || m < 1 || n < 1) return;
  with_scale(alpha, op.conjugates, [&, m = m, n = n](auto scale) {
    if (op.transposes)
      transpose_in_place(m, n, scale, ab, lda, ldb);
    else
      copy_in_place(m, n, scale, ab, lda, ldb);
  });
}

// C := a + b without transposition, line by line.
template <class T, class A, class B>
void add_lines(int m, int n, A a, B b, T* c, ptrdiff_t ldc) {
  const auto body = [sa = a.scale, sb = b.scale](Lanes<T> a, Lanes<T> b, Lanes<T>& c) {
    c = sa(a) + sb(b);
  };
  for (int i = 0; i < m; ++i, a.a += a.ld, b.a += b.ld, c += ldc)
    blas::for_each_unit<T>(n, body, blas::In<T>{a.a}, blas::In<T>{b.a}, blas::Out<T>{{c}});
}

// C := alpha op(A) + beta op(B). m lines of n elements are those of an operand that is not
// transposed, and so of C; where both are transposed, those of A and of B, and C has n lines. Any
// ordering but column-major is row-major. An addition always multiplies: real factors of 1 are
// exact, and complex ones too but for signs of zero and infinite parts.
template <class T>
void omatadd(char ordering, char transa, char transb, int rows, int cols, T alpha, const T* a,
             int lda, T beta, const T* b, int ldb, T* c, int ldc) {
  const Op opa = op_of(transa), opb = op_of(transb);
  const auto [m, n] = lines_of(order_of(ordering), rows, cols);
  if (!opa.known || !opb.known || m < 1 || n < 1) return;
  using Term = From<T, Multiply<T>>;
  const Term first{a, lda, {alpha, opa.conjugates}}, second{b, ldb, {beta, opb.conjugates}};
  const To<T> to{c, ldc};
  if (opa.transposes && opb.transposes)
    transpose_to(m, n, FromSum<Term, Term>{first, second}, to);
  else if (opa.transposes)
    transpose(n, m, first, ToSum<Term, T>{second, to});
  else if (opb.transposes)
    transpose(n, m, second, ToSum<Term, T>{first, to});
  else
    add_lines(m, n, first, second, c, ldc);
}

}  // namespace jex::trans
