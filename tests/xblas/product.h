// One extended-precision product of a test: which routine, its arguments, and its matrix as the
// definition shows it.
#pragma once

#include "blas/level1/level1.h"
#include "blas/level2/general_matrix.h"
#include "blas/level2/symmetric_matrix.h"

#include <jex/exports.h>

#include <memory>

namespace jex::test {

enum class Kind { gemv, gbmv, symv, hemv };

template <class T>
struct Arguments {
  Kind kind;
  jex_int option;  // trans or uplo
  jex_int m, n, kl, ku;
  T alpha;
  const T* a;
  jex_int lda;
  const T *x, *tail;  // tail is null for the routines of one vector
  jex_int incx;
  T beta;
  T* y;
  jex_int incy, prec;
};

// Calls the routine of the kind; _x or 2_x.
#define JEX_TEST_HEMV(t)                                                                      \
  if (v.kind == Kind::hemv) {                                                                 \
    v.tail ? jex_xblas_blas_##t##hemv2_x(&v.option, &v.n, &v.alpha, v.a, &v.lda, v.x, v.tail, \
                                         &v.incx, &v.beta, v.y, &v.incy, &v.prec)             \
           : jex_xblas_blas_##t##hemv_x(&v.option, &v.n, &v.alpha, v.a, &v.lda, v.x, &v.incx, \
                                        &v.beta, v.y, &v.incy, &v.prec);                      \
    return;                                                                                   \
  }
#define JEX_TEST_RUN(t, T, hemv)                                                                 \
  inline void run(const Arguments<T>& v) {                                                       \
    hemv;                                                                                        \
    if (v.kind == Kind::gemv)                                                                    \
      v.tail ? jex_xblas_blas_##t##gemv2_x(&v.option, &v.m, &v.n, &v.alpha, v.a, &v.lda, v.x,    \
                                           v.tail, &v.incx, &v.beta, v.y, &v.incy, &v.prec)      \
             : jex_xblas_blas_##t##gemv_x(&v.option, &v.m, &v.n, &v.alpha, v.a, &v.lda, v.x,     \
                                          &v.incx, &v.beta, v.y, &v.incy, &v.prec);              \
    else if (v.kind == Kind::gbmv)                                                               \
      v.tail ? jex_xblas_blas_##t##gbmv2_x(&v.option, &v.m, &v.n, &v.kl, &v.ku, &v.alpha, v.a,   \
                                           &v.lda, v.x, v.tail, &v.incx, &v.beta, v.y, &v.incy,  \
                                           &v.prec)                                              \
             : jex_xblas_blas_##t##gbmv_x(&v.option, &v.m, &v.n, &v.kl, &v.ku, &v.alpha, v.a,    \
                                          &v.lda, v.x, &v.incx, &v.beta, v.y, &v.incy, &v.prec); \
    else                                                                                         \
      v.tail ? jex_xblas_blas_##t##symv2_x(&v.option, &v.n, &v.alpha, v.a, &v.lda, v.x, v.tail,  \
                                           &v.incx, &v.beta, v.y, &v.incy, &v.prec)              \
             : jex_xblas_blas_##t##symv_x(&v.option, &v.n, &v.alpha, v.a, &v.lda, v.x, &v.incx,  \
                                          &v.beta, v.y, &v.incy, &v.prec);                       \
  }
JEX_TEST_RUN(s, float, )
JEX_TEST_RUN(d, double, )
JEX_TEST_RUN(c, jex_scomplex, JEX_TEST_HEMV(c))
JEX_TEST_RUN(z, jex_dcomplex, JEX_TEST_HEMV(z))

template <class T>
T number(double re) {
  T a{};
  reinterpret_cast<Real<T>&>(a) = Real<T>(re);
  return a;
}

// A random call with its operands in guarded memory.
template <class T>
class Product {
 public:
  Arguments<T> v;
  int lenx, leny;
  std::unique_ptr<Vector<T>> x, tail, y;

  Product(Case& c, Kind kind, jex_int prec) : v{} {
    v.kind = kind;
    v.prec = prec;
    const auto extent = [&] { return c.random.between(0, 4) ? c.random.between(0, 12) : 40; };
    const bool general = kind == Kind::gemv || kind == Kind::gbmv;
    v.m = extent(), v.n = general ? extent() : v.m;
    if (general) {
      v.option = c.random.pick({111, 112, 113});
      general_ =
          std::make_unique<GeneralMatrix<T>>(c.random, v.m, v.n, c.values, kind == Kind::gbmv);
      v.kl = general_->kl, v.ku = general_->ku;
      v.a = general_->data(), v.lda = *general_->lda_address();
    } else {
      v.option = c.random.pick({121, 122});
      symmetric_ = std::make_unique<SymmetricMatrix<T>>(c.random, Storage::full, v.option == 121,
                                                        v.n, c.values, kind == Kind::hemv);
      v.a = symmetric_->data(), v.lda = *symmetric_->lda_address();
    }
    const bool plain = !general || v.option == 111;
    lenx = plain ? v.n : v.m, leny = plain ? v.m : v.n;
    c.n = lenx;
    v.incx = c.random.pick({1, 1, 2, -1, -3});
    x.reset(new Vector<T>(c.vector<T>(v.incx)));
    if (c.random.between(0, 1)) tail.reset(new Vector<T>(c.vector<T>(v.incx)));
    c.n = leny;
    v.incy = c.random.pick({1, 1, 3, -2});
    y.reset(new Vector<T>(c.vector<T>(v.incy)));
    v.x = x->data(), v.tail = tail ? tail->data() : nullptr, v.y = y->data();
    v.alpha = special_factor<T>(c.random), v.beta = special_factor<T>(c.random);
    c.text += " kind=" + std::to_string(int(kind)) + " option=" + std::to_string(v.option) +
              " m=" + std::to_string(v.m) + " n=" + std::to_string(v.n) +
              " kl=" + std::to_string(v.kl) + " ku=" + std::to_string(v.ku);
  }

  // Element (i, k) of op(A); false where a band holds none.
  bool element(int i, int k, T& value) {
    if (general_) {
      const bool turned = v.option != 111;
      const int row = turned ? k : i, column = turned ? i : k;
      if (!general_->stores(row, column)) return false;
      value = general_->at(row, column);
      if (v.option == 113) value = conjugate(value);
    } else if (v.kind == Kind::hemv) {
      value = symmetric_->whole(i, k);
    } else {
      value = symmetric_->stores(i, k) ? symmetric_->at(i, k) : symmetric_->at(k, i);
    }
    return true;
  }

 private:
  std::unique_ptr<GeneralMatrix<T>> general_;
  std::unique_ptr<SymmetricMatrix<T>> symmetric_;
};

// Every kind of a type in turn, Hermitian ones for complex types.
template <class T, class Check>
void for_products(unsigned count, Check check) {
  for (const unsigned seed : case_seeds(count)) {
    Case c(seed, 1);
    const Kind kind = Kind(seed % (is_complex<T> ? 4 : 3));
    check(c, kind);
    if (testing::Test::HasFailure()) FAIL() << c.text;
  }
}

}  // namespace jex::test
