// From the user's letters to those of a kernel, and the kernels by name.
#pragma once

#include "front/entries.h"

#include <jex/spblas.h>

#include <string>

namespace jex::front {

// The letters of a kernel's name that say what it does with the matrix.
struct Operation {
  char op, kind, uplo, diag;
  bool negative;  // the kernel takes -alpha

  bool transposed() const { return op == 't' || op == 'c'; }
  bool mirrors() const { return kind == 's' || kind == 'h' || kind == 'a'; }
  bool solvable() const { return kind == 't' || (kind == 'd' && diag == 'n'); }
};

// The operation on a matrix of real or complex elements, by symmetry one that kernels have: the
// transpose of a symmetric matrix is the matrix itself. Status JEX_SPARSE_OK, or what is wrong.
jex_int decode(char op, const jex_sparse_descriptor& descriptor, bool complex, Operation& result);

// Address of the module's kernel, e.g. of "d", "csr", base 1, the operation and "mvout_par"; null
// if there is none of that name.
void* find_kernel(const Module& module, char type, const char* format, int base,
                  const Operation& operation, const char* suffix);

}  // namespace jex::front
