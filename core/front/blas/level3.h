// Entries of level 3: the shares of the threads, and the C forms.
#pragma once

#include "front/blas/checks.h"
#include "front/blas/request.h"
#include "threads/threads.h"

#include <algorithm>
#include <stddef.h>
#include <utility>

namespace jex::front {

// Cuts 0 .. n into shares for threads, each a multiple of unit but the last.
struct Shares {
  jex_int n, size;

  // Real operations below which another thread costs more than it saves.
  static constexpr double worthwhile = 2e6;

  Shares(jex_int n, jex_int unit, double operations) : n(n), size(std::max(n, 1)) {
    const double most = std::min<double>(thread_limit(), operations / worthwhile);
    const jex_int units = n / unit, parts = std::min(jex_int(most), units);
    if (parts > 1) size = (units + parts - 1) / parts * unit;
  }
  // What is left after the last whole share goes to it: none is smaller than a unit.
  jex_int parts() const { return std::max(1, n / size); }
  jex_int begin(jex_int part) const { return part * size; }
  jex_int count(jex_int part) const { return part + 1 == parts() ? n - begin(part) : size; }
};

// The shares are cut where the kernel's own groups of rows and columns end, and none is so small
// that the kernel would add in another order.
template <class T, class Kernel>
void gemm(Kernel kernel, char transa, char transb, jex_int m, jex_int n, jex_int k, const T* alpha,
          const T* a, jex_int lda, const T* b, jex_int ldb, const T* beta, T* c, jex_int ldc) {
  const bool columns = n >= m;
  constexpr jex_int unit = 48;
  const Shares shares(columns ? n : m, unit, 2.0 * m * n * k * sizeof(T) / sizeof(double));
  in_parallel(shares.parts(), [&](jex_int part) {
    const ptrdiff_t begin = shares.begin(part);
    const jex_int count = shares.count(part);
    if (columns) {
      const T* const own = b + begin * (option(&transb) == 'N' ? ldb : 1);
      kernel(&transa, &transb, &m, &count, &k, alpha, a, &lda, own, &ldb, beta, c + begin * ldc,
             &ldc);
    } else {
      const T* const own = a + begin * (option(&transa) == 'N' ? 1 : lda);
      kernel(&transa, &transb, &count, &n, &k, alpha, own, &lda, b, &ldb, beta, c + begin, &ldc);
    }
  });
}

template <class T, class Kernel>
void c_gemm(Kernel kernel, Request request, jex_cblas_transpose transa, jex_cblas_transpose transb,
            jex_int m, jex_int n, jex_int k, const T* alpha, const T* a, jex_int lda, const T* b,
            jex_int ldb, const T* beta, T* c, jex_int ldc) {
  char op_a = request.trans_of_factor(2, "TransA", transa),
       op_b = request.trans_of_factor(3, "TransB", transb);
  if (request.row()) {
    std::swap(op_a, op_b);
    std::swap(m, n);
    std::swap(a, b);
    std::swap(lda, ldb);
  }
  if (request.refused(wrong::gemm(&op_a, &op_b, m, n, k, lda, ldb, ldc))) return;
  gemm(kernel, op_a, op_b, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace jex::front
