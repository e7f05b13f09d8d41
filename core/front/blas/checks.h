// Checks of users' arguments, one list for each signature. A list answers with the position of the
// first wrong argument, as the Fortran routines count them, or 0; C entries ask it with the values
// that their Fortran call would have.
#pragma once

#include <jex/types.h>

#include <algorithm>
#include <stdint.h>

namespace jex::front {

// The first character of an option word, without regard to the case of the ASCII letters.
inline char option(const char* word) {
  return *word >= 'a' && *word <= 'z' ? char(*word - 'a' + 'A') : *word;
}

namespace wrong {

inline bool uplo(const char* word) { return option(word) != 'U' && option(word) != 'L'; }
inline bool diag(const char* word) { return option(word) != 'U' && option(word) != 'N'; }
inline bool trans(const char* word) {
  return option(word) != 'N' && option(word) != 'T' && option(word) != 'C';
}
inline bool side(const char* word) { return option(word) != 'L' && option(word) != 'R'; }
// N or the one letter of the transpose; for real types both letters of it.
inline bool trans_of_update(const char* word, char mirror) {
  return mirror == '*' ? trans(word) : option(word) != 'N' && option(word) != mirror;
}
inline bool lda(jex_int lda, int64_t rows) { return lda < std::max<int64_t>(1, rows); }

inline jex_int gemv(const char* trans, jex_int m, jex_int n, jex_int lda, jex_int incx,
                    jex_int incy) {
  return wrong::trans(trans)  ? 1
         : m < 0              ? 2
         : n < 0              ? 3
         : wrong::lda(lda, m) ? 6
         : incx == 0          ? 8
         : incy == 0          ? 11
                              : 0;
}

inline jex_int gbmv(const char* trans, jex_int m, jex_int n, jex_int kl, jex_int ku, jex_int lda,
                    jex_int incx, jex_int incy) {
  return wrong::trans(trans)                     ? 1
         : m < 0                                 ? 2
         : n < 0                                 ? 3
         : kl < 0                                ? 4
         : ku < 0                                ? 5
         : wrong::lda(lda, int64_t(kl) + ku + 1) ? 8
         : incx == 0                             ? 10
         : incy == 0                             ? 13
                                                 : 0;
}

inline jex_int ger(jex_int m, jex_int n, jex_int incx, jex_int incy, jex_int lda) {
  return m < 0 ? 1 : n < 0 ? 2 : incx == 0 ? 5 : incy == 0 ? 7 : wrong::lda(lda, m) ? 9 : 0;
}

// symv and hemv.
inline jex_int symv(const char* uplo, jex_int n, jex_int lda, jex_int incx, jex_int incy) {
  return wrong::uplo(uplo)    ? 1
         : n < 0              ? 2
         : wrong::lda(lda, n) ? 5
         : incx == 0          ? 7
         : incy == 0          ? 10
                              : 0;
}

// sbmv and hbmv.
inline jex_int sbmv(const char* uplo, jex_int n, jex_int k, jex_int lda, jex_int incx,
                    jex_int incy) {
  return wrong::uplo(uplo)                 ? 1
         : n < 0                           ? 2
         : k < 0                           ? 3
         : wrong::lda(lda, int64_t(k) + 1) ? 6
         : incx == 0                       ? 8
         : incy == 0                       ? 11
                                           : 0;
}

// spmv and hpmv.
inline jex_int spmv(const char* uplo, jex_int n, jex_int incx, jex_int incy) {
  return wrong::uplo(uplo) ? 1 : n < 0 ? 2 : incx == 0 ? 6 : incy == 0 ? 9 : 0;
}

// syr and her.
inline jex_int syr(const char* uplo, jex_int n, jex_int incx, jex_int lda) {
  return wrong::uplo(uplo) ? 1 : n < 0 ? 2 : incx == 0 ? 5 : wrong::lda(lda, n) ? 7 : 0;
}

// spr and hpr.
inline jex_int spr(const char* uplo, jex_int n, jex_int incx) {
  return wrong::uplo(uplo) ? 1 : n < 0 ? 2 : incx == 0 ? 5 : 0;
}

// syr2 and her2.
inline jex_int syr2(const char* uplo, jex_int n, jex_int incx, jex_int incy, jex_int lda) {
  return wrong::uplo(uplo)    ? 1
         : n < 0              ? 2
         : incx == 0          ? 5
         : incy == 0          ? 7
         : wrong::lda(lda, n) ? 9
                              : 0;
}

// spr2 and hpr2.
inline jex_int spr2(const char* uplo, jex_int n, jex_int incx, jex_int incy) {
  return wrong::uplo(uplo) ? 1 : n < 0 ? 2 : incx == 0 ? 5 : incy == 0 ? 7 : 0;
}

// trmv and trsv.
inline jex_int trmv(const char* uplo, const char* trans, const char* diag, jex_int n, jex_int lda,
                    jex_int incx) {
  return wrong::uplo(uplo)     ? 1
         : wrong::trans(trans) ? 2
         : wrong::diag(diag)   ? 3
         : n < 0               ? 4
         : wrong::lda(lda, n)  ? 6
         : incx == 0           ? 8
                               : 0;
}

// tbmv and tbsv.
inline jex_int tbmv(const char* uplo, const char* trans, const char* diag, jex_int n, jex_int k,
                    jex_int lda, jex_int incx) {
  return wrong::uplo(uplo)                 ? 1
         : wrong::trans(trans)             ? 2
         : wrong::diag(diag)               ? 3
         : n < 0                           ? 4
         : k < 0                           ? 5
         : wrong::lda(lda, int64_t(k) + 1) ? 7
         : incx == 0                       ? 9
                                           : 0;
}

// tpmv and tpsv.
inline jex_int tpmv(const char* uplo, const char* trans, const char* diag, jex_int n,
                    jex_int incx) {
  return wrong::uplo(uplo)     ? 1
         : wrong::trans(trans) ? 2
         : wrong::diag(diag)   ? 3
         : n < 0               ? 4
         : incx == 0           ? 7
                               : 0;
}

// Also gemm3m.
inline jex_int gemm(const char* transa, const char* transb, jex_int m, jex_int n, jex_int k,
                    jex_int lda, jex_int ldb, jex_int ldc) {
  const bool plain_a = option(transa) == 'N', plain_b = option(transb) == 'N';
  return wrong::trans(transa)               ? 1
         : wrong::trans(transb)             ? 2
         : m < 0                            ? 3
         : n < 0                            ? 4
         : k < 0                            ? 5
         : wrong::lda(lda, plain_a ? m : k) ? 8
         : wrong::lda(ldb, plain_b ? k : n) ? 10
         : wrong::lda(ldc, m)               ? 13
                                            : 0;
}

// symm and hemm.
inline jex_int symm(const char* side, const char* uplo, jex_int m, jex_int n, jex_int lda,
                    jex_int ldb, jex_int ldc) {
  return wrong::side(side)                              ? 1
         : wrong::uplo(uplo)                            ? 2
         : m < 0                                        ? 3
         : n < 0                                        ? 4
         : wrong::lda(lda, option(side) == 'L' ? m : n) ? 7
         : wrong::lda(ldb, m)                           ? 9
         : wrong::lda(ldc, m)                           ? 12
                                                        : 0;
}

// syrk and herk; mirror is the letter of the transpose, * for both.
inline jex_int syrk(char mirror, const char* uplo, const char* trans, jex_int n, jex_int k,
                    jex_int lda, jex_int ldc) {
  return wrong::uplo(uplo)                               ? 1
         : wrong::trans_of_update(trans, mirror)         ? 2
         : n < 0                                         ? 3
         : k < 0                                         ? 4
         : wrong::lda(lda, option(trans) == 'N' ? n : k) ? 7
         : wrong::lda(ldc, n)                            ? 10
                                                         : 0;
}

// syr2k and her2k.
inline jex_int syr2k(char mirror, const char* uplo, const char* trans, jex_int n, jex_int k,
                     jex_int lda, jex_int ldb, jex_int ldc) {
  const jex_int rows = option(trans) == 'N' ? n : k;
  return wrong::uplo(uplo)                       ? 1
         : wrong::trans_of_update(trans, mirror) ? 2
         : n < 0                                 ? 3
         : k < 0                                 ? 4
         : wrong::lda(lda, rows)                 ? 7
         : wrong::lda(ldb, rows)                 ? 9
         : wrong::lda(ldc, n)                    ? 12
                                                 : 0;
}

// trmm and trsm.
inline jex_int trmm(const char* side, const char* uplo, const char* transa, const char* diag,
                    jex_int m, jex_int n, jex_int lda, jex_int ldb) {
  return wrong::side(side)                              ? 1
         : wrong::uplo(uplo)                            ? 2
         : wrong::trans(transa)                         ? 3
         : wrong::diag(diag)                            ? 4
         : m < 0                                        ? 5
         : n < 0                                        ? 6
         : wrong::lda(lda, option(side) == 'L' ? m : n) ? 9
         : wrong::lda(ldb, m)                           ? 11
                                                        : 0;
}

}  // namespace wrong
}  // namespace jex::front
