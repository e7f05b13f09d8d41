// Whose reports of wrong arguments are called. Each target has its own source file.
#pragma once

#include <jex/blas.h>

namespace jex::front {

// The published names as the program sees them: its own, else the core's. A program need not have
// any of them.
struct Handlers {
  decltype(&jex_xerbla_) fortran;
  decltype(&jex_cblas_xerbla) c;
  // Tells a program's own cblas_xerbla that it is a row-major call that it hears of; may be null.
  int* row_major;
};

Handlers handlers();

}  // namespace jex::front
