// A call on diagonals: pieces of work and kernels.
//
// A piece makes the elements of y in a range. Its kernels get parts of the matrix, told by sizes,
// pointers and distances alone:
//
//   general     one part, the rows of the range (transposed: its columns)
//   others      the square on the diagonal, of the same kind, and beside it general parts: the rows
//               of the range, for a lower triangle those to the left, and for mirror images the
//               columns of the range, below
//
//       . . . . .
//       . . . . .       lower triangle:   R the rows, D the square,
//       R R D . .                         M the mirror images' columns
//       . . M . .
//       . . M . .
#pragma once

#include "front/spblas/call.h"
#include "front/spblas/dia_checks.h"

#include <limits.h>
#include <memory>
#include <new>

namespace jex::front {

template <class T>
struct DiaCall : SparseCall<T> {
  using Int = const jex_int*;
  using SparseCall<T>::alpha, SparseCall<T>::operation;
  const jex_dia* a;

  jex_int prepare(char op, const T* scale, const jex_dia* matrix, const jex_sparse_descriptor& d,
                  bool solve) {
    a = matrix;
    if (const jex_int status = this->decode_call(op, scale, d, a->m, a->n, solve)) return status;
    if (this->base != 1) return JEX_SPARSE_WRONG_DESCRIPTOR;
    if (a->count < 0) return JEX_SPARSE_WRONG_SIZE;
    if (a->ld < std::max<jex_int>(1, a->m)) return JEX_SPARSE_WRONG_LEADING_DIMENSION;
    if (a->count > 0 && (!a->values || !a->distances)) return JEX_SPARSE_NULL_ARGUMENT;
    return d.trusted || !solve ? JEX_SPARSE_OK : check_distances(*a, operation);
  }

  void multiply(const T* x, T* y) const {
    const jex_int size = this->y_rows();
    const DiaParts parts = dia_parts(operation);
    int pieces = parts.known ? pieces_of(int64_t(size) * a->count, std::min<jex_int>(8, size)) : 1;
    // The distances of a part, for each piece. Without memory there is one piece.
    const std::unique_ptr<jex_int[]> distances(
        pieces > 1 ? new (std::nothrow) jex_int[size_t(pieces) * a->count] : nullptr);
    if (!distances) pieces = 1;
    if (pieces == 1) return multiply_part(operation, alpha, {0, a->m}, {0, a->n}, nullptr, x, y);
    in_parallel(pieces, [&](int q) {
      jex_int* const own = distances.get() + size_t(q) * a->count;
      const Range range = {piece_begin(size, q, pieces), piece_begin(size, q + 1, pieces)};
      const auto general = [&](char op, bool negative, Range rows, Range columns) {
        if (rows.is_empty() || columns.is_empty()) return;
        T scale = alpha;
        if (negative) SparseServices<T>::neones (*this->module)(&scale);
        multiply_part({op, 'g', '_', '_', false}, scale, rows, columns, own, x, y);
      };
      if (operation.kind == 'g') {
        const Range rows = {0, a->m}, columns = {0, a->n};
        const bool transposed = operation.transposed();
        return general(operation.op, false, transposed ? rows : range,
                       transposed ? range : columns);
      }
      multiply_part(operation, alpha, range, range, nullptr, x, y);
      const Range before = {0, range.begin}, behind = {range.end, a->m};
      const bool lower = operation.uplo == 'l';
      if (parts.row) general(parts.row, false, range, lower ? before : behind);
      if (parts.mirror) general(parts.mirror, parts.negative, lower ? behind : before, range);
    });
  }

  void multiply(jex_int n, const T* b, jex_int ldb, T* c, jex_int ldc) const {
    const auto part = kernel<void(Int, Int, Int, Int, Int, const T*, const T*, Int, Int, Int,
                                  const T*, Int, T*, Int)>(operation, "mmout_par");
    run_columns(n, int64_t(a->m) * a->count * n, [&](jex_int first, jex_int last) {
      part(&first, &last, &a->m, &n, &a->n, &alpha, values(), &a->ld, a->distances, &a->count, b,
           &ldb, c, &ldc);
    });
  }

  void solve(T* y) const {
    kernel<void(Int, const T*, const T*, Int, Int, Int, T*)>(operation, "svout_seq")(
        &a->m, &alpha, values(), &a->ld, a->distances, &a->count, y);
  }
  void solve(jex_int n, T* c, jex_int ldc) const {
    if (const auto whole = kernel<void(Int, Int, const T*, const T*, Int, Int, Int, T*, Int)>(
            operation, "smout_seq")) {
      whole(&a->m, &n, &alpha, values(), &a->ld, a->distances, &a->count, c, &ldc);
      return;
    }
    const auto part = kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, T*, Int)>(
        operation, "smout_par");
    run_columns(n, int64_t(a->m) * a->count * n, [&](jex_int first, jex_int last) {
      part(&first, &last, &a->m, &n, &alpha, values(), &a->ld, a->distances, &a->count, c, &ldc);
    });
  }

 private:
  // begin .. end - 1, from 0.
  struct Range {
    jex_int begin, end;
    bool is_empty() const { return end <= begin; }
  };

  // Adds the part of the matrix in the rows and columns; own has place for its distances unless
  // they are those of the matrix.
  void multiply_part(const Operation& of, const T& scale, Range rows, Range columns, jex_int* own,
                     const T* x, T* y) const {
    const jex_int shift = rows.begin - columns.begin;
    if (own)
      std::transform(a->distances, a->distances + a->count, own, [=](jex_int distance) {
        return jex_int(std::clamp<int64_t>(int64_t(distance) + shift, INT_MIN, INT_MAX));
      });
    const bool transposed = of.transposed();
    const jex_int m = rows.end - rows.begin, k = columns.end - columns.begin;
    const auto part =
        kernel<void(Int, Int, Int, Int, const T*, const T*, Int, Int, Int, const T*, T*)>(
            of, "mvout_par");
    part(nullptr, nullptr, &m, &k, &scale, values() + rows.begin, &a->ld, own ? own : a->distances,
         &a->count, x + (transposed ? rows : columns).begin,
         y + (transposed ? columns : rows).begin);
  }

  template <class Kernel>
  Kernel* kernel(const Operation& of, const char* suffix) const {
    return SparseCall<T>::template kernel<Kernel>("dia", of, suffix);
  }
  const T* values() const { return static_cast<const T*>(a->values); }
};

}  // namespace jex::front
