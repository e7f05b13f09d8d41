// The conversions as their exports call them: direction, room and outcome.
#pragma once

#include "spblas/util/convert.h"

namespace jex::spblas::util {

inline void convert_bsr(const Job& job, int m, int n, int lb, const CsrArrays& csr,
                        const BsrArrays& bsr, int room, jex_int* info) {
  *info = 0;
  if (lb < 1) return;
  m = extent(m), n = extent(n);
  *info = job.back ? bsr_to_csr(job, m, n, lb, bsr, csr, room)
                   : csr_to_bsr(job, m, n, lb, csr.read(job), bsr, room);
}

inline void convert_coo(const Job& job, int m, const CsrArrays& csr, jex_int* count, double* values,
                        jex_int* row_indices, jex_int* column_indices, int room, jex_int* info) {
  m = extent(m);
  *info = job.back
              ? coo_to_csr(job, m, *count, values, row_indices, column_indices, csr, room)
              : csr_to_coo(job, m, csr.read(job), count, values, row_indices, column_indices, room);
}

inline void convert_csc(const Job& job, int m, int n, const CsrArrays& csr, const CsrArrays& csc,
                        int room, jex_int* info) {
  m = extent(m), n = extent(n);
  const Csr<double> columns = {csc.values, csc.columns, csc.rows, job.other_base};
  const Lists<double> written = {csc.values, csc.columns, csc.rows, job.other_base};
  *info = job.back ? turn_lists(n, m, columns, csr.written(job), job.whole, room)
                   : turn_lists(m, n, csr.read(job), written, job.whole, room);
}

inline void convert_dia(const Job& job, int m, int n, const CsrArrays& csr, double* values,
                        int lval, jex_int* distances, jex_int* count, int room, jex_int* info) {
  m = extent(m), n = extent(n);
  *info = job.back ? dia_to_csr(job, m, n, values, lval, distances, *count, csr, room)
                   : csr_to_dia(job, m, n, csr.read(job), values, lval, distances, count);
}

inline void convert_sky(const Job& job, int m, const CsrArrays& csr, double* values,
                        jex_int* pointers, int room, jex_int* info) {
  m = extent(m);
  *info = job.back ? sky_to_csr(job, m, values, pointers, csr, room)
                   : csr_to_sky(job, m, csr.read(job), values, pointers, room);
}

inline void convert_dense(const Job& job, int m, int n, const Dense& dense, const CsrArrays& csr,
                          int room, jex_int* info) {
  m = extent(m), n = extent(n);
  *info = 0;
  if (job.back)
    csr_to_dense(m, n, csr.read(job), dense);
  else
    *info = dense_to_csr(job, m, n, dense, csr, room);
}

}  // namespace jex::spblas::util
