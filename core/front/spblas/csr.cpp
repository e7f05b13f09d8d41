// The users' CSR entries for the four element types.

#include "front/spblas/csr.h"

using namespace jex::front;

#define CSR(E, T)                                                                                \
  jex_int jex_##E##csrmv(char op, const T* alpha, const jex_csr* a,                              \
                         const jex_sparse_descriptor* descriptor, const T* x, const T* beta,     \
                         T* y) {                                                                 \
    return csr_mv(op, alpha, a, descriptor, x, beta, y);                                         \
  }                                                                                              \
  jex_int jex_##E##csrmm(char op, jex_int columns, const T* alpha, const jex_csr* a,             \
                         const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb,       \
                         const T* beta, T* c, jex_int ldc) {                                     \
    return csr_mm(op, columns, alpha, a, descriptor, b, ldb, beta, c, ldc);                      \
  }                                                                                              \
  jex_int jex_##E##csrsv(char op, const T* alpha, const jex_csr* a,                              \
                         const jex_sparse_descriptor* descriptor, const T* x, T* y) {            \
    return csr_sv(op, alpha, a, descriptor, x, y);                                               \
  }                                                                                              \
  jex_int jex_##E##csrsm(char op, jex_int columns, const T* alpha, const jex_csr* a,             \
                         const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, T* c, \
                         jex_int ldc) {                                                          \
    return csr_sm(op, columns, alpha, a, descriptor, b, ldb, c, ldc);                            \
  }
CSR(s, float)
CSR(d, double)
CSR(c, jex_scomplex)
CSR(z, jex_dcomplex)
