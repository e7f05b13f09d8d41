// C := alpha A B + beta C, or alpha B A + beta C, for a symmetric or Hermitian A of which one
// triangle is stored.
#pragma once

#include "blas/level3/stored_triangle.h"

namespace jex::blas {

// Rows and columns of A that are written out whole, diagonal in the middle. What stands beside them
// is read where it is stored, as it is or mirrored:
//
//   lower stored    D . .       step 1: all rows of columns 1: D, then the rows below as stored
//                   S D .       step 2: rows above from the S beside D, mirrored; D; rows below
//                   S S D
inline constexpr int symmetric_block = 256;

// d := the whole of the order-n matrix whose triangle is stored.
template <Conj conj, class T>
[[gnu::noinline]] void write_whole(const StoredTriangle<const T>& a, T* d, int ldd) {
  using L = Lanes<T>;
  constexpr int count = L::count;
  const bool upper = a.uplo == Uplo::upper;
  const auto mirrored = [](L v) __attribute__((always_inline)) {
    if constexpr (conj == Conj::yes)
      return conjugate(v);
    else
      return v;
  };
  for (int j = 0; j < a.n; j += count) {
    const int width = std::min(count, a.n - j), end = upper ? j : a.n;
    int begin = upper ? 0 : j + width;
    // Squares beside the diagonal, in registers: later loads of whole registers need not wait.
    if (width == count)
      for (; begin + count <= end; begin += count) {
        L square[count];
        unrolled<count>([&](auto k) {
          square[k] = L::load(a.column(j + k) + begin);
          square[k].store(d + begin + (j + k) * ldd);
        });
        transpose(square);
        unrolled<count>([&](auto k) { mirrored(square[k]).store(d + j + (begin + k) * ldd); });
      }
    for (int k = j; k < j + width; ++k) {
      const auto write = [&](int i) __attribute__((always_inline)) {
        const L v = L::load_first(a.column(k) + i);
        v.store_first(d + i + k * ldd);
        mirrored(v).store_first(d + k + i * ldd);
      };
      for (int i = begin; i < end; ++i) write(i);
      for (int i = upper ? j : k; i < (upper ? k + 1 : j + width); ++i) write(i);
      settle_diagonal<conj>(d[k + k * ldd]);
    }
  }
}

// The symmetric multiply, over a work buffer for one block of A.
template <Conj conj, class T>
class SymmetricMultiply {
 public:
  Side side;
  StoredTriangle<const T> a;
  int m, n;  // of B and C
  T alpha;
  const T* b;
  int ldb;
  T* c;
  int ldc;

  static int whole_ld(int order) { return std::min(order, symmetric_block) + 4; }

  void run(T beta, T* whole) const {
    for (int p = 0; p < a.n; p += symmetric_block, beta = one_of<T>) {
      const int count = std::min(symmetric_block, a.n - p), ld = whole_ld(a.n);
      write_whole<conj>(a.part(p, count), whole, ld);
      if (p > 0) add(beta, beside(0, p, a.uplo == Uplo::upper), 0, p, p, count);
      add(beta, {whole, ld, Op::none}, p, count, p, count);
      if (const int rest = a.n - p - count; rest > 0)
        add(beta, beside(p + count, p, a.uplo == Uplo::lower), p + count, rest, p, count);
    }
  }

 private:
  // The part of A at rows i, columns p (side left) or at rows p, columns i (right).
  Operand<T> beside(int i, int p, bool stored) const {
    const T* const x = stored ? a.column(p) + i : a.column(i) + p;
    return {x, a.ldc, stored == (side == Side::left) ? Op::none : mirror(conj)};
  }
  // C(i ..) += alpha part B(p ..), or C(.., i ..) += alpha B(.., p ..) part.
  void add(T beta, Operand<T> part, int i, int to, int p, int from) const {
    const auto place = [&](auto* x, int ld, int at) {
      return x + (side == Side::left ? at : ptrdiff_t(at) * ld);
    };
    const Operand<T> other{place(b, ldb, p), ldb, Op::none};
    if (side == Side::left)
      product(to, n, from, alpha, part, other, beta, place(c, ldc, i), ldc);
    else
      product(m, to, from, alpha, other, part, beta, place(c, ldc, i), ldc);
  }
};

// Takes the work buffer, multiplies, and gives it back.
template <Conj conj, class T>
[[gnu::noinline]] void symm(Side side, Uplo uplo, int m, int n, T alpha, const T* a, int lda,
                            const T* b, int ldb, T beta, T* c, int ldc) {
  if (is_done_without_product(m, n, alpha, beta, c, ldc)) return;
  const int order = side == Side::left ? m : n;
  using Multiply = SymmetricMultiply<conj, T>;
  const uint32_t elements = Multiply::whole_ld(order) * std::min(order, symmetric_block);
  T* const whole = static_cast<T*>(serv::allocate(elements * sizeof(T), 128));
  Multiply{side, {uplo, order, a, lda}, m, n, alpha, b, ldb, c, ldc}.run(beta, whole);
  serv::deallocate(whole);
}

}  // namespace jex::blas
