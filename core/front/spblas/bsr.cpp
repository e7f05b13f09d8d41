// The users' BSR entries: checks, beta, pieces of work, kernels.

#include "front/spblas/csr.h"

#include <jex/block_sparse.h>

namespace jex::front {
namespace {

// The module's entries of one element type.
template <class T>
struct BsrKernels;
#define BSR(E, T)                                                                          \
  template <>                                                                              \
  struct BsrKernels<T> {                                                                   \
    static auto matrix(const Module& m, int base, char kind) {                             \
      switch (kind) {                                                                      \
        case 'g':                                                                          \
          return base ? m.jex_spblas_##E##bsrmmgen : m.jex_spblas_cspblas_##E##bsrmmgen;   \
        case 's':                                                                          \
          return base ? m.jex_spblas_##E##bsrmmsym : m.jex_spblas_cspblas_##E##bsrmmsym;   \
        case 'a':                                                                          \
          return base ? m.jex_spblas_##E##bsrmmskew : m.jex_spblas_cspblas_##E##bsrmmskew; \
        case 't':                                                                          \
          return base ? m.jex_spblas_##E##bsrmmtr : m.jex_spblas_cspblas_##E##bsrmmtr;     \
        default:                                                                           \
          return base ? m.jex_spblas_##E##bsrmmdiag : m.jex_spblas_cspblas_##E##bsrmmdiag; \
      }                                                                                    \
    }                                                                                      \
    static auto vector(const Module& m, int base, char uplo) {                             \
      if (uplo == 'l')                                                                     \
        return base ? m.jex_spblas_##E##bsr1nslnf__mvout_par                               \
                    : m.jex_spblas_##E##bsr0nslnf__mvout_par;                              \
      return base ? m.jex_spblas_##E##bsr1nsunf__mvout_par                                 \
                  : m.jex_spblas_##E##bsr0nsunf__mvout_par;                                \
    }                                                                                      \
  };
BSR(s, float)
BSR(d, double)
BSR(c, jex_scomplex)
BSR(z, jex_dcomplex)
#undef BSR

// Sizes in elements, within the addresses of a 32-bit program.
bool fits(jex_int blocks, jex_int side) { return int64_t(blocks) * side < 0x7fffffff; }

template <class T>
struct BsrCall {
  const Module* module = entries();
  const jex_bsr* a;
  Operation operation;
  int base;

  jex_int prepare(char op, const T* alpha, const jex_bsr* matrix, const jex_sparse_descriptor* d) {
    if (!module) return JEX_SPARSE_NO_MODULE;
    if (!alpha || !matrix || !d) return JEX_SPARSE_NULL_ARGUMENT;
    if (const jex_int status = decode(op, *d, has_imaginary_part<T>, operation)) return status;
    if (operation.kind == 'h' || (operation.kind == 's' && operation.diag == 'u'))
      return JEX_SPARSE_WRONG_DESCRIPTOR;
    // What holds for a diagonal of elements does not for one of blocks.
    if (operation.kind == 'd') operation.op = requested(op);
    a = matrix, base = d->base;
    if (a->m < 0 || a->n < 0 || a->block < 1 || (operation.kind != 'g' && a->m != a->n) ||
        !fits(a->m, a->block) || !fits(a->n, a->block))
      return JEX_SPARSE_WRONG_SIZE;
    if (a->m > 0 && (!a->row_begin || !a->row_end)) return JEX_SPARSE_NULL_ARGUMENT;
    // Blocks are checked as the entries of a matrix would be.
    const jex_csr blocks = {a->m, a->n, a->values, a->columns, a->row_begin, a->row_end};
    return d->trusted ? JEX_SPARSE_OK : check_rows(blocks, base, operation, false);
  }

  // The letter of an operation that is one.
  static char requested(char op) {
    const char letter = op >= 'A' && op <= 'Z' ? op - 'A' + 'a' : op;
    return letter == 'c' && !has_imaginary_part<T> ? 't' : letter;
  }
  bool turned() const { return operation.transposed() && operation.kind != 's'; }
  jex_int x_rows() const { return (turned() ? a->m : a->n) * a->block; }
  jex_int y_rows() const { return (turned() ? a->n : a->m) * a->block; }
  // A skew-symmetric matrix comes decoded as itself with the other sign.
  jex_int mode() const {
    return operation.negative || operation.op == 't' ? 2 : operation.op == 'c' ? 3 : 1;
  }
  int64_t products() const {
    int64_t blocks = 0;
    for (jex_int i = 0; i < a->m; ++i) blocks += a->row_end[i] - a->row_begin[i];
    return blocks * a->block * a->block;
  }

  // Block rows first .. last - 1 as a matrix of their own.
  jex_bsr rows(jex_int first, jex_int last) const {
    jex_bsr part = *a;
    const ptrdiff_t skip = a->row_begin[first] - a->row_begin[0];
    part.m = last - first;
    part.values = static_cast<const T*>(a->values) + skip * a->block * a->block;
    part.columns += skip, part.row_begin += first, part.row_end += first;
    return part;
  }
  void multiply(const jex_bsr& m, jex_int n, const T& alpha, const T* b, jex_int ldb, T* c,
                jex_int ldc) const {
    const jex_int mode = this->mode();
    BsrKernels<T>::matrix(*module, base, operation.kind)(
        &mode, &operation.uplo, &operation.diag, &m.m, &n, &m.n, &m.block, &alpha,
        static_cast<const T*>(m.values), m.columns, m.row_begin, m.row_end, b, &ldb, c, &ldc);
  }
};

template <class T>
bool equals_zero(const BsrCall<T>& call, const T& a) {
  jex_int flag;
  SparseServices<T>::zerocheck (*call.module)(&a, &flag);
  return !flag;
}

template <class T>
jex_int bsr_mm(char op, jex_int n, const T* alpha, const jex_bsr* a,
               const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb, const T* beta,
               T* c, jex_int ldc) {
  BsrCall<T> call;
  if (const jex_int status = call.prepare(op, alpha, a, descriptor)) return status;
  if (n < 0) return JEX_SPARSE_WRONG_SIZE;
  const jex_int rows = call.y_rows(), side = a->block;
  if (ldb < std::max<jex_int>(1, call.x_rows()) || ldc < std::max<jex_int>(1, rows))
    return JEX_SPARSE_WRONG_LEADING_DIMENSION;
  if (n == 0) return JEX_SPARSE_OK;
  if (!beta || (call.x_rows() > 0 && !b) || (rows > 0 && !c)) return JEX_SPARSE_NULL_ARGUMENT;
  const jex_int one = 1;
  for (jex_int j = 0; j < n && !is_one(*beta); ++j) {
    T* const column = c + size_t(j) * ldc;
    if (equals_zero(call, *beta))
      SparseServices<T>::zeros (*call.module)(column, &rows);
    else
      SparseServices<T>::scal (*call.module)(&rows, beta, column, &one);
  }
  if (a->m == 0 || a->n == 0 || equals_zero(call, *alpha)) return JEX_SPARSE_OK;

  const int64_t products = call.products() * n;
  if (n == 1 && call.operation.kind == 's' && call.operation.op == 'n') {
    BsrKernels<T>::vector(*call.module, call.base, call.operation.uplo)(
        &one, &a->m, &a->m, &side, alpha, static_cast<const T*>(a->values), a->columns,
        a->row_begin, a->row_end, b, c);
  } else if (call.operation.kind == 'g' && !call.turned()) {
    // Rows of blocks write rows of their own.
    const int pieces = pieces_of(products, std::min<jex_int>(8, a->m));
    in_parallel(pieces, [&](int q) {
      const jex_int first = int64_t(a->m) * q / pieces, last = int64_t(a->m) * (q + 1) / pieces;
      call.multiply(call.rows(first, last), n, *alpha, b, ldb, c + size_t(first) * side, ldc);
    });
  } else {
    run_columns(n, products, [&](jex_int first, jex_int last) {
      call.multiply(*a, last - first + 1, *alpha, b + size_t(first - 1) * ldb, ldb,
                    c + size_t(first - 1) * ldc, ldc);
    });
  }
  return JEX_SPARSE_OK;
}

template <class T>
jex_int bsr_mv(char op, const T* alpha, const jex_bsr* a, const jex_sparse_descriptor* descriptor,
               const T* x, const T* beta, T* y) {
  return bsr_mm<T>(op, 1, alpha, a, descriptor, x, 0x7fffffff, beta, y, 0x7fffffff);
}

}  // namespace
}  // namespace jex::front

using namespace jex::front;

#define BSR_ENTRIES(E, T)                                                                    \
  jex_int jex_##E##bsrmv(char op, const T* alpha, const jex_bsr* a,                          \
                         const jex_sparse_descriptor* descriptor, const T* x, const T* beta, \
                         T* y) {                                                             \
    return bsr_mv(op, alpha, a, descriptor, x, beta, y);                                     \
  }                                                                                          \
  jex_int jex_##E##bsrmm(char op, jex_int columns, const T* alpha, const jex_bsr* a,         \
                         const jex_sparse_descriptor* descriptor, const T* b, jex_int ldb,   \
                         const T* beta, T* c, jex_int ldc) {                                 \
    return bsr_mm(op, columns, alpha, a, descriptor, b, ldb, beta, c, ldc);                  \
  }
BSR_ENTRIES(s, float)
BSR_ENTRIES(d, double)
BSR_ENTRIES(c, jex_scomplex)
BSR_ENTRIES(z, jex_dcomplex)
