// Results of products and solves against dense matrices in long double, within rounding.
#pragma once

#include "spblas/csr_matrix.h"
#include "support/exact.h"

#include <gtest/gtest.h>

namespace jex::test {

// after = before + alpha op(A) x, op(A) and the sizes of what is added for its elements row after
// row. A wrong triangle, sign or conjugate is far outside the bound.
template <class T>
void expect_added(const std::vector<Exact>& matrix, const std::vector<Exact>& sizes, T alpha,
                  const DenseMatrix<T>& x, const DenseMatrix<T>& y, const std::vector<T>& after,
                  int additions) {
  const long double eps = std::numeric_limits<Real<T>>::epsilon();
  for (int j = 0; j < y.columns; ++j)
    for (int i = 0; i < y.rows; ++i) {
      Exact sum = 0;
      long double size = 0;
      for (int k = 0; k < x.rows; ++k) {
        const Exact element = exact(x.model[x.place(k, j)]);
        sum += matrix[i * x.rows + k] * element;
        size += size_of(sizes[i * x.rows + k]) * size_of(element);
      }
      const Exact before = exact(y.model[y.place(i, j)]);
      const long double error =
          size_of(exact(after[y.place(i, j)]) - (before + exact(alpha) * sum));
      const long double bound =
          4 * (additions + 4) * eps * (size_of(before) + size_of(exact(alpha)) * size);
      if (!(error <= bound)) FAIL() << i << "," << j << ": " << error << " of " << bound;
    }
}

// op(A) after = the right-hand side, row by row.
template <class T>
void expect_solved(const std::vector<Exact>& matrix, const DenseMatrix<T>& side,
                   const std::vector<T>& after) {
  const long double eps = std::numeric_limits<Real<T>>::epsilon();
  const int m = side.rows;
  for (int j = 0; j < side.columns; ++j)
    for (int i = 0; i < m; ++i) {
      Exact sum = -exact(side.model[side.place(i, j)]);
      long double size = size_of(sum);
      for (int k = 0; k < m; ++k) {
        const Exact x = exact(after[side.place(k, j)]);
        sum += matrix[i * m + k] * x;
        size += size_of(matrix[i * m + k]) * size_of(x);
      }
      if (!(size_of(sum) <= 8 * (m + 8) * eps * size)) FAIL() << i << "," << j;
    }
}

}  // namespace jex::test
