// The users' BSR entries: checks, beta, pieces of work, kernels.

#include "front/spblas/csr_checks.h"
#include "front/spblas/entries.h"

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
struct BsrCall : SparseCall<T> {
  using SparseCall<T>::module, SparseCall<T>::operation, SparseCall<T>::base, SparseCall<T>::alpha;
  const jex_bsr* a;

  jex_int prepare(char op, const T* scale, const jex_bsr* matrix, const jex_sparse_descriptor& d,
                  bool) {
    if (const jex_int status = decode(op, d, is_complex<T>, operation)) return status;
    if (operation.kind == 'h' || (operation.kind == 's' && operation.diag == 'u'))
      return JEX_SPARSE_WRONG_DESCRIPTOR;
    // What holds for a diagonal of elements does not for one of blocks.
    if (operation.kind == 'd') operation.op = requested(op);
    a = matrix, base = d.base, alpha = *scale;
    if (a->m < 0 || a->n < 0 || a->block < 1 || (operation.kind != 'g' && a->m != a->n) ||
        !fits(a->m, a->block) || !fits(a->n, a->block))
      return JEX_SPARSE_WRONG_SIZE;
    if (a->m > 0 && (!a->row_begin || !a->row_end)) return JEX_SPARSE_NULL_ARGUMENT;
    // Blocks are checked as the entries of a matrix would be.
    const jex_csr blocks = {a->m, a->n, a->values, a->columns, a->row_begin, a->row_end};
    return d.trusted ? JEX_SPARSE_OK : check_rows(blocks, base, operation, false);
  }

  bool by_columns() const { return true; }
  jex_int x_rows() const { return (turned() ? a->m : a->n) * a->block; }
  jex_int y_rows() const { return (turned() ? a->n : a->m) * a->block; }

  void multiply(const T* x, T* y) const { multiply(1, x, x_rows(), y, y_rows()); }
  void multiply(jex_int n, const T* b, jex_int ldb, T* c, jex_int ldc) const {
    const jex_int one = 1;
    if (n == 1 && operation.kind == 's' && operation.op == 'n') {
      BsrKernels<T>::vector(*module, base, operation.uplo)(
          &one, &a->m, &a->m, &a->block, &alpha, static_cast<const T*>(a->values), a->columns,
          a->row_begin, a->row_end, b, c);
    } else if (operation.kind == 'g' && !turned()) {
      // Rows of blocks write rows of their own.
      const int pieces = pieces_of(products() * n, std::min<jex_int>(8, a->m));
      in_parallel(pieces, [&](int q) {
        const jex_int first = piece_begin(a->m, q, pieces), last = piece_begin(a->m, q + 1, pieces);
        multiply_part(rows(first, last), n, b, ldb, c + size_t(first) * a->block, ldc);
      });
    } else {
      run_columns(n, products() * n, [&](jex_int first, jex_int last) {
        multiply_part(*a, last - first + 1, b + size_t(first - 1) * ldb, ldb,
                      c + size_t(first - 1) * ldc, ldc);
      });
    }
  }

 private:
  // The letter of an operation that is one.
  static char requested(char op) {
    const char letter = op >= 'A' && op <= 'Z' ? op - 'A' + 'a' : op;
    return letter == 'c' && !is_complex<T> ? 't' : letter;
  }
  bool turned() const { return operation.transposed() && operation.kind != 's'; }
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
  void multiply_part(const jex_bsr& m, jex_int n, const T* b, jex_int ldb, T* c,
                     jex_int ldc) const {
    const jex_int mode = this->mode();
    BsrKernels<T>::matrix(*module, base, operation.kind)(
        &mode, &operation.uplo, &operation.diag, &m.m, &n, &m.n, &m.block, &alpha,
        static_cast<const T*>(m.values), m.columns, m.row_begin, m.row_end, b, &ldb, c, &ldc);
  }
};

}  // namespace
}  // namespace jex::front

using namespace jex::front;

SPARSE_PRODUCTS(s, float, bsr, BsrCall)
SPARSE_PRODUCTS(d, double, bsr, BsrCall)
SPARSE_PRODUCTS(c, jex_scomplex, bsr, BsrCall)
SPARSE_PRODUCTS(z, jex_dcomplex, bsr, BsrCall)
