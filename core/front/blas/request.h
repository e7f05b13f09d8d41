// One call of a C entry: decodes its options to those of the Fortran call on the same array, which
// a row-major call sees as the transpose, and reports the first wrong argument.
#pragma once

#include "front/blas/xerbla.h"

#include <jex/blas.h>

namespace jex::front {

class Request {
 public:
  Request(const char* entry, jex_cblas_order order)
      : entry_(entry), row_(order == JEX_CBLAS_ROW_MAJOR) {
    if (!row_ && order != JEX_CBLAS_COL_MAJOR) refuse(1, "Order", order);
  }

  bool row() const { return row_; }

  // The stored triangle as columns show it.
  char uplo(jex_int position, jex_cblas_uplo uplo) {
    if (uplo == JEX_CBLAS_UPPER) return row_ ? 'L' : 'U';
    if (uplo == JEX_CBLAS_LOWER) return row_ ? 'U' : 'L';
    return refuse(position, "Uplo", uplo);
  }

  // The operation on the matrix that columns show. A row-major conjugate transpose is its
  // conjugate, for which Fortran has no letter: "N", and conjugates() tells.
  char trans(jex_int position, jex_cblas_transpose trans) {
    if (trans == JEX_CBLAS_NO_TRANS) return row_ ? 'T' : 'N';
    if (trans == JEX_CBLAS_TRANS) return row_ ? 'N' : 'T';
    if (trans != JEX_CBLAS_CONJ_TRANS) return refuse(position, "TransA", trans);
    conjugates_ = row_;
    return row_ ? 'N' : 'C';
  }
  bool conjugates() const { return conjugates_; }
  // The operation on a factor of a product. By rows the product is computed transposed, where both
  // the stored factors and the operations on them are, so that letters stay.
  char trans_of_factor(jex_int position, const char* which, jex_cblas_transpose trans) {
    if (trans == JEX_CBLAS_NO_TRANS) return 'N';
    if (trans == JEX_CBLAS_TRANS) return 'T';
    return trans == JEX_CBLAS_CONJ_TRANS ? 'C' : refuse(position, which, trans);
  }

  // The operation of a rank-k update, N or the one with the letter mirror (* for both transposes):
  // the result seen by columns is that of the other operation on the transposed factor.
  char trans_of_update(jex_int position, jex_cblas_transpose trans, char mirror) {
    const char transpose = mirror == '*' ? 'T' : mirror;
    if (trans == JEX_CBLAS_NO_TRANS) return row_ ? transpose : 'N';
    if (trans == JEX_CBLAS_TRANS ? mirror != 'C' : trans == JEX_CBLAS_CONJ_TRANS && mirror != 'T')
      return row_ ? 'N' : transpose;
    return refuse(position, "Trans", trans);
  }
  // The side from which columns show the multiplication.
  char side(jex_int position, jex_cblas_side side) {
    if (side == JEX_CBLAS_LEFT) return row_ ? 'R' : 'L';
    if (side == JEX_CBLAS_RIGHT) return row_ ? 'L' : 'R';
    return refuse(position, "Side", side);
  }

  char diag(jex_int position, jex_cblas_diag diag) {
    if (diag == JEX_CBLAS_UNIT) return 'U';
    if (diag == JEX_CBLAS_NON_UNIT) return 'N';
    return refuse(position, "Diag", diag);
  }

  // Whether the call ends here: an option or the argument at this Fortran position was wrong.
  bool refused(jex_int position) {
    if (position) refuse(position + 1, nullptr, 0);
    return refused_;
  }

 private:
  [[gnu::cold]] char refuse(jex_int position, const char* what, jex_int value) {
    if (!refused_) report_c(entry_, position, row_, what, value);
    refused_ = true;
    return '?';
  }

  const char* entry_;
  bool row_, conjugates_ = false, refused_ = false;
};

}  // namespace jex::front
