// A call on a list of entries: pieces of work and kernels.
//
// The kernels know A and its conjugate. A transpose exchanges rows and columns, and with them the
// triangles.
#pragma once

#include "front/spblas/call.h"
#include "front/spblas/coo_checks.h"

#include <vector>

namespace jex::front {

// First entries, counted from 1, of pieces of a list; the last element is count + 1. Pieces of a
// list in the order of its rows begin with a row.
inline std::vector<jex_int> cut_list(const jex_int* rows, jex_int count, int pieces, bool at_rows) {
  std::vector<jex_int> first{1};
  for (int q = 1; q < pieces; ++q) {
    jex_int k = std::max(piece_begin(count, q, pieces), first.back() - 1);
    while (at_rows && k > 0 && k < count && rows[k] == rows[k - 1]) ++k;
    if (k >= first.back() && k < count) first.push_back(k + 1);
  }
  first.push_back(count + 1);
  return first;
}

template <class T>
struct CooCall : SparseCall<T> {
  using Int = const jex_int*;
  using SparseCall<T>::alpha, SparseCall<T>::operation;
  const jex_coo* a;
  CooOperation o;
  const jex_int *rows, *columns;  // of op(A), or its conjugate

  jex_int prepare(char op, const T* scale, const jex_coo* matrix, const jex_sparse_descriptor& d,
                  bool solve) {
    a = matrix;
    if (const jex_int status = this->decode_call(op, scale, d, a->m, a->n, solve)) return status;
    if (a->count < 0) return JEX_SPARSE_WRONG_SIZE;
    if (a->count > 0 && (!a->rows || !a->columns || !a->values)) return JEX_SPARSE_NULL_ARGUMENT;
    o = coo_operation(operation);
    rows = o.exchanged ? a->columns : a->rows;
    columns = o.exchanged ? a->rows : a->columns;
    if (o.negative) SparseServices<T>::neones (*this->module)(&alpha);
    return d.trusted ? JEX_SPARSE_OK : check_entries(*a, this->base, operation, solve);
  }

  void multiply(const T* x, T* y) const {
    const jex_int m = this->y_rows(), n = this->x_rows();
    CooOperation of = o;
    // The kernels add a unit diagonal with the first entry.
    if (a->count == 0 && o.diag == 'u') of.kind = 'd', of.uplo = '_', of.op = 'n';
    if (const auto whole = kernel<void(Int, Int, const T*, const T*, Int, Int, Int, const T*, T*)>(
            of, "mvout_seq")) {
      whole(&m, &n, &alpha, values(), rows, columns, &a->count, x, y);
      return;
    }
    const auto part =
        kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, const T*, T*)>(
            o, "mvout_par");
    // In the order of the rows of the result they can be shared out; otherwise each piece pays for
    // a vector, and is worth it if it has more entries than that has elements.
    const bool shares = !operation.mirrors() && o.diag != 'u' && ascends(rows, a->count);
    const int most = std::min<int64_t>(8, std::max<int64_t>(1, a->count / (2 * int64_t(m))));
    const auto cuts = cut_list(rows, a->count, pieces_of(a->count, shares ? 8 : most), shares);
    const int pieces = cuts.size() - 1;
    const auto run = [&](int q, T* y) {
      const jex_int first = cuts[q], last = cuts[q + 1] - 1;
      part(&first, &last, &m, &n, &alpha, values(), rows, columns, &a->count, x, y);
    };
    if (shares)
      in_parallel(pieces, [&](int q) { run(q, y); });
    else
      this->add_pieces(pieces, run, y);
  }

  void multiply(jex_int n, const T* b, jex_int ldb, T* c, jex_int ldc) const {
    const jex_int m = this->y_rows();
    const auto part =
        kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, const T*, Int, T*, Int)>(
            o, "mmout_par");
    run_columns(n, int64_t(a->count) * n, [&](jex_int first, jex_int last) {
      part(&first, &last, &m, &n, &alpha, values(), rows, columns, &a->count, b, &ldb, c, &ldc);
    });
  }

  void solve(T* y) const {
    kernel<void(Int, Int, const T*, const T*, Int, Int, Int, const T*, T*)>(o, "svout_seq")(
        &a->m, &a->n, &alpha, values(), rows, columns, &a->count, y, y);
  }
  void solve(jex_int n, T* c, jex_int ldc) const {
    const auto part = kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, T*, Int)>(
        o, "smout_par");
    run_columns(n, int64_t(a->count) * n, [&](jex_int first, jex_int last) {
      part(&first, &last, &a->m, &n, &alpha, values(), rows, columns, &a->count, c, &ldc);
    });
  }

 private:
  template <class Kernel>
  Kernel* kernel(const Operation& of, const char* suffix) const {
    return SparseCall<T>::template kernel<Kernel>("coo", of, suffix);
  }
  const T* values() const { return static_cast<const T*>(a->values); }
};

}  // namespace jex::front
