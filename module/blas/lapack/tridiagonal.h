// Tridiagonal systems: gtsv by elimination with partial pivoting, ptts2 with the factors of a
// Hermitian positive definite matrix.
#pragma once

#include "blas/level1/extreme.h"
#include "blas/level2/column_group.h"
#include "blas/level2/rank_update.h"
#include "blas/level2/triangle_solve.h"

namespace jex::blas {

// T X = B. dl, d and du become the three diagonals of U, its second superdiagonal in dl. Returns
// LAPACK's info: 0, or the first zero pivot; then nothing is solved.
template <class T>
[[gnu::noinline]] int gtsv(int n, int nrhs, T* dl, T* d, T* du, T* b, int ldb) {
  const auto minus_product = [](T a, T f, T x) { return difference(a, multiply(f, x)); };
  for (int k = 0; k < n - 1; ++k) {
    T* row = b + k;
    if (magnitude(d[k]) >= magnitude(dl[k])) {
      if (is_zero(d[k])) return k + 1;
      const T f = quotient(dl[k], d[k]);
      d[k + 1] = minus_product(d[k + 1], f, du[k]);
      for (int j = 0; j < nrhs; ++j, row += ldb) row[1] = minus_product(row[1], f, row[0]);
      if (k < n - 2) dl[k] = T{};
    } else {
      const T f = quotient(d[k], dl[k]), next = d[k + 1];
      d[k] = dl[k];
      d[k + 1] = minus_product(du[k], f, next);
      if (k < n - 2) {
        dl[k] = du[k + 1];
        du[k + 1] = negated(multiply(f, dl[k]));
      }
      du[k] = next;
      for (int j = 0; j < nrhs; ++j, row += ldb) {
        const T upper = row[0];
        row[0] = row[1];
        row[1] = minus_product(upper, f, row[1]);
      }
    }
  }
  if (n > 0 && is_zero(d[n - 1])) return n;
  for (int j = 0; j < nrhs; ++j, b += ldb)
    for (int k = n - 1; k >= 0; --k) {
      T x = b[k];
      if (k < n - 1) x = minus_product(x, du[k], b[k + 1]);
      if (k < n - 2) x = minus_product(x, dl[k], b[k + 2]);
      b[k] = quotient(x, d[k]);
    }
  return 0;
}

// L D L' X = B, L unit with e beside the diagonal, conj(e) if e is that of L' = U.
template <class T>
[[gnu::noinline]] void ptts2(bool e_is_upper, int n, int nrhs, const Real<T>* d, const T* e, T* b,
                             int ldb) {
  const auto below = [=](int k) { return e_is_upper ? conjugate(e[k]) : e[k]; };
  const auto above = [=](int k) { return e_is_upper ? e[k] : conjugate(e[k]); };
  const auto over = [](T x, Real<T> d) -> T {
    if constexpr (is_complex<T>)
      return {x.re / d, x.im / d};
    else
      return x / d;
  };
  for (int j = 0; j < nrhs; ++j, b += ldb) {
    for (int k = 1; k < n; ++k) b[k] = difference(b[k], multiply(b[k - 1], below(k - 1)));
    for (int k = n - 1; k >= 0; --k) {
      b[k] = over(b[k], d[k]);
      if (k < n - 1) b[k] = difference(b[k], multiply(b[k + 1], above(k)));
    }
  }
}

}  // namespace jex::blas
