// Skyline matrices: a triangle whose lines run without gaps from their first element to the
// diagonal.
//
//   lower: row i      | x x x d |      columns i - n + 1 .. i      n = pointers[i + 1] -
//   pointers[i] upper: column i, likewise from its first row down to the diagonal
//
// The upper triangle so stored is the transpose of a lower one: one code walks both.
#pragma once

#include "blas/level1/dot.h"
#include "blas/level1/scalar.h"
#include "blas/level1/update.h"
#include "serv/lsame.h"

namespace jex::spblas::util {

using blas::add;
using blas::multiply;
using simd::is_complex;

template <class T>
T dot_product(int n, const T* a, const T* x) {
  if constexpr (is_complex<T>)
    return blas::dot<blas::Conj::no>(n, a, 1, x, 1);
  else
    return blas::dot<T>(n, a, 1, x, 1);
}

template <class T>
T opposite(const T& a) {
  return multiply(blas::real_element<T>(-1), a);
}

// Lines of the lower triangle L, or of the transpose of an upper one.
template <class T>
struct Skyline {
  const T* values;
  const jex_int* pointers;
  bool unit;

  // Elements before the diagonal, the first of them, and its column.
  int before(int i) const { return pointers[i + 1] - pointers[i] - 1; }
  const T* line(int i) const { return values + (pointers[i] - pointers[0]); }
  T diagonal(int i) const { return unit ? blas::real_element<T>(1) : line(i)[before(i)]; }
};

enum class Shape { triangle, symmetric, skew };

// c := c + alpha op(A) b for one column; transposed: the lines are columns of op(A).
template <Shape shape, class T>
void multiply_column(const Skyline<T>& a, bool transposed, int m, const T& alpha, const T* b,
                     T* c) {
  for (int i = 0; i < m; ++i) {
    const int n = a.before(i), first = i - n;
    if (n < 0) continue;  // an empty line has no diagonal either
    const T* const line = a.line(i);
    if (shape != Shape::triangle || !transposed) {
      const T sum = dot_product(n, line, b + first);
      // The lines of a transposed skew-symmetric matrix have the other sign.
      c[i] = add(c[i], multiply(alpha, shape == Shape::skew && transposed ? opposite(sum) : sum));
    }
    if (shape != Shape::triangle || transposed) {
      const T t = multiply(alpha, b[i]);
      blas::axpy(n, shape == Shape::skew && !transposed ? opposite(t) : t, line, 1, c + first, 1);
    }
    if constexpr (shape != Shape::skew) {
      if (a.unit)
        blas::axpy(1, alpha, b + i, 1, c + i, 1);
      else
        c[i] = add(c[i], multiply(multiply(a.diagonal(i), alpha), b[i]));
    }
  }
}

template <class T>
void solve_column(const Skyline<T>& a, bool transposed, int m, T* c) {
  if (!transposed) {
    for (int i = 0; i < m; ++i) {
      const int n = a.before(i);
      const T rest = add(c[i], opposite(dot_product(n, a.line(i), c + i - n)));
      c[i] = a.unit ? rest : blas::quotient(rest, a.diagonal(i));
    }
    return;
  }
  for (int i = m; i-- > 0;) {
    const int n = a.before(i);
    if (!a.unit) c[i] = blas::quotient(c[i], a.diagonal(i));
    blas::axpy(n, opposite(c[i]), a.line(i), 1, c + i - n, 1);
  }
}

// Does op(A) have the stored lines as columns? Upper triangles do, transposition turns it over.
inline bool is_turned(const char* uplo, const char* trans) {
  return serv::lsame(uplo, "U") != !serv::lsame(trans, "N");
}

template <Shape shape, class T>
void skyline_product(const char* uplo, const char* trans, const char* diag, int m, int n,
                     const T& alpha, const T* values, const jex_int* pointers, const T* b,
                     ptrdiff_t ldb, T* c, ptrdiff_t ldc) {
  const bool unit = shape != Shape::skew && serv::lsame(diag, "U");
  const Skyline<T> a = {values, pointers, unit};
  const bool transposed = shape != Shape::symmetric && is_turned(uplo, trans);
  for (int j = 0; j < n; ++j)
    multiply_column<shape>(a, transposed, m, alpha, b + j * ldb, c + j * ldc);
}

template <class T>
void skyline_solve(const char* uplo, const char* trans, const char* diag, int m, int n,
                   const T* values, const jex_int* pointers, T* c, ptrdiff_t ldc) {
  const Skyline<T> a = {values, pointers, bool(serv::lsame(diag, "U"))};
  const bool transposed = is_turned(uplo, trans);
  for (int j = 0; j < n; ++j) solve_column(a, transposed, m, c + j * ldc);
}

}  // namespace jex::spblas::util
