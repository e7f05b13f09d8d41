// larfx: C := H C or C H with the elementary reflector H = I - tau v v'. lartv: a vector of plane
// rotations applied to the elements of two vectors.
#pragma once

#include "blas/level2/gemv.h"
#include "blas/level2/ger.h"
#include "blas/level2/rank_update.h"

namespace jex::blas {

// w = C' v and C := C - tau v w' (left), w = C v and C := C - tau w v' (right), in pieces of w that
// stand on the stack.
template <class T>
[[gnu::noinline]] void larfx(bool left, int m, int n, const T* v, T tau, T* c, int ldc) {
  if (m <= 0 || n <= 0 || is_zero(tau)) return;
  constexpr int piece = 128;
  constexpr Op adjoint = is_complex<T> ? Op::conj_transpose : Op::transpose;
  const T one = real_element<T>(1), minus = negated(tau);
  T w[piece];
  for (int first = 0; first < (left ? n : m); first += piece) {
    const int count = std::min(piece, (left ? n : m) - first);
    T* const part = c + (left ? ptrdiff_t(first) * ldc : first);
    if (left) {
      gemv(adjoint, m, count, one, part, ldc, v, 1, T{}, w, 1);
      ger<Conj::yes>(m, count, minus, v, 1, w, 1, part, ldc);
    } else {
      gemv(Op::none, count, n, one, part, ldc, v, 1, T{}, w, 1);
      ger<Conj::yes>(count, n, minus, w, 1, v, 1, part, ldc);
    }
  }
}

// x(i) := c(i) x(i) + s(i) y(i),  y(i) := c(i) y(i) - conj(s(i)) x(i)
template <class T>
[[gnu::noinline]] void lartv(int n, T* x, int incx, T* y, int incy, const Real<T>* c, const T* s,
                             int incc) {
  for (int i = 0; i < n; ++i, x += incx, y += incy, c += incc, s += incc) {
    const T old = *x;
    *x = add(scaled(old, *c), multiply(*s, *y));
    *y = difference(scaled(*y, *c), multiply(conjugate(*s), old));
  }
}

}  // namespace jex::blas
