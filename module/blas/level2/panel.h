// The panels that a blocked reduction of a triangle works by.
#pragma once

#include "blas/level2/storage.h"

namespace jex::blas {

// Columns first .. last - 1 of the stored triangle.
struct Panel {
  int first, last;
};

// nb columns of a matrix of order n: the first ones of a lower triangle, the last ones of an upper.
template <Uplo uplo>
inline Panel panel_of(int n, int nb) {
  nb = std::min(n, nb);
  return uplo == Uplo::lower ? Panel{0, nb} : Panel{n - nb, n};
}

}  // namespace jex::blas
