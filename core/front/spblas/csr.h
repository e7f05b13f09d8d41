// A call on compressed sparse rows: pieces of work and kernels.
#pragma once

#include "front/spblas/call.h"
#include "front/spblas/csr_checks.h"

#include <vector>

namespace jex::front {

// First rows of pieces with about as many entries each; the last element is m + 1.
inline std::vector<jex_int> cut_rows(const jex_csr& a, int pieces, int64_t entries) {
  std::vector<jex_int> first{1};
  int64_t count = 0;
  for (jex_int i = 0; i < a.m && int(first.size()) < pieces; ++i) {
    count += a.row_end[i] - a.row_begin[i];
    if (count * pieces >= entries * int64_t(first.size())) first.push_back(i + 2);
  }
  first.push_back(a.m + 1);
  return first;
}

template <class T>
struct CsrCall : SparseCall<T> {
  using Int = const jex_int*;
  using SparseCall<T>::alpha, SparseCall<T>::operation;
  const jex_csr* a;

  jex_int prepare(char op, const T* scale, const jex_csr* matrix, const jex_sparse_descriptor& d,
                  bool solve) {
    a = matrix;
    if (const jex_int status = this->decode_call(op, scale, d, a->m, a->n, solve)) return status;
    if (a->m > 0 && (!a->row_begin || !a->row_end)) return JEX_SPARSE_NULL_ARGUMENT;
    return d.trusted ? JEX_SPARSE_OK : check_rows(*a, this->base, operation, solve);
  }

  void multiply(const T* x, T* y) const {
    if (const auto whole =
            kernel<void(Int, const T*, const T*, Int, Int, Int, const T*, T*)>("mvout_seq")) {
      whole(&a->m, &alpha, values(), a->columns, a->row_begin, a->row_end, x, y);
      return;
    }
    const auto part =
        kernel<void(Int, Int, Int, const T*, const T*, Int, Int, Int, const T*, T*)>("mvout_par");
    const int64_t entries = entry_count();
    const bool mirrors = operation.mirrors();
    const auto cuts = cut_rows(*a, pieces_of(entries, mirrors ? 4 : 8), entries);
    const int pieces = cuts.size() - 1;
    const bool from_first = operation.kind == 's' || operation.kind == 'h';
    const auto run = [&](int q, T* y) {
      const jex_int first = cuts[q], last = cuts[q + 1] - 1, shift = from_first ? first - 1 : 0;
      part(&first, &last, &a->m, &alpha, values(), a->columns, a->row_begin, a->row_end, x + shift,
           y + shift);
    };
    // Mirror images fall into the rows of other pieces.
    if (mirrors)
      this->add_pieces(pieces, run, y);
    else
      in_parallel(pieces, [&](int q) { run(q, y); });
  }

  void multiply(jex_int n, const T* b, jex_int ldb, T* c, jex_int ldc) const {
    if (const auto whole =
            kernel<void(Int, Int, const T*, const T*, Int, Int, Int, const T*, Int, T*, Int)>(
                "mmout_seq")) {
      whole(&a->m, &n, &alpha, values(), a->columns, a->row_begin, a->row_end, b, &ldb, c, &ldc);
      return;
    }
    const auto part =
        kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, const T*, Int, T*, Int)>(
            "mmout_par");
    run_columns(n, entry_count() * n, [&](jex_int first, jex_int last) {
      part(&first, &last, &a->m, &n, &alpha, values(), a->columns, a->row_begin, a->row_end, b,
           &ldb, c, &ldc);
    });
  }

  void solve(T* y) const {
    kernel<void(Int, const T*, const T*, Int, Int, Int, T*)>("svout_seq")(
        &a->m, &alpha, values(), a->columns, a->row_begin, a->row_end, y);
  }
  void solve(jex_int n, T* c, jex_int ldc) const {
    const auto part =
        kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, T*, Int)>("smout_par");
    run_columns(n, entry_count() * n, [&](jex_int first, jex_int last) {
      part(&first, &last, &a->m, &n, &alpha, values(), a->columns, a->row_begin, a->row_end, c,
           &ldc);
    });
  }

 private:
  template <class Kernel>
  Kernel* kernel(const char* suffix) const {
    return SparseCall<T>::template kernel<Kernel>("csr", operation, suffix);
  }
  const T* values() const { return static_cast<const T*>(a->values); }
  int64_t entry_count() const {
    int64_t count = 0;
    for (jex_int i = 0; i < a->m; ++i) count += a->row_end[i] - a->row_begin[i];
    return count;
  }
};

}  // namespace jex::front
