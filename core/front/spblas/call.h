// One call of a sparse entry: the module, the decoded operation, the matrix, and the services that
// the formats share.
#pragma once

#include "front/elements.h"
#include "front/spblas/operation.h"
#include "front/spblas/pieces.h"
#include "threads/threads.h"

#include <algorithm>
#include <functional>
#include <stdlib.h>

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
struct SparseCall {
  using Int = const jex_int*;
  using Services = SparseServices<T>;
  const Module* module = entries();
  Operation operation;
  jex_int m, n;  // of A
  int base;
  T alpha;

  // Are dense matrices stored by columns?
  bool by_columns() const { return base != 0; }
  // Rows of x (of B) and of y (of C).
  jex_int x_rows() const { return operation.transposed() ? m : n; }
  jex_int y_rows() const { return operation.transposed() ? n : m; }

  // Decodes and checks what does not depend on the format.
  jex_int decode_call(char op, const T* scale, const jex_sparse_descriptor& d, jex_int rows,
                      jex_int columns, bool solve) {
    if (const jex_int status = decode(op, d, is_complex<T>, operation)) return status;
    m = rows, n = columns, base = d.base, alpha = *scale;
    if (operation.negative) Services::neones (*module)(&alpha);
    if (m < 0 || n < 0 || (operation.kind != 'g' && m != n) || (solve && !operation.solvable()))
      return JEX_SPARSE_WRONG_SIZE;
    return JEX_SPARSE_OK;
  }

  template <class Kernel>
  Kernel* kernel(const char* format, const Operation& o, const char* suffix) const {
    return reinterpret_cast<Kernel*>(find_kernel(*module, Services::type, format, base, o, suffix));
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

  // y := y + the sum of what the pieces add, each of which may write anywhere in y: a vector for
  // each, and their sum. They stand as split_sym_par wants them, 8 elements farther apart than ld.
  // Without memory the pieces go one after the other.
  template <class Run>
  void add_pieces(int pieces, Run run, T* y) const {
    const jex_int ld = y_rows();
    const size_t step = size_t(ld) + 8;
    T* const partials = pieces > 1 ? static_cast<T*>(calloc(step * pieces, sizeof(T))) : nullptr;
    if (!partials) {
      for (int q = 0; q < pieces; ++q) run(q, y);
      return;
    }
    in_parallel(pieces, [&](int q) { run(q, partials + q * step); });
    in_parallel(pieces, [&](int q) {
      const jex_int first = piece_begin(ld, q, pieces) + 1, last = piece_begin(ld, q + 1, pieces);
      Services::split_sym (*module)(&first, &last, &pieces, &ld, partials, y);
    });
    free(partials);
  }
};

// The columns 1 .. n in pieces.
inline void run_columns(jex_int n, int64_t products,
                        const std::function<void(jex_int, jex_int)>& piece) {
  const int pieces = pieces_of(products, std::min<jex_int>(8, n));
  in_parallel(pieces,
              [&](int q) { piece(piece_begin(n, q, pieces) + 1, piece_begin(n, q + 1, pieces)); });
}

}  // namespace jex::front
