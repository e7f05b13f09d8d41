// The two internal precisions. Both work on registers of two doubles; a sum is a register (native)
// or a register of heads and one of tails (extra), whose sums are the values.
//
//   T. J. Dekker, "A Floating-Point Technique for Extending the Available Precision", Numerische
//   Mathematik 18 (1971), 224-242: splitting and exact products.
//   D. E. Knuth, "The Art of Computer Programming", volume 2, 4.2.2: exact sums.
//   T. Ogita, S. M. Rump, S. Oishi, "Accurate Sum and Dot Product", SIAM Journal on Scientific
//   Computing 26 (2005), 1955-1988: the running sum.
//   X. S. Li et al., "Design, Implementation and Testing of Extended and Mixed Precision BLAS", ACM
//   Transactions on Mathematical Software 28 (2002), 152-205: sums in double length and their use.
#pragma once

#include "simd/lanes.h"

namespace jex::xblas {

using simd::is_complex;
using simd::Lanes;
using simd::Real;
using Register = Lanes<double>;

// Products and sums, each rounded.
struct Native {
  using Sum = Register;
  using Factor = Register;
  static Sum zero() { return Register::zero(); }
  static Factor factor(Register a) { return a; }
  static Sum product(Register a, Factor f) { return a * f; }
  static Sum scaled(Sum a, Factor f) { return a * f; }
  static Sum plus(Sum a, Sum b) { return a + b; }
  // One more term of a running sum: a product, or the two of a complex one.
  static Sum add(Sum sum, Sum p) { return sum + p; }
  static Sum add(Sum sum, Sum p, Sum q) { return sum + (p + q); }
  static Sum settled(Sum a) { return a; }
  static Sum swapped(Sum a) { return simd::swap_parts(a); }
  static Register rounded(Sum a) { return a; }
};

// Exact products, summed in double length. What the sum of heads loses is found exactly and joins
// the tails, and a few terms later the tail is brought back below the last bit of its head
// (settled). In between no step waits for more than one sum of the step before it. A term errs by
// at most 2^-102 of the magnitudes that have been added.
struct Extra {
  struct Sum {
    Register head, tail;
  };
  // value = high + low, each of 26 bits, so that products of such parts are exact.
  struct Factor {
    Register value, high, low;
  };
  static Sum zero() { return {Register::zero(), Register::zero()}; }
  static Factor factor(Register a) {
    const Register c = a * Register::all(134217729.0);  // 2^27 + 1
    const Register high = c - (c - a);
    return {a, high, a - high};
  }
  static Sum product(Register a, Factor f) { return product(factor(a), f); }
  static Sum product(Factor a, Factor b) {
    const Register p = a.value * b.value;
    return {p, ((a.high * b.high - p) + a.high * b.low + a.low * b.high) + a.low * b.low};
  }
  static Sum plus(Sum a, Sum b) {
    const Sum heads = two_sum(a.head, b.head);
    return quick_two_sum(heads.head, heads.tail + (a.tail + b.tail));
  }
  static Sum add(Sum sum, Sum p) {
    const Sum heads = two_sum(sum.head, p.head);
    return {heads.head, sum.tail + (heads.tail + p.tail)};
  }
  static Sum add(Sum sum, Sum p, Sum q) { return add(add(sum, p), q); }
  static Sum settled(Sum a) { return two_sum(a.head, a.tail); }
  static Sum scaled(Sum a, Factor f) {
    const Sum p = product(a.head, f);
    return quick_two_sum(p.head, p.tail + a.tail * f.value);
  }
  static Sum swapped(Sum a) { return {simd::swap_parts(a.head), simd::swap_parts(a.tail)}; }
  static Register rounded(Sum a) { return a.head + a.tail; }

 private:
  // a + b = head + tail exactly; the quick one needs |a| >= |b|.
  static Sum two_sum(Register a, Register b) {
    const Register s = a + b, c = s - a;
    return {s, (a - (s - c)) + (b - c)};
  }
  static Sum quick_two_sum(Register a, Register b) {
    const Register s = a + b;
    return {s, b - (s - a)};
  }
};

}  // namespace jex::xblas
