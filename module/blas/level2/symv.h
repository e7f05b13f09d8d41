// y := alpha A x + beta y for a symmetric (real) or Hermitian (complex) matrix, of which one
// triangle is stored: full, band or packed.
#pragma once

#include "blas/level2/beta.h"
#include "blas/level2/panel.h"
#include "blas/level2/symv_columns.h"

namespace jex::blas {

// The columns [first, last) of the stored triangle, with their mirror images: in groups from first
// on, then one by one.
template <template <Uplo, class> class Storage, Uplo uplo, class T, class X, class Y>
inline void add_product(const Storage<uplo, const T>& a, int first, int last, T alpha, X x, Y y) {
  constexpr int group = columns_per_walk<T>;
  const auto far = [&](int j, int count) {
    return uplo == Uplo::lower ? a.end(j) : a.begin(j + count - 1);
  };
  const auto walk = [&]<int... k>(int j, std::integer_sequence<int, k...> columns) {
    symv_columns<uplo>(columns, {a.column(j + k)...}, j, far(j, sizeof...(k)), a.n, alpha, x, y);
  };
  int j = first;
  for (; j + group <= last; j += group) {
    // A band narrower than the block does not store all of it.
    if (uplo == Uplo::lower ? a.end(j) < j + group : a.begin(j + group - 1) > j) break;
    walk(j, std::make_integer_sequence<int, group>());
  }
  for (; j < last; ++j) walk(j, std::make_integer_sequence<int, 1>());
}

// nb columns of a matrix of order a.n. alpha = 0 reads neither A nor x.
template <template <Uplo, class> class Storage, Uplo uplo, class T>
[[gnu::noinline]] void symv(Storage<uplo, const T> a, int nb, T alpha, const T* x, int incx, T beta,
                            T* y, int incy) {
  if (a.n < 1 || nb < 1) return;
  scale_y(a.n, beta, y, incy);
  if (is_zero(alpha)) return;
  const Panel panel = panel_of<uplo>(a.n, nb);
  if (incx == 1 && incy == 1) {
    add_product(a, panel.first, panel.last, alpha, UnitVector<const T>{x}, UnitVector<T>{y});
    return;
  }
  add_product(a, panel.first, panel.last, alpha,
              SpacedVector<const T>{start_of(x, a.n, incx), incx},
              SpacedVector<T>{start_of(y, a.n, incy), incy});
}

}  // namespace jex::blas
