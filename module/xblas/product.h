// y := alpha op(A) (x + x_tail) + beta y, row by row, in double or in double length.
//
// A register holds one term of two rows, or the parts of one complex term:
//
//   real      a(i,k) a(i+1,k)     times x(k) x(k)
//   complex   a.re a.im           times x.re x.re, plus a.im a.re times -x.im x.im
//
// Every row is summed from its first term to its last, one by one, whichever rows share a register.
#pragma once

#include "blas/level1/streams.h"
#include "blas/level1/zero.h"
#include "xblas/precision.h"
#include "xblas/rows.h"

namespace jex::xblas {

template <class T>
inline constexpr int rows_per_register = is_complex<T> ? 1 : 2;

// One element of each row of a register, row apart, widened without rounding.
template <class T>
[[gnu::always_inline]] inline Register load_rows(const T* p, ptrdiff_t row) {
  if constexpr (is_complex<T>) {
    if constexpr (sizeof(Real<T>) == 4)
      return simd::widen_low(Lanes<float>::load_two(&p->re));
    else
      return Register::load(&p->re);
  } else if constexpr (sizeof(T) == 4) {
    return simd::widen_low(Lanes<float>::gather_two(p, row));
  } else {
    return Register::gather(p, row);
  }
}

template <class T>
inline void store_rows(Register value, T* p, ptrdiff_t row) {
  double lanes[2];
  value.store(lanes);
  if constexpr (is_complex<T>) {
    *p = {Real<T>(lanes[0]), Real<T>(lanes[1])};
  } else {
    p[0] = T(lanes[0]);
    p[row] = T(lanes[1]);
  }
}

// A factor of a product: x, alpha or beta, ready to multiply registers of elements or sums.
template <class P, class T>
struct Multiplier {
  typename P::Factor straight;
  explicit Multiplier(Register x, bool = false) : straight(P::factor(x)) {}
  static Multiplier of(T a) { return Multiplier(load_rows(&a, 0)); }
  typename P::Sum times(Register a) const { return P::product(a, straight); }
  typename P::Sum add_times(typename P::Sum sum, Register a) const {
    return P::add(sum, P::product(a, straight));
  }
  typename P::Sum times_sum(typename P::Sum a) const { return P::scaled(a, straight); }
};

// Of a complex number (re, im): a times it, or conj(a) times it.
template <class P, class T>
requires is_complex<T>
struct Multiplier<P, T> {
  typename P::Factor straight, crossed;
  explicit Multiplier(Register x, bool conj = false)
      : straight(P::factor(all(x, 0) * signs(1, conj ? -1 : 1))),
        crossed(P::factor(all(x, 1) * signs(conj ? 1 : -1, 1))) {}
  static Multiplier of(T a) { return Multiplier(load_rows(&a, 0)); }
  typename P::Sum times(Register a) const {
    return P::plus(P::product(a, straight), P::product(simd::swap_parts(a), crossed));
  }
  typename P::Sum add_times(typename P::Sum sum, Register a) const {
    return P::add(sum, P::product(a, straight), P::product(simd::swap_parts(a), crossed));
  }
  typename P::Sum times_sum(typename P::Sum a) const {
    return P::plus(P::scaled(a, straight), P::scaled(P::swapped(a), crossed));
  }

 private:
  static Register all(Register x, int part) {
    double parts[2];
    x.store(parts);
    return Register::all(parts[part]);
  }
  static Register signs(double re, double im) {
    const double parts[2] = {re, im};
    return Register::load(parts);
  }
};

// Terms that are added before a sum is settled.
inline constexpr int settling = 8;

// sums += a x for the terms of as many rows as the registers hold.
template <int registers, class P, class T>
[[gnu::always_inline]] inline void add_terms(typename P::Sum* sums, Terms<T> t, const T* x,
                                             ptrdiff_t incx) {
  constexpr int rows = rows_per_register<T>;
  typename P::Sum sum[registers];
  for (int g = 0; g < registers; ++g) sum[g] = sums[g];
  const T* a = t.a;
  x += t.first * incx;
  for (int k = 0; k < t.count;) {
    for (const int end = std::min(t.count, k + settling); k < end; ++k, a += t.term, x += incx) {
      const Multiplier<P, T> factor(load_rows(x, t.shift * incx), t.conj);
#pragma GCC unroll 4
      for (int g = 0; g < registers; ++g)
        sum[g] = factor.add_times(sum[g], load_rows(a + g * rows * t.row, t.row));
    }
    for (int g = 0; g < registers; ++g) sum[g] = P::settled(sum[g]);
  }
  for (int g = 0; g < registers; ++g) sums[g] = sum[g];
}

// One product with everything but its matrix; x and y at the start of their walks.
template <class T>
struct Operands {
  T alpha;
  const T *x, *x_tail;  // x_tail is null where x has no second part
  ptrdiff_t incx;
  T beta;
  T* y;
  ptrdiff_t incy;
};

// Rows i ..: all that fill the registers or, with steps of 0 between them, the same one twice.
template <int registers, class P, class T, class Rows>
[[gnu::noinline]] void product_rows(const Rows& matrix, int i, bool single, const Operands<T>& v,
                                    const Multiplier<P, T>& alpha, const Multiplier<P, T>& beta) {
  constexpr int rows = rows_per_register<T>;
  const auto sum_up = [&](const T* x, typename P::Sum* sums) {
    for (int g = 0; g < registers; ++g) sums[g] = P::zero();
    matrix.visit(i, single ? 1 : registers * rows, [&](Terms<T> t) {
      if (single) t.row = t.shift = 0;
      add_terms<registers, P>(sums, t, x, v.incx);
    });
  };
  typename P::Sum sums[registers];
  sum_up(v.x, sums);
  if (v.x_tail) {
    typename P::Sum tails[registers];
    sum_up(v.x_tail, tails);
    for (int g = 0; g < registers; ++g) sums[g] = P::plus(sums[g], tails[g]);
  }
  const bool scales = !(blas::is_one(v.alpha) && blas::is_zero(v.beta));
  for (int g = 0; g < registers; ++g) {
    T* const y = v.y + (i + g * rows) * v.incy;
    const ptrdiff_t row = single ? 0 : v.incy;
    typename P::Sum sum = scales ? alpha.times_sum(sums[g]) : sums[g];
    if (!blas::is_zero(v.beta)) sum = P::plus(sum, beta.times(load_rows(y, row)));
    store_rows(P::rounded(sum), y, row);
  }
}

// leny rows of lenx terms. x, x_tail and y are the vectors as the caller names them.
template <class P, class T, class Rows>
[[gnu::noinline]] void product(const Rows& matrix, int lenx, int leny, Operands<T> v) {
  const auto start = [](auto p, int n, ptrdiff_t inc) { return inc > 0 ? p : p + (1 - n) * inc; };
  v.y = start(v.y, leny, v.incy);
  const auto alpha = Multiplier<P, T>::of(v.alpha), beta = Multiplier<P, T>::of(v.beta);
  if (blas::is_zero(v.alpha)) {
    for (int i = 0; i < leny; ++i) {
      T* const y = v.y + i * v.incy;
      if (blas::is_zero(v.beta))
        *y = T{};
      else
        store_rows(P::rounded(beta.times(load_rows(y, 0))), y, 0);
    }
    return;
  }
  v.x = start(v.x, lenx, v.incx);
  if (v.x_tail) v.x_tail = start(v.x_tail, lenx, v.incx);
  constexpr int registers = Rows::registers, group = registers * rows_per_register<T>;
  for (int i = 0; i < leny;) {
    // All results in one place (incy = 0) are computed one after the other.
    if (i + group <= leny && matrix.even(i, group) && v.incy != 0) {
      product_rows<registers, P>(matrix, i, false, v, alpha, beta);
      i += group;
    } else {
      product_rows<1, P>(matrix, i, true, v, alpha, beta);
      i += 1;
    }
  }
}

}  // namespace jex::xblas
