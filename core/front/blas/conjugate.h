// Row-major complex calls that Fortran has no routine for. The array of a row-major A, seen by
// columns, is B = A^T. Where the call then needs conj(B), or the conjugate of a vector that enters
// it, the output is conjugated in place before and after, and inputs are copied: in pieces on the
// stack where the operation can be cut into pieces, else into a work buffer. When there is no
// memory for one, the operation is done element by element.
#pragma once

#include "front/elements.h"
#include "front/entries.h"

#include <algorithm>
#include <complex>
#include <stddef.h>
#include <stdint.h>

namespace jex::front {

template <class T>
T conj(T z) {
  return {z.re, -z.im};
}

template <class T>
auto number(T z) {
  return std::complex(z.re, z.im);
}
template <class T, class R>
void add(T& to, std::complex<R> term) {
  to.re += term.real();
  to.im += term.imag();
}

// The first of n elements: a negative increment starts at the far end.
template <class T>
T* first_of(jex_int n, T* x, jex_int inc) {
  return n > 1 && inc < 0 ? x - ptrdiff_t(n - 1) * inc : x;
}

template <class T>
void copy_conjugate(jex_int n, const T* first, jex_int inc, T* copy) {
  for (jex_int i = 0; i < n; ++i) copy[i] = conj(first[ptrdiff_t(i) * inc]);
}

// Conjugates a vector for the time of a block.
template <class T>
class Conjugated {
 public:
  Conjugated(jex_int n, T* x, jex_int inc) : n_(n), x_(first_of(n, x, inc)), inc_(inc) { flip(); }
  Conjugated(const Conjugated&) = delete;
  ~Conjugated() { flip(); }

 private:
  void flip() {
    for (jex_int i = 0; i < n_; ++i) x_[ptrdiff_t(i) * inc_] = conj(x_[ptrdiff_t(i) * inc_]);
  }
  jex_int n_;
  T* x_;
  jex_int inc_;
};

// A conjugated copy of a vector in a work buffer, one element after the other; null without memory.
template <class T>
class ConjugateCopy {
 public:
  ConjugateCopy(jex_int n, const T* x, jex_int inc)
      : copy_(static_cast<T*>(entries()->jex_serv_allocate(uint32_t(n) * sizeof(T), 16))) {
    if (copy_) copy_conjugate(n, first_of(n, x, inc), inc, copy_);
  }
  ConjugateCopy(const ConjugateCopy&) = delete;
  ~ConjugateCopy() { entries()->jex_serv_deallocate(copy_); }
  const T* data() const { return copy_; }

 private:
  T* copy_;
};

// Elements of a conjugated piece. Whole groups of the columns that the products take together, so
// that a product in pieces has the bits of one that is not.
inline constexpr jex_int piece = 128;

// y := alpha conj(B) x + beta y for B m x n.
template <class T, class Gemv>
void gemv_conjugate(Gemv gemv, jex_int m, jex_int n, T alpha, const T* b, jex_int lda, const T* x,
                    jex_int incx, T beta, T* y, jex_int incy) {
  const Conjugated<T> conjugated(m, y, incy);
  const T* const first = first_of(n, x, incx);
  const T scale = conj(alpha);
  T part[piece], factor = conj(beta);
  const jex_int one = 1;
  for (jex_int j = 0; j < n; j += piece) {
    const jex_int columns = std::min(piece, n - j);
    copy_conjugate(columns, first + ptrdiff_t(j) * incx, incx, part);
    gemv("N", &m, &columns, &scale, b + ptrdiff_t(j) * lda, &lda, part, &one, &factor, y, &incy);
    factor = T{1, 0};
  }
}

// The same for a band. A piece of columns from j on begins at row j - ku, and is a band of the same
// width whose main diagonal is as much higher as that row is lower.
template <class T, class Gbmv>
void gbmv_conjugate(Gbmv gbmv, jex_int m, jex_int n, jex_int kl, jex_int ku, T alpha, const T* b,
                    jex_int lda, const T* x, jex_int incx, T beta, T* y, jex_int incy) {
  const Conjugated<T> conjugated(m, y, incy);
  const T* const first = first_of(n, x, incx);
  const T scale = conj(alpha), factor = conj(beta), zero{0, 0}, unit{1, 0};
  const jex_int one = 1;
  gbmv("N", &m, &n, &kl, &ku, &zero, b, &lda, x, &incx, &factor, y, &incy);
  T part[piece];
  for (jex_int j = 0; j < n; j += piece) {
    const jex_int columns = std::min(piece, n - j), top = std::max(0, j - ku), rows = m - top;
    if (rows <= 0) break;
    const jex_int below = kl + (j - top), above = ku - (j - top);
    copy_conjugate(columns, first + ptrdiff_t(j) * incx, incx, part);
    gbmv("N", &rows, &columns, &below, &above, &scale, b + ptrdiff_t(j) * lda, &lda, part, &one,
         &unit, y + (incy > 0 ? ptrdiff_t(top) * incy : 0), &incy);
  }
}

// B := alpha conj(x) y^T + B for B m x n.
template <class T, class Geru>
void geru_conjugate(Geru geru, jex_int m, jex_int n, T alpha, const T* x, jex_int incx, const T* y,
                    jex_int incy, T* b, jex_int lda) {
  const T* const first = first_of(m, x, incx);
  const jex_int one = 1;
  T part[piece];
  for (jex_int i = 0; i < m; i += piece) {
    const jex_int rows = std::min(piece, m - i);
    copy_conjugate(rows, first + ptrdiff_t(i) * incx, incx, part);
    geru(&rows, &n, &alpha, part, &one, y, &incy, b + i, &lda);
  }
}

enum class Storage { full, band, packed };

// The stored triangle of a Hermitian B: element (i, j) is column(j)[i], begin(j) <= i < end(j). k
// is the number of diagonals beside the main one, for full and packed storage n.
template <class T>
struct Hermitian {
  T* b;
  Storage storage;
  bool upper;
  jex_int n, k, lda;

  T* column(jex_int j) const {
    if (storage == Storage::full) return b + ptrdiff_t(j) * lda;
    if (storage == Storage::band) return b + ptrdiff_t(j) * lda + (upper ? k : 0) - j;
    return upper ? b + ptrdiff_t(j) * (j + 1) / 2 : b + ptrdiff_t(j) * (2 * n - 1 - j) / 2;
  }
  jex_int begin(jex_int j) const { return upper ? std::max(0, j - k) : j; }
  jex_int end(jex_int j) const {
    return upper ? j + 1 : jex_int(std::min<int64_t>(n, int64_t(j) + k + 1));
  }
};

// y := alpha conj(B) x + beta y. product(alpha, x, incx, beta) is the Fortran call for B.
template <class T, class Product>
void product_conjugate(Hermitian<const T> b, T alpha, const T* x, jex_int incx, T beta, T* y,
                       jex_int incy, Product product) {
  if (const ConjugateCopy<T> copy(b.n, x, incx); copy.data()) {
    const Conjugated<T> conjugated(b.n, y, incy);
    return product(conj(alpha), copy.data(), 1, conj(beta));
  }
  product(T{0, 0}, x, incx, beta);
  const T* const in = first_of(b.n, x, incx);
  T* const out = first_of(b.n, y, incy);
  const auto scale = number(alpha);
  for (jex_int j = 0; j < b.n; ++j) {
    const T* const column = b.column(j);
    const auto in_j = scale * number(in[ptrdiff_t(j) * incx]);
    T& out_j = out[ptrdiff_t(j) * incy];
    for (jex_int i = b.begin(j); i < b.end(j); ++i) {
      if (i == j) {
        add(out_j, in_j * column[j].re);
      } else {
        add(out[ptrdiff_t(i) * incy], in_j * std::conj(number(column[i])));
        add(out_j, scale * number(in[ptrdiff_t(i) * incx]) * number(column[i]));
      }
    }
  }
}

// B := B + term, where term(i, j) is Hermitian.
template <class T, class Term>
void add_terms(Hermitian<T> b, Term term) {
  for (jex_int j = 0; j < b.n; ++j) {
    T* const column = b.column(j);
    for (jex_int i = b.begin(j); i < b.end(j); ++i) {
      add(column[i], term(i, j));
      if (i == j) column[i].im = 0;
    }
  }
}

// B := B + alpha conj(x) x^T. update(x) is the Fortran call for a vector with increment 1.
template <class T, class R, class Update>
void update_conjugate(Hermitian<T> b, R alpha, const T* x, jex_int incx, Update update) {
  if (const ConjugateCopy<T> copy(b.n, x, incx); copy.data()) return update(copy.data());
  const T* const u = first_of(b.n, x, incx);
  add_terms(b, [=](ptrdiff_t i, ptrdiff_t j) {
    return alpha * number(u[j * incx]) * std::conj(number(u[i * incx]));
  });
}

// B := B + alpha conj(y) x^T + conj(alpha) conj(x) y^T. update(y, x) is the Fortran call.
template <class T, class Update>
void update2_conjugate(Hermitian<T> b, T alpha, const T* x, jex_int incx, const T* y, jex_int incy,
                       Update update) {
  const ConjugateCopy<T> first(b.n, y, incy), second(b.n, x, incx);
  if (first.data() && second.data()) return update(first.data(), second.data());
  const T *const u = first_of(b.n, x, incx), *const v = first_of(b.n, y, incy);
  const auto scale = number(alpha);
  add_terms(b, [=](ptrdiff_t i, ptrdiff_t j) {
    return scale * number(u[j * incx]) * std::conj(number(v[i * incy])) +
           std::conj(scale) * number(v[j * incy]) * std::conj(number(u[i * incx]));
  });
}

}  // namespace jex::front
