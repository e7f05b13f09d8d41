// The entry rule: what one stored entry a at (i, j) adds to y := y + alpha op(A) x.
//
//   row part      y(i) += a x(j)
//   mirror part   y(j) += a x(i)
//
//   general, triangular   A, conj(A): row       A', A^H: mirror
//   symmetric             both                  Hermitian: both, one of them conjugated
//   skew                  both, the mirror negated
//   diagonal              row
//
// Either part takes a as it stands or conjugated. Entries outside the triangle have no part; those
// on the diagonal have no mirror part beside a row part. A unit diagonal is no business of the
// rule: it takes the stored diagonal out of the triangle (the limit of Reach), and the kernel adds
// alpha x.
#pragma once

#include "spblas/variant.h"

namespace jex::spblas {

enum class Part { none, plain, conj };
enum class Side { any, lower, upper, diagonal };

struct EntryRule {
  Part row, mirror;
  Side side;
  bool negative_mirror;  // skew-symmetric
  bool scaled_vector;    // the mirror part is a (alpha x(i)), otherwise (a alpha) x(i)
};

consteval Part part(bool conj) { return conj ? Part::conj : Part::plain; }
consteval Side side(Uplo uplo) { return uplo == Uplo::lower ? Side::lower : Side::upper; }

consteval EntryRule entry_rule(Variant v) {
  const bool conj = is_conjugated(v.op), transposed = is_transposed(v.op);
  switch (v.kind) {
    case Kind::general:
    case Kind::triangular: {
      const Side all = v.kind == Kind::general ? Side::any : side(v.uplo);
      if (transposed) return {Part::none, part(conj), all, false, false};
      return {part(conj), Part::none, all, false, false};
    }
    case Kind::symmetric:
      return {part(conj), part(conj), side(v.uplo), false, true};
    case Kind::hermitian:  // The transpose is the conjugate.
      return {part(transposed), part(!transposed), side(v.uplo), false, false};
    case Kind::skew:
      return {part(conj), part(conj), side(v.uplo), true, false};
    case Kind::diagonal:
      return {part(conj), Part::none, Side::diagonal, false, false};
  }
}

// The transpose of a skew-symmetric A is -A, its conjugate transpose -conj(A): the sign goes to
// alpha.
consteval bool negates(Variant v) { return v.kind == Kind::skew && is_transposed(v.op); }

// Is the stored diagonal outside the triangle? That of a skew-symmetric matrix is zero.
consteval bool is_strict(Variant v) { return v.diag == Diag::unit || v.kind == Kind::skew; }

// Is (i, j) an entry beside the diagonal, on the side of the triangle?
template <Side side>
[[gnu::always_inline]] inline bool beside(int i, int j) {
  if constexpr (side == Side::lower) return j < i;
  if constexpr (side == Side::upper) return j > i;
  return false;
}

}  // namespace jex::spblas
