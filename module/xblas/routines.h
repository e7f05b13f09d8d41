// The routines: precision chosen, arguments looked at, matrix shown by rows. The numeric codes and
// the positions of arguments are those of the published standard, which counts the order first. A
// wrong argument is reported, and the computation goes on with it.
#pragma once

#include "serv/empty.h"
#include "xblas/product.h"

#include <initializer_list>

namespace jex::xblas {

enum : int { no_trans = 111, trans = 112, conj_trans = 113, upper = 121, lower = 122 };

// call(precision) for the codes of single, double and native (211 to 213) and of extra (214); any
// other does nothing.
template <class Call>
inline bool with_precision(int prec, Call call) {
  if (prec >= 211 && prec <= 213)
    call(Native());
  else if (prec == 214)
    call(Extra());
  else
    return false;
  return true;
}

// One argument that may be wrong.
struct Check {
  bool wrong;
  int position, value;
};

// Reports the first wrong argument of a list, if there is one.
inline void report_first(const char* routine, std::initializer_list<Check> checks) {
  for (const Check& check : checks)
    if (check.wrong)
      return jex_serv_empty(routine, -check.position, check.value, static_cast<void*>(nullptr));
}

// Arguments after x: one further on where x has a tail.
template <class T>
inline int after(int position, const Operands<T>& v) {
  return position + (v.x_tail != nullptr);
}

template <class T>
void gemv(const char* routine, int op, int m, int n, const T* a, int lda, Operands<T> v, int prec) {
  with_precision(prec, [&](auto precision) {
    const int incx = v.incx, incy = v.incy;
    report_first(routine, {{m < 0, 3, m},
                           {n < 1, 4, n},
                           {incx == 0, after(9, v), incx},
                           {incy == 0, after(12, v), incy}});
    report_first(routine, {{lda < m, 7, lda}});
    const bool plain = op == no_trans;
    const int lenx = plain ? n : m, leny = plain ? m : n;
    const GeneralRows<T> rows{a, plain ? 1 : lda, plain ? lda : 1, lenx, op == conj_trans};
    product<decltype(precision)>(rows, lenx, leny, v);
  });
}

template <class T>
void gbmv(const char* routine, int op, int m, int n, int kl, int ku, const T* a, int lda,
          Operands<T> v, int prec) {
  with_precision(prec, [&](auto precision) {
    const int incx = v.incx, incy = v.incy;
    report_first(routine, {{op < no_trans || op > conj_trans, 2, op},
                           {m < 0, 3, m},
                           {n < 0, 4, n},
                           {kl < 0, 5, kl},
                           {ku < 0, 6, ku},
                           {lda < int64_t(kl) + ku + 1, 9, lda},
                           {incx == 0, after(11, v), incx},
                           {incy == 0, after(14, v), incy}});
    const bool plain = op == no_trans;
    const int lenx = plain ? n : m, leny = plain ? m : n;
    const BandRows<T> rows{a + ku,          plain ? 1 : lda - 1, plain ? lda - 1 : 1, lenx,
                           plain ? kl : ku, plain ? ku : kl,     op == conj_trans};
    product<decltype(precision)>(rows, lenx, leny, v);
  });
}

template <class T>
void symv(const char* routine, int uplo, int n, const T* a, int lda, Operands<T> v, int prec) {
  with_precision(prec, [&](auto precision) {
    const int incx = v.incx, incy = v.incy;
    report_first(routine,
                 {{n < 1, 3, n}, {incx == 0, after(8, v), incx}, {incy == 0, after(11, v), incy}});
    product<decltype(precision)>(SymmetricRows<T>{a, lda, n, uplo == upper, false}, n, n, v);
  });
}

template <class T>
void hemv(const char* routine, int uplo, int n, const T* a, int lda, Operands<T> v, int prec) {
  const bool known = with_precision(prec, [&](auto precision) {
    const int incx = v.incx, incy = v.incy;
    report_first(routine, {{uplo != upper && uplo != lower, 2, uplo},
                           {n < 1, 3, n},
                           {incx == 0, after(8, v), incx},
                           {incy == 0, after(11, v), incy}});
    product<decltype(precision)>(SymmetricRows<T>{a, lda, n, uplo == upper, true}, n, n, v);
  });
  if (!known) report_first(routine, {{true, after(12, v), prec}});
}

}  // namespace jex::xblas
