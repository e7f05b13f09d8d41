// Places of the entries of sparse matrices, in compressed rows from 0.
#pragma once

#include <stdint.h>

#include <vector>

#include <jex/types.h>

namespace jex::bench {

struct Pattern {
  jex_int m = 0;
  std::vector<jex_int> rows{0}, columns;

  void end_row() { rows.push_back(columns.size()), ++m; }
};

Pattern laplacian(int side);            ///< a grid with five-point stars
Pattern banded(int m, int half);        ///< half diagonals on either side
Pattern scattered(int m, int per_row);  ///< random columns
uint32_t next_random(uint32_t& state);

}  // namespace jex::bench
