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

// Up to this order it is written out on the stack.
inline constexpr int order_on_stack = 24;

// The lanes of elements first .. last - 1.
template <class T>
constexpr unsigned lanes_between(int first, int last) {
  constexpr int parts = is_complex<T> ? 2 : 1;
  return (1u << last * parts) - (1u << first * parts);
}
template <unsigned kept, class T>
[[gnu::always_inline]] inline Lanes<Real<T>> keep_parts(Lanes<T> v) {
  if constexpr (is_complex<T>)
    return keep<kept>(v.parts);
  else
    return keep<kept>(v);
}

// d := the whole of the order-n matrix whose triangle is stored, in whole registers: what reads
// them next need not wait for their parts. Columns of d are longer than n by a register.
template <Conj conj, class T>
[[gnu::noinline]] void write_whole(StoredTriangle<const T> a, T* d, int ldd) {
  using L = Lanes<T>;
  constexpr int count = L::count;
  using All = std::integral_constant<int, count>;
  const bool upper = a.uplo == Uplo::upper;
  const auto mirrored = [](L v) __attribute__((always_inline)) {
    if constexpr (conj == Conj::yes)
      return conjugate(v);
    else
      return v;
  };
  // Rows from i on and columns from j on of a square beside the diagonal, and their image.
  const auto square = [&](int i, auto rows, int j, auto columns) __attribute__((always_inline)) {
    L s[count];
    unrolled<count>([&](auto k) __attribute__((always_inline)) {
      const T* const p = a.column(j + k) + i;
      s[k] = k >= columns ? L::zero() : rows == count ? L::load(p) : gather_some(p, 1, rows);
    });
    unrolled<count>([&](auto k) __attribute__((always_inline)) {
      if (k < columns) s[k].store(d + i + (j + k) * ldd);
    });
    transpose(s);
    unrolled<count>([&](auto k) __attribute__((always_inline)) {
      if (k < rows) mirrored(s[k]).store(d + j + (i + k) * ldd);
    });
  };
  // The square on the diagonal: its stored columns down to the diagonal, or rows up to it.
  const auto corner = [&](int j, auto width) __attribute__((always_inline)) {
    L line[count], across[count];
    unrolled<count>([&](auto k) __attribute__((always_inline)) {
      const T* const p = upper ? a.column(j + k) + j : a.column(j) + j + k;
      const int inc = upper ? 1 : a.ldc;
      line[k] = k >= width      ? L::zero()
                : k < count - 1 ? gather_some(p, inc, k + 1)
                                : L::gather(p, inc);
      across[k] = line[k];
    });
    transpose(across);
    unrolled<count>([&](auto k) __attribute__((always_inline)) {
      constexpr unsigned real_parts = conj == Conj::yes ? 5 : 15;
      constexpr unsigned above = lanes_between<T>(0, k), diagonal = lanes_between<T>(k, k + 1),
                         below = lanes_between<T>(k + 1, count);
      const L to_diagonal = upper ? line[k] : mirrored(line[k]);
      const L behind = upper ? mirrored(across[k]) : across[k];
      if (k < width)
        (keep_parts<above | (diagonal & real_parts)>(to_diagonal) | keep_parts<below>(behind))
            .store(reinterpret_cast<Real<T>*>(d + j + (j + k) * ldd));
    });
  };
  int j = 0;
  for (; j + count <= a.n; j += count) {
    corner(j, All());
    int i = upper ? 0 : j + count;
    for (const int end = upper ? j : a.n - count + 1; i < end; i += count)
      square(i, All(), j, All());
    if (!upper && i < a.n) square(i, a.n - i, j, All());
  }
  if (const int left = a.n - j; left > 0) {
    corner(j, left);
    if (upper)
      for (int i = 0; i < j; i += count) square(i, All(), j, left);
  }
}

// The symmetric multiply, over room for one block of A.
template <Conj conj, class T>
class SymmetricMultiply {
 public:
  Side side;
  StoredTriangle<const T> a;
  int m, n;  // of B and C
  const T& alpha;
  const T* b;
  int ldb;
  T* c;
  int ldc;

  static constexpr int whole_ld(int order) { return (order + 3) / 4 * 4 + 4; }

  // What a block on the diagonal adds to C.
  void add_diagonal(const T& beta, int p, int count, T* whole) const {
    const int ld = whole_ld(count);
    write_whole<conj>(a.part(p, count), whole, ld);
    add(beta, {whole, ld, Op::none}, p, count, p, count);
  }
  void run(const T& first_beta, T* whole) const {
    for (int p = 0; p < a.n; p += symmetric_block) {
      const T& beta = p == 0 ? first_beta : one_of<T>;
      const int count = std::min(symmetric_block, a.n - p), rest = a.n - p - count;
      add_diagonal(beta, p, count, whole);
      if (p > 0) add(beta, beside(0, p, a.uplo == Uplo::upper), 0, p, p, count);
      if (rest > 0)
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
  void add(const T& beta, const Operand<T>& part, int i, int to, int p, int from) const {
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

// Multiplies over a block on the stack, or over a work buffer.
template <Conj conj, class T>
[[gnu::noinline]] void symm(Side side, Uplo uplo, int m, int n, const T& alpha, const T* a, int lda,
                            const T* b, int ldb, const T& beta, T* c, int ldc) {
  if (is_done_without_product(m, n, alpha, beta, c, ldc)) return;
  const int order = side == Side::left ? m : n;
  using Multiply = SymmetricMultiply<conj, T>;
  const Multiply multiply{side, {uplo, order, a, lda}, m, n, alpha, b, ldb, c, ldc};
  if (order <= order_on_stack) {
    alignas(16) T whole[Multiply::whole_ld(order_on_stack) * order_on_stack];
    return multiply.add_diagonal(beta, 0, order, whole);
  }
  const int block = std::min(order, symmetric_block);
  const uint32_t bytes = Multiply::whole_ld(block) * block * sizeof(T);
  T* const whole = static_cast<T*>(serv::allocate(bytes, 128));
  multiply.run(beta, whole);
  serv::deallocate(whole);
}

}  // namespace jex::blas
