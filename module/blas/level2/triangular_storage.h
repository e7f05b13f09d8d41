// Products and solves with triangular matrices in band and packed storage, without blocks.
#pragma once

#include "blas/level2/triangle_multiply.h"
#include "blas/level2/triangle_solve.h"

namespace jex::blas {

// The triangle of tbmv and tbsv: k diagonals beside the main one.
template <Uplo uplo, class T>
inline BandTriangle<uplo, const T> band(int n, int k, const T* a, int lda) {
  return {a, lda, n, k};
}
template <Uplo uplo, class T>
inline PackedTriangle<uplo, const T> packed(int n, const T* ap) {
  return {ap, n};
}

template <Op op, Diag diag, template <Uplo, class> class Storage, Uplo uplo, class T>
[[gnu::noinline]] void multiply_vector(Storage<uplo, const T> a, T* x, int incx) {
  if (incx == 1)
    multiply_triangle<op, diag>(a, Dense<T>{x});
  else
    multiply_triangle<op, diag>(a, spread(x, a.n, incx));
}

template <Op op, Diag diag, template <Uplo, class> class Storage, Uplo uplo, class T>
[[gnu::noinline]] void solve_vector(Storage<uplo, const T> a, T* x, int incx) {
  if (incx == 1)
    solve_triangle<op, diag>(a, Dense<T>{x});
  else
    solve_triangle<op, diag>(a, spread(x, a.n, incx));
}

}  // namespace jex::blas
