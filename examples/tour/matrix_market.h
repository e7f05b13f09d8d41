// Sparse matrices from Matrix Market files.
#pragma once

#include <string>
#include <vector>

#include <jex/types.h>

namespace jex::tour {

enum class Symmetry { general, symmetric, skew };

// Compressed sparse rows, columns counted from 1 and ascending within a row. Of a symmetric or
// skew-symmetric matrix the lower triangle is there.
struct SparseMatrix {
  std::string file;
  Symmetry symmetry;
  jex_int m, n;
  std::vector<double> values;
  std::vector<jex_int> columns, rows;  // rows: m + 1 pointers, the first one 1
};

// Reads coordinates of real or whole numbers, or a pattern, whose entries become 1. Entries in the
// same place add up. Throws InputError.
SparseMatrix read_matrix(const std::string& path);

}  // namespace jex::tour
