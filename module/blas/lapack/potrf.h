// Cholesky factors of a Hermitian positive definite matrix: A = U' U or A = L L', in the place of
// the triangle of A.
#pragma once

#include "blas/level2/trsv.h"
#include "blas/level3/rank_k.h"
#include "blas/level3/triangular.h"

#include <math.h>

namespace jex::blas {

// Columns that are factored one after the other; larger matrices are halved.
inline constexpr int potrf_columns = 16;

// The root of the pivot, or false if the pivot is not positive; it is then stored as it is.
template <class T>
inline bool take_root(T& pivot, Real<T> value) {
  const bool positive = value > 0;
  pivot = real_element<T>(positive ? sqrt(value) : value);
  return positive;
}

template <class T>
inline Real<T> square_of(int n, const T* x) {
  if constexpr (is_complex<T>)
    return dot<Conj::yes>(n, x, 1, x, 1).re;
  else
    return dot<T>(n, x, 1, x, 1);
}
inline float real_part(float a) { return a; }
inline double real_part(double a) { return a; }
template <class T>
requires is_complex<T>
inline Real<T> real_part(T a) { return a.re; }

// Column by column. Each returns the number of the first pivot that is not positive, or 0.
template <class T>
int potrf_upper_columns(int n, T* a, int lda) {
  constexpr Op adjoint = is_complex<T> ? Op::conj_transpose : Op::transpose;
  for (int j = 0; j < n; ++j) {
    T* const column = a + ptrdiff_t(j) * lda;
    trsv<Uplo::upper, adjoint, Diag::non_unit>(j, a, lda, column, 1);
    if (!take_root(column[j], real_part(column[j]) - square_of(j, column))) return j + 1;
  }
  return 0;
}
template <class T>
int potrf_lower_columns(int n, T* a, int lda) {
  T row[potrf_columns];
  for (int j = 0; j < n; ++j) {
    T* const column = a + ptrdiff_t(j) * lda + j;
    for (int k = 0; k < j; ++k) row[k] = conjugate(a[j + ptrdiff_t(k) * lda]);
    gemv(Op::none, n - j, j, real_element<T>(-1), a + j, lda, row, 1, one_of<T>, column, 1);
    if (!take_root(*column, real_part(*column))) return j + 1;
    const Factor<Real<T>> factor(1 / real_part(*column));
    for_each<T>(
        n - j - 1, [=](Lanes<T>& x) { x = x * factor; }, InOut<T>{column + 1});
  }
  return 0;
}

// info of LAPACK's potrf.
template <Uplo uplo, class T>
int potrf(int n, T* a, int lda) {
  constexpr bool upper = uplo == Uplo::upper;
  if (n <= potrf_columns)
    return upper ? potrf_upper_columns(n, a, lda) : potrf_lower_columns(n, a, lda);
  constexpr Conj conj = is_complex<T> ? Conj::yes : Conj::no;
  constexpr Real<T> one = 1, minus = -1;
  const int first = n / 2 / 4 * 4, rest = n - first;
  T *const corner = a + ptrdiff_t(first) * lda + first, *const beside =
                                                            upper ? a + ptrdiff_t(first) * lda
                                                                  : a + first;
  if (const int info = potrf<uplo>(first, a, lda)) return info;
  trsm(upper ? Side::left : Side::right, uplo, mirror(conj), Diag::non_unit, upper ? first : rest,
       upper ? rest : first, one_of<T>, a, lda, beside, lda);
  rank_k<conj>(uplo, upper, rest, first, minus, beside, lda, one, corner, lda);
  const int info = potrf<uplo>(rest, corner, lda);
  return info ? info + first : 0;
}

}  // namespace jex::blas
