// The vector products that go over each row twice: skew-symmetric matrices, and symmetric and
// Hermitian ones with a unit diagonal.
//
//   first pass    s: the sum over all entries of the row, in partial sums; y(i) := s alpha + y(i)
//   second pass   entries inside the strict triangle: their mirror parts
//                 all others: u := u + (a alpha) x(j), from 0
//   at last       y(i) := y(i) - u,  with a unit diagonal y(i) := (y(i) + alpha x(i)) - u
//
// So entries outside the triangle are added and taken away again, and leave their rounding behind.
#pragma once

#include "spblas/csr/product.h"

namespace jex::spblas::csr {

template <class T, EntryRule rule>
[[gnu::noinline]] void multiply_vector_twice(const Matrix<T>& matrix, int first, int last,
                                             bool unit, const T& scale, const T* x, T* y) {
  using Group = One<T>;
  using Value = typename Group::Value;
  using Factor = typename Group::Factor;
  const Rows<T> a(matrix);
  const T alpha = scale;
  const Factor by = Group::template factor<false>(alpha);
  for (int i = first + a.base; i < last + a.base; ++i) {
    const Entry begin = a.first(i), end = a.last(i);
    const auto term = [&](Entry k, Factor f) { return Group::load(x + *k, 0) * f; };
    const auto row_part = [&](Entry k) {
      return Group::template factor<rule.row == Part::conj>(a.value(k));
    };
    const Value sum =
        sum_of_all<Group, rule.row, Layout::column_major>(a, begin, end, Dense<const T>{x, 0});
    Value yi = sum * by + Group::load(y + i, 0);
    const Value xi = Group::load(x + i, 0), t = xi * by;

    Value outside = Group::zero();
    for (Entry k = begin; k < end; ++k) {
      const int j = *k;
      if (!beside<rule.side>(i, j)) {
        outside = outside + term(k, Group::scaled(row_part(k), by));
        continue;
      }
      const Factor f = Group::template factor<rule.mirror == Part::conj>(a.value(k));
      const Value mirror = rule.scaled_vector ? t * f : xi * Group::scaled(f, by);
      const Value old = Group::load(y + j, 0);
      Group::store(y + j, 0, rule.negative_mirror ? old - mirror : old + mirror);
    }
    if (unit) yi = yi + t;
    Group::store(y + i, 0, yi - outside);
  }
}

}  // namespace jex::spblas::csr
