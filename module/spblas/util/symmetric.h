// Work with one stored triangle in CSR of three arrays, base 1, on the kernels of that format.
#pragma once

#include "serv/lsame.h"
#include "spblas/csr/kernels.h"
#include "spblas/scalars.h"

namespace jex::spblas::util {

inline csr::Matrix<double> three_arrays(const double* values, const jex_int* columns,
                                        const jex_int* rows) {
  return {values, columns, rows, rows + 1, 1};
}

// y := A x, A symmetric, the triangle uplo stored.
inline void symmetric_product(const char* uplo, int m, const csr::Matrix<double>& a,
                              const double* x, double* y) {
  set_zeros(y, m);
  if (serv::lsame(uplo, "U"))
    csr::mv<variant("nsun")>(1, m, m, 1.0, a, x, y);
  else
    csr::mv<variant("nsln")>(1, m, m, 1.0, a, x, y);
}

// x := (L D L')^-1 x, L below the unit diagonal, D in its place.
inline void ildlt_solve(int m, const csr::Matrix<double>& a, double* x) {
  csr::sv<variant("ntlu"), Layout::column_major>(m, a, x);
  csr::sv<variant("nd_n"), Layout::column_major>(m, a, x);
  csr::sv<variant("ttlu"), Layout::column_major>(m, a, x);
}

}  // namespace jex::spblas::util
