// Where a triangle's diagonals are in an ascending array of distances.
#pragma once

#include "spblas/dia/matrix.h"

namespace jex::spblas::dia {

// Diagonals first .. last of the strict triangle, counted from 1 (none if last < first), the place
// where the scan ended, beside them, and whether the main diagonal stands there.
struct Triangle {
  int first, last, end;
  bool has_main;
};

// The lower triangle from the front, the upper one from the back.
template <Uplo uplo>
inline Triangle find_triangle(const jex_int* distances, int count) {
  const auto is_main = [&](int place) {
    return place >= 1 && place <= count && distances[place - 1] == 0;
  };
  if constexpr (uplo == Uplo::lower) {
    int end = 1;
    while (end <= count && distances[end - 1] < 0) ++end;
    return {1, end - 1, end, is_main(end)};
  } else {
    int end = std::max(count, 0);
    while (end >= 1 && distances[end - 1] > 0) --end;
    return {end + 1, count, end, is_main(end)};
  }
}

template <Uplo uplo>
inline void find_diagonals(const jex_int* distances, int count, jex_int* first, jex_int* last,
                           jex_int* step, jex_int* main, jex_int* flag) {
  const Triangle t = find_triangle<uplo>(distances, count);
  *first = t.first;
  *last = t.last;
  *step = 1;
  *main = t.end;
  *flag = t.has_main ? 0 : -1;
}

}  // namespace jex::spblas::dia
