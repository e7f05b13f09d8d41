// Storage of the stored triangle of an n x n matrix, seen by columns. Element (i, j) is
// column(j)[i], for the rows begin(j) <= i < end(j) that the storage holds; both count from 0.
//
//   full     lda apart          band, k diagonals beside the main one    packed, columns in a row
//   upper  * * *                upper  - - 3 6       lower  1 4 7 9      upper 1 2 3 4 5 6
//            * *                (k=2)  - 2 5 8       (k=2)  2 5 8 -      is  1 2 4   lower 1 - -
//              *                       1 4 7 9              3 6 - -            3 5         2 4 -
//                                                                                6         3 5 6
#pragma once

#include <algorithm>
#include <stddef.h>

namespace jex::blas {

enum class Uplo { upper, lower };
enum class Diag { non_unit, unit };
enum class Op { none, transpose, conj_transpose };

template <Uplo uplo, class T>
struct FullTriangle {
  T* a;
  int lda, n;
  T* column(int j) const { return a + ptrdiff_t(j) * lda; }
  int begin(int j) const { return uplo == Uplo::upper ? 0 : j; }
  int end(int j) const { return uplo == Uplo::upper ? j + 1 : n; }
};

template <Uplo uplo, class T>
struct BandTriangle {
  T* a;
  int lda, n, k;
  T* column(int j) const { return a + ptrdiff_t(j) * lda + (uplo == Uplo::upper ? k : 0) - j; }
  int begin(int j) const { return uplo == Uplo::upper ? std::max(0, j - k) : j; }
  int end(int j) const { return uplo == Uplo::upper ? j + 1 : std::min(n, j + k + 1); }
};

template <Uplo uplo, class T>
struct PackedTriangle {
  T* ap;
  int n;
  T* column(int j) const {
    return uplo == Uplo::upper ? ap + ptrdiff_t(j) * (j + 1) / 2
                               : ap + (ptrdiff_t(j) * (2 * n - 1 - j)) / 2;
  }
  int begin(int j) const { return uplo == Uplo::upper ? 0 : j; }
  int end(int j) const { return uplo == Uplo::upper ? j + 1 : n; }
};

}  // namespace jex::blas
