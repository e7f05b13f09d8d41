// Checks of the extended-precision products, and the module's entries behind them.

#include "front/blas/checks.h"
#include "front/checked.h"

#include <jex/xblas.h>

#include <stdint.h>
#include <stdlib.h>

namespace jex::front {
namespace {

bool wrong_op(jex_int op) { return op < JEX_XBLAS_NO_TRANS || op > JEX_XBLAS_CONJ_TRANS; }
bool wrong_triangle(jex_int uplo) { return uplo != JEX_XBLAS_UPPER && uplo != JEX_XBLAS_LOWER; }
bool wrong_precision(jex_int prec) { return prec < JEX_XBLAS_SINGLE || prec > JEX_XBLAS_EXTRA; }

// Columns of rows elements, ld apart, within the addresses of a signed 32-bit offset.
bool wrong_ld(jex_int ld, int64_t rows, int64_t columns, int64_t bytes) {
  return ld < std::max<int64_t>(1, rows) || too_large(columns, rows, ld, 1, bytes);
}

bool wrong_increment(jex_int inc, int64_t n, int64_t bytes) {
  return inc == 0 || too_large(n, 1, std::abs(int64_t(inc)), 1, bytes);
}

// The matrix of a call, and the position of its array among the arguments.
struct Matrix {
  const void* a;
  jex_int lda;
  int64_t rows, columns;
  jex_int position;
};

// What follows the matrix in all calls. two: 1 where x has a second part.
struct Vectors {
  const void *x, *tail_x;
  jex_int incx;
  const void* y;
  jex_int incy, prec;
  int two;
};

jex_int wrong_operands(const Matrix& a, int64_t lenx, int64_t leny, const Vectors& v,
                       int64_t bytes) {
  const jex_int x = a.position + 2, incx = x + 1 + v.two;
  if (!a.a && a.rows > 0 && a.columns > 0) return a.position;
  if (wrong_ld(a.lda, a.rows, a.columns, bytes)) return a.position + 1;
  if (!v.x && lenx > 0) return x;
  if (v.two && !v.tail_x && lenx > 0) return x + 1;
  if (wrong_increment(v.incx, lenx, bytes)) return incx;
  if (!v.y && leny > 0) return incx + 2;
  if (wrong_increment(v.incy, leny, bytes)) return incx + 3;
  return wrong_precision(v.prec) ? incx + 4 : 0;
}

jex_int wrong_gemv(jex_int op, jex_int m, jex_int n, const void* a, jex_int lda, const Vectors& v,
                   int64_t bytes) {
  if (wrong_op(op)) return 1;
  if (m < 0) return 2;
  if (n < 0) return 3;
  const bool plain = op == JEX_XBLAS_NO_TRANS;
  return wrong_operands({a, lda, m, n, 5}, plain ? n : m, plain ? m : n, v, bytes);
}

jex_int wrong_gbmv(jex_int op, jex_int m, jex_int n, jex_int kl, jex_int ku, const void* a,
                   jex_int lda, const Vectors& v, int64_t bytes) {
  if (wrong_op(op)) return 1;
  if (m < 0) return 2;
  if (n < 0) return 3;
  if (kl < 0) return 4;
  if (ku < 0) return 5;
  const bool plain = op == JEX_XBLAS_NO_TRANS;
  return wrong_operands({a, lda, int64_t(kl) + ku + 1, n, 7}, plain ? n : m, plain ? m : n, v,
                        bytes);
}

// symv and hemv.
jex_int wrong_symv(jex_int uplo, jex_int n, const void* a, jex_int lda, const Vectors& v,
                   int64_t bytes) {
  if (wrong_triangle(uplo)) return 1;
  if (n < 0) return 2;
  return wrong_operands({a, lda, n, n, 4}, n, n, v, bytes);
}

}  // namespace
}  // namespace jex::front

using namespace jex::front;

#define ONE(T) const T* x
#define ONE_PASSED x
#define ONE_VECTORS \
  { x, nullptr, incx, y, incy, prec, 0 }
#define TWO(T) const T *head_x, const T *tail_x
#define TWO_PASSED head_x, tail_x
#define TWO_VECTORS \
  { head_x, tail_x, incx, y, incy, prec, 1 }

#define GENERAL(t, T, two, V)                                                                      \
  jex_int jex_##t##gemv##two##_x(jex_int trans, jex_int m, jex_int n, T alpha, const T* a,         \
                                 jex_int lda, V(T), jex_int incx, T beta, T* y, jex_int incy,      \
                                 jex_int prec) {                                                   \
    return checked(                                                                                \
        wrong_gemv(trans, m, n, a, lda, V##_VECTORS, sizeof(T)), [&](const jex::Module& module) {  \
          module.jex_xblas_blas_##t##gemv##two##_x(&trans, &m, &n, &alpha, a, &lda, V##_PASSED,    \
                                                   &incx, &beta, y, &incy, &prec);                 \
        });                                                                                        \
  }                                                                                                \
  jex_int jex_##t##gbmv##two##_x(jex_int trans, jex_int m, jex_int n, jex_int kl, jex_int ku,      \
                                 T alpha, const T* a, jex_int lda, V(T), jex_int incx, T beta,     \
                                 T* y, jex_int incy, jex_int prec) {                               \
    return checked(wrong_gbmv(trans, m, n, kl, ku, a, lda, V##_VECTORS, sizeof(T)),                \
                   [&](const jex::Module& module) {                                                \
                     module.jex_xblas_blas_##t##gbmv##two##_x(&trans, &m, &n, &kl, &ku, &alpha, a, \
                                                              &lda, V##_PASSED, &incx, &beta, y,   \
                                                              &incy, &prec);                       \
                   });                                                                             \
  }
#define SYMMETRIC(t, T, name, two, V)                                                             \
  jex_int jex_##t##name##two##_x(jex_int uplo, jex_int n, T alpha, const T* a, jex_int lda, V(T), \
                                 jex_int incx, T beta, T* y, jex_int incy, jex_int prec) {        \
    return checked(wrong_symv(uplo, n, a, lda, V##_VECTORS, sizeof(T)),                           \
                   [&](const jex::Module& module) {                                               \
                     module.jex_xblas_blas_##t##name##two##_x(                                    \
                         &uplo, &n, &alpha, a, &lda, V##_PASSED, &incx, &beta, y, &incy, &prec);  \
                   });                                                                            \
  }
#define REAL(t, T)             \
  GENERAL(t, T, , ONE)         \
  GENERAL(t, T, 2, TWO)        \
  SYMMETRIC(t, T, symv, , ONE) \
  SYMMETRIC(t, T, symv, 2, TWO)
#define COMPLEX(t, T)          \
  REAL(t, T)                   \
  SYMMETRIC(t, T, hemv, , ONE) \
  SYMMETRIC(t, T, hemv, 2, TWO)
REAL(s, float)
REAL(d, double)
COMPLEX(c, jex_scomplex)
COMPLEX(z, jex_dcomplex)
