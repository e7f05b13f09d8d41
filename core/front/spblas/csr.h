// The CSR entries, one template for each: checks, beta, pieces of work, kernels.
#pragma once

#include "front/spblas/csr_checks.h"
#include "front/spblas/pieces.h"
#include "threads/threads.h"

#include <algorithm>
#include <functional>
#include <new>
#include <stdlib.h>
#include <vector>

namespace jex::front {

// The module's entries of one element type.
template <class T>
struct SparseServices;
#define SERVICES(E, T)                                                                 \
  template <>                                                                          \
  struct SparseServices<T> {                                                           \
    static constexpr char type = #E[0];                                                \
    static auto scal(const Module& m) { return m.jex_blas_##E##scal; }                 \
    static auto zeros(const Module& m) { return m.jex_spblas_##E##zeros; }             \
    static auto zerocheck(const Module& m) { return m.jex_spblas_##E##zerocheck; }     \
    static auto neones(const Module& m) { return m.jex_spblas_##E##neones; }           \
    static auto split_sym(const Module& m) { return m.jex_spblas_##E##split_sym_par; } \
  };
SERVICES(s, float)
SERVICES(d, double)
SERVICES(c, jex_scomplex)
SERVICES(z, jex_dcomplex)
#undef SERVICES

template <class T>
inline constexpr bool has_imaginary_part = requires(T a) {
  a.im;
};

template <class T>
bool is_one(const T& a) {
  if constexpr (has_imaginary_part<T>)
    return a.re == 1 && a.im == 0;
  else
    return a == 1;
}

// One call: the module, the decoded operation and the matrix.
template <class T>
struct CsrCall {
  using Int = const jex_int*;
  using Services = SparseServices<T>;
  const Module* module = entries();
  Operation operation;
  const jex_csr* a;
  int base;
  T alpha;

  // Rows of x (of B) and of y (of C).
  jex_int x_rows() const { return operation.transposed() ? a->m : a->n; }
  jex_int y_rows() const { return operation.transposed() ? a->n : a->m; }
  const T* values() const { return static_cast<const T*>(a->values); }
  int64_t entry_count() const {
    int64_t count = 0;
    for (jex_int i = 0; i < a->m; ++i) count += a->row_end[i] - a->row_begin[i];
    return count;
  }

  // Decodes and checks all but the dense operands.
  jex_int prepare(char op, const T* scale, const jex_csr* matrix, const jex_sparse_descriptor* d,
                  bool solve) {
    if (!module) return JEX_SPARSE_NO_MODULE;
    if (!scale || !matrix || !d) return JEX_SPARSE_NULL_ARGUMENT;
    if (const jex_int status = decode(op, *d, has_imaginary_part<T>, operation)) return status;
    a = matrix, base = d->base, alpha = *scale;
    if (operation.negative) Services::neones (*module)(&alpha);
    if (a->m < 0 || a->n < 0 || (operation.kind != 'g' && a->m != a->n) ||
        (solve && !operation.solvable()))
      return JEX_SPARSE_WRONG_SIZE;
    if (a->m > 0 && (!a->row_begin || !a->row_end)) return JEX_SPARSE_NULL_ARGUMENT;
    return d->trusted ? JEX_SPARSE_OK : check_rows(*a, base, operation, solve);
  }

  template <class Kernel>
  Kernel* kernel(const char* suffix) const {
    return reinterpret_cast<Kernel*>(
        find_kernel(*module, Services::type, "csr", base, operation, suffix));
  }

  bool is_zero(const T& a) const {
    jex_int flag;
    Services::zerocheck (*module)(&a, &flag);
    return !flag;
  }
  // n neighbouring elements.
  void scale(const T& beta, jex_int n, T* y) const {
    const jex_int one = 1;
    if (is_zero(beta))
      Services::zeros (*module)(y, &n);
    else
      Services::scal (*module)(&n, &beta, y, &one);
  }
};

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
jex_int add_product(const CsrCall<T>& call, const T* x, T* y) {
  using Int = const jex_int*;
  const jex_csr& a = *call.a;
  if (const auto whole =
          call.template kernel<void(Int, const T*, const T*, Int, Int, Int, const T*, T*)>(
              "mvout_seq")) {
    whole(&a.m, &call.alpha, call.values(), a.columns, a.row_begin, a.row_end, x, y);
    return JEX_SPARSE_OK;
  }
  const auto part =
      call.template kernel<void(Int, Int, Int, const T*, const T*, Int, Int, Int, const T*, T*)>(
          "mvout_par");
  const int64_t entries = call.entry_count();
  const bool mirrors = call.operation.mirrors();
  const auto cuts = cut_rows(a, pieces_of(entries, mirrors ? 4 : 8), entries);
  const int pieces = cuts.size() - 1;
  const bool from_first = call.operation.kind == 's' || call.operation.kind == 'h';
  const auto run = [&](int q, T* y) {
    const jex_int first = cuts[q], last = cuts[q + 1] - 1, shift = from_first ? first - 1 : 0;
    part(&first, &last, &a.m, &call.alpha, call.values(), a.columns, a.row_begin, a.row_end,
         x + shift, y + shift);
  };
  if (!mirrors || pieces == 1) {
    in_parallel(pieces, [&](int q) { run(q, y); });
    return JEX_SPARSE_OK;
  }
  // Mirror images fall into the rows of other pieces: a vector for each, and their sum. They stand
  // as split_sym_par wants them, 8 elements farther apart than ld.
  const jex_int ld = a.m;
  const size_t step = size_t(ld) + 8;
  T* const partials = static_cast<T*>(calloc(step * pieces, sizeof(T)));
  if (!partials) return JEX_SPARSE_NO_MEMORY;
  in_parallel(pieces, [&](int q) { run(q, partials + q * step); });
  in_parallel(pieces, [&](int q) {
    const jex_int first = cuts[q], last = cuts[q + 1] - 1;
    SparseServices<T>::split_sym (*call.module)(&first, &last, &pieces, &ld, partials, y);
  });
  free(partials);
  return JEX_SPARSE_OK;
}

template <class T>
jex_int csr_mv(char op, const T* alpha, const jex_csr* a, const jex_sparse_descriptor* descriptor,
               const T* x, const T* beta, T* y) {
  CsrCall<T> call;
  if (const jex_int status = call.prepare(op, alpha, a, descriptor, false)) return status;
  if (!beta || (call.x_rows() > 0 && !x) || (call.y_rows() > 0 && !y))
    return JEX_SPARSE_NULL_ARGUMENT;
  if (!is_one(*beta)) call.scale(*beta, call.y_rows(), y);
  if (a->m == 0 || call.is_zero(call.alpha)) return JEX_SPARSE_OK;
  return add_product(call, x, y);
}

// Lines of a dense matrix of rows x columns: rows with base 0, columns with base 1.
struct Lines {
  jex_int count, length;
  Lines(int base, jex_int rows, jex_int columns)
      : count(base ? columns : rows), length(base ? rows : columns) {}
  bool fit(jex_int ld) const { return ld >= std::max<jex_int>(1, length); }
};

// The columns 1 .. n in pieces.
inline void run_columns(jex_int n, int64_t products,
                        const std::function<void(jex_int, jex_int)>& piece) {
  const int pieces = pieces_of(products, std::min<jex_int>(8, n));
  in_parallel(pieces, [&](int q) {
    piece(jex_int(int64_t(n) * q / pieces) + 1, jex_int(int64_t(n) * (q + 1) / pieces));
  });
}

template <class T>
jex_int csr_mm(char op, jex_int n, const T* alpha, const jex_csr* a,
               const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, const T* beta,
               T* c, jex_int ldc) {
  using Int = const jex_int*;
  CsrCall<T> call;
  if (const jex_int status = call.prepare(op, alpha, a, descriptor, false)) return status;
  if (n < 0) return JEX_SPARSE_WRONG_SIZE;
  const Lines from(call.base, call.x_rows(), n), to(call.base, call.y_rows(), n);
  if (!from.fit(ldb) || !to.fit(ldc)) return JEX_SPARSE_WRONG_LEADING_DIMENSION;
  if (n == 0) return JEX_SPARSE_OK;
  if (!beta || (call.x_rows() > 0 && !b) || (call.y_rows() > 0 && !c))
    return JEX_SPARSE_NULL_ARGUMENT;
  if (!is_one(*beta))
    for (jex_int line = 0; line < to.count; ++line)
      call.scale(*beta, to.length, c + size_t(line) * ldc);
  if (a->m == 0 || call.is_zero(call.alpha)) return JEX_SPARSE_OK;
  if (const auto whole = call.template kernel<void(Int, Int, const T*, const T*, Int, Int, Int,
                                                   const T*, Int, T*, Int)>("mmout_seq")) {
    whole(&a->m, &n, &call.alpha, call.values(), a->columns, a->row_begin, a->row_end, b, &ldb, c,
          &ldc);
    return JEX_SPARSE_OK;
  }
  const auto part = call.template kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int,
                                              const T*, Int, T*, Int)>("mmout_par");
  run_columns(n, call.entry_count() * n, [&](jex_int first, jex_int last) {
    part(&first, &last, &a->m, &n, &call.alpha, call.values(), a->columns, a->row_begin, a->row_end,
         b, &ldb, c, &ldc);
  });
  return JEX_SPARSE_OK;
}

// C := alpha B, line by line.
template <class T>
void start_solve(const CsrCall<T>& call, const Lines& lines, const T* b, jex_int ldb, T* c,
                 jex_int ldc) {
  for (jex_int line = 0; line < lines.count; ++line) {
    T* const to = c + size_t(line) * ldc;
    if (b != c) std::copy_n(b + size_t(line) * ldb, lines.length, to);
    if (!is_one(call.alpha)) call.scale(call.alpha, lines.length, to);
  }
}

template <class T>
jex_int csr_sv(char op, const T* alpha, const jex_csr* a, const jex_sparse_descriptor* descriptor,
               const T* x, T* y) {
  using Int = const jex_int*;
  CsrCall<T> call;
  if (const jex_int status = call.prepare(op, alpha, a, descriptor, true)) return status;
  if (a->m == 0) return JEX_SPARSE_OK;
  if (!x || !y) return JEX_SPARSE_NULL_ARGUMENT;
  start_solve(call, Lines(1, a->m, 1), x, a->m, y, a->m);
  call.template kernel<void(Int, const T*, const T*, Int, Int, Int, T*)>("svout_seq")(
      &a->m, &call.alpha, call.values(), a->columns, a->row_begin, a->row_end, y);
  return JEX_SPARSE_OK;
}

template <class T>
jex_int csr_sm(char op, jex_int n, const T* alpha, const jex_csr* a,
               const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, T* c,
               jex_int ldc) {
  using Int = const jex_int*;
  CsrCall<T> call;
  if (const jex_int status = call.prepare(op, alpha, a, descriptor, true)) return status;
  if (n < 0) return JEX_SPARSE_WRONG_SIZE;
  const Lines lines(call.base, a->m, n);
  if (!lines.fit(ldb) || !lines.fit(ldc) || (b == c && ldb != ldc))
    return JEX_SPARSE_WRONG_LEADING_DIMENSION;
  if (a->m == 0 || n == 0) return JEX_SPARSE_OK;
  if (!b || !c) return JEX_SPARSE_NULL_ARGUMENT;
  start_solve(call, lines, b, ldb, c, ldc);
  const auto part =
      call.template kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, T*, Int)>(
          "smout_par");
  run_columns(n, call.entry_count() * n, [&](jex_int first, jex_int last) {
    part(&first, &last, &a->m, &n, &call.alpha, call.values(), a->columns, a->row_begin, a->row_end,
         c, &ldc);
  });
  return JEX_SPARSE_OK;
}

}  // namespace jex::front
