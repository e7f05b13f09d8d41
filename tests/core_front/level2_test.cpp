// Every level-2 entry of the front against models on paper: from Fortran, from C by columns and by
// rows, and by rows with the work buffer refused.

#include "core_front/level2_cases.h"

namespace jex::test {
namespace {

template <class T>
struct Level2 : Level2Cases<T> {
  using Base = Level2Cases<T>;
  using F = Entries<T>;
  using Base::alpha, Base::beta, Base::incx, Base::incy, Base::random, Base::trans, Base::c_trans,
      Base::upper, Base::uplo_word, Base::trans_word, Base::diag_word, Base::order, Base::size,
      Base::small_size, Base::call, Base::before, Base::input, Base::updated, Base::c_value,
      Base::c_uplo, Base::c_diag;
  using Vector = std::vector<T>;
  using Numbers = std::vector<Number>;

  static void expect(const Vector& actual, const Vector& expected, const char* what) {
    EXPECT_EQ(difference(actual, expected), "") << what;
  }
  // A call that changes y or x, given as an operand, and must leave its inputs alone.
  template <class Fortran, class C>
  void check(Vector& changed, const Vector& expected, std::initializer_list<const Vector*> inputs,
             Fortran fortran, C c) {
    std::vector<Vector> kept;
    for (const auto* each : inputs) kept.push_back(*each);
    call(fortran, c);
    expect(changed, expected, "result");
    size_t i = 0;
    for (const auto* each : inputs) expect(*each, kept[i++], "an input");
  }

  void gemv(bool banded);
  void ger(bool conjugated);
  void symv(Kind kind);
  void syr(Kind kind);
  void syr2(Kind kind);
  void triangular(Kind kind, bool solve);
};

template <class T>
void Level2<T>::gemv(bool banded) {
  const int n = size(), kl = random.between(0, 4), ku = random.between(0, 4);
  const int m = banded && random.between(0, 2) ? std::max(0, n + random.between(-9, 9)) : size();
  const Layout layout = banded ? this->band(m, n, kl, ku) : this->general(m, n);
  const Matrix matrix = random_matrix<T>(random, layout), op = matrix.op(trans);
  const Numbers x = wholes<T>(random, op.n), y = wholes<T>(random, op.m);
  const Vector a = input(layout.template in_memory<T>(matrix)), u = input(in_memory<T>(x, incx));
  Vector v = before(y);
  const T al = element<T>(alpha), be = element<T>(beta);
  const char* const op_word = trans_word.c_str();
  // An operand of no elements leaves y alone, whatever beta is.
  const Vector result = m && n ? in_memory<T>(updated(op, x, y), incy) : v;
  check(
      v, result, {&a, &u},
      [&] {
        if (banded)
          F::gbmv(op_word, &m, &n, &kl, &ku, &al, a.data(), &layout.ld, u.data(), &incx, &be,
                  v.data(), &incy);
        else
          F::gemv(op_word, &m, &n, &al, a.data(), &layout.ld, u.data(), &incx, &be, v.data(),
                  &incy);
      },
      [&] {
        if (banded)
          F::c_gbmv(order(), c_trans, m, n, kl, ku, c_value(al), a.data(), layout.ld, u.data(),
                    incx, c_value(be), v.data(), incy);
        else
          F::c_gemv(order(), c_trans, m, n, c_value(al), a.data(), layout.ld, u.data(), incx,
                    c_value(be), v.data(), incy);
      });
}

template <class T>
void Level2<T>::ger(bool conjugated) {
  const int m = size(), n = size();
  const Layout layout = this->general(m, n);
  Matrix matrix = random_matrix<T>(random, layout);
  const Numbers x = wholes<T>(random, m), y = wholes<T>(random, n);
  Vector a = layout.template in_memory<T>(matrix);
  const Vector u = input(in_memory<T>(x, incx)), v = input(in_memory<T>(y, incy));
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j)
      matrix(i, j) += alpha * x[i] * (conjugated ? std::conj(y[j]) : y[j]);
  const T al = element<T>(alpha);
  check(
      a, layout.template in_memory<T>(matrix), {&u, &v},
      [&] {
        (conjugated ? F::gerc : F::ger)(&m, &n, &al, u.data(), &incx, v.data(), &incy, a.data(),
                                        &layout.ld);
      },
      [&] {
        (conjugated ? F::c_gerc : F::c_ger)(order(), m, n, c_value(al), u.data(), incx, v.data(),
                                            incy, a.data(), layout.ld);
      });
}

template <class T>
void Level2<T>::symv(Kind kind) {
  const int n = size(), k = kind == Kind::band ? random.between(0, 4) : n;
  const Layout layout = this->triangle(kind, n, k);
  const Matrix matrix = this->hermitian(layout);
  const Numbers x = wholes<T>(random, n), y = wholes<T>(random, n);
  const Vector a = input(this->hermitian_in_memory(layout, matrix));
  const Vector u = input(in_memory<T>(x, incx));
  Vector v = before(y);
  const T al = element<T>(alpha), be = element<T>(beta);
  const char* const up = uplo_word.c_str();
  check(
      v, in_memory<T>(updated(matrix, x, y), incy), {&a, &u},
      [&] {
        if (kind == Kind::full)
          F::symv(up, &n, &al, a.data(), &layout.ld, u.data(), &incx, &be, v.data(), &incy);
        else if (kind == Kind::band)
          F::sbmv(up, &n, &k, &al, a.data(), &layout.ld, u.data(), &incx, &be, v.data(), &incy);
        else
          F::spmv(up, &n, &al, a.data(), u.data(), &incx, &be, v.data(), &incy);
      },
      [&] {
        if (kind == Kind::full)
          F::c_symv(order(), c_uplo(), n, c_value(al), a.data(), layout.ld, u.data(), incx,
                    c_value(be), v.data(), incy);
        else if (kind == Kind::band)
          F::c_sbmv(order(), c_uplo(), n, k, c_value(al), a.data(), layout.ld, u.data(), incx,
                    c_value(be), v.data(), incy);
        else
          F::c_spmv(order(), c_uplo(), n, c_value(al), a.data(), u.data(), incx, c_value(be),
                    v.data(), incy);
      });
}

template <class T>
void Level2<T>::syr(Kind kind) {
  const int n = size();
  const Layout layout = this->triangle(kind, n, n);
  Matrix matrix = this->hermitian(layout);
  const Numbers x = wholes<T>(random, n);
  const Real<T> al = Real<T>(alpha.real());
  Vector a =
      al == 0 ? layout.template in_memory<T>(matrix) : this->hermitian_in_memory(layout, matrix);
  alpha = al;
  const Vector u = input(in_memory<T>(x, incx));
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) matrix(i, j) += alpha * x[i] * std::conj(x[j]);
  const char* const up = uplo_word.c_str();
  check(
      a, layout.template in_memory<T>(matrix), {&u},
      [&] {
        if (kind == Kind::full)
          F::syr(up, &n, &al, u.data(), &incx, a.data(), &layout.ld);
        else
          F::spr(up, &n, &al, u.data(), &incx, a.data());
      },
      [&] {
        if (kind == Kind::full)
          F::c_syr(order(), c_uplo(), n, al, u.data(), incx, a.data(), layout.ld);
        else
          F::c_spr(order(), c_uplo(), n, al, u.data(), incx, a.data());
      });
}

template <class T>
void Level2<T>::syr2(Kind kind) {
  const int n = size();
  const Layout layout = this->triangle(kind, n, n);
  Matrix matrix = this->hermitian(layout);
  const Numbers x = wholes<T>(random, n), y = wholes<T>(random, n);
  Vector a = alpha == 0.0 ? layout.template in_memory<T>(matrix)
                          : this->hermitian_in_memory(layout, matrix);
  const Vector u = input(in_memory<T>(x, incx)), v = input(in_memory<T>(y, incy));
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      matrix(i, j) += alpha * x[i] * std::conj(y[j]) + std::conj(alpha) * y[i] * std::conj(x[j]);
  const T al = element<T>(alpha);
  const char* const up = uplo_word.c_str();
  check(
      a, layout.template in_memory<T>(matrix), {&u, &v},
      [&] {
        if (kind == Kind::full)
          F::syr2(up, &n, &al, u.data(), &incx, v.data(), &incy, a.data(), &layout.ld);
        else
          F::spr2(up, &n, &al, u.data(), &incx, v.data(), &incy, a.data());
      },
      [&] {
        if (kind == Kind::full)
          F::c_syr2(order(), c_uplo(), n, c_value(al), u.data(), incx, v.data(), incy, a.data(),
                    layout.ld);
        else
          F::c_spr2(order(), c_uplo(), n, c_value(al), u.data(), incx, v.data(), incy, a.data());
      });
}

template <class T>
void Level2<T>::triangular(Kind kind, bool solve) {
  const int n = small_size(), k = kind == Kind::band ? random.between(0, 4) : n;
  const Layout layout = this->triangle(kind, n, k);
  const Matrix matrix = this->triangular_matrix(layout);
  const Matrix op = this->with_diagonal(matrix).op(trans);
  const Numbers x = wholes<T>(random, n), product = op.times(x);
  const Vector a = this->triangular_in_memory(layout, matrix);
  Vector v = in_memory<T>(solve ? product : x, incx);
  const char *const up = uplo_word.c_str(), *const op_word = trans_word.c_str();
  const char* const diag = diag_word.c_str();
  check(
      v, in_memory<T>(solve ? x : product, incx), {&a},
      [&] {
        if (kind == Kind::full)
          (solve ? F::trsv : F::trmv)(up, op_word, diag, &n, a.data(), &layout.ld, v.data(), &incx);
        else if (kind == Kind::band)
          (solve ? F::tbsv : F::tbmv)(up, op_word, diag, &n, &k, a.data(), &layout.ld, v.data(),
                                      &incx);
        else
          (solve ? F::tpsv : F::tpmv)(up, op_word, diag, &n, a.data(), v.data(), &incx);
      },
      [&] {
        if (kind == Kind::full)
          (solve ? F::c_trsv : F::c_trmv)(order(), c_uplo(), c_trans, c_diag(), n, a.data(),
                                          layout.ld, v.data(), incx);
        else if (kind == Kind::band)
          (solve ? F::c_tbsv : F::c_tbmv)(order(), c_uplo(), c_trans, c_diag(), n, k, a.data(),
                                          layout.ld, v.data(), incx);
        else
          (solve ? F::c_tpsv : F::c_tpmv)(order(), c_uplo(), c_trans, c_diag(), n, a.data(),
                                          v.data(), incx);
      });
}

template <class T>
struct FrontLevel2 : testing::Test, Level2<T> {};
using Types = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(FrontLevel2, Types);

#define FRONT_TEST(name, call)      \
  TYPED_TEST(FrontLevel2, name) {   \
    this->run([&] { this->call; }); \
  }
FRONT_TEST(gemv, gemv(false))
FRONT_TEST(gbmv, gemv(true))
FRONT_TEST(ger, ger(false))
FRONT_TEST(gerc, ger(true))
FRONT_TEST(symv, symv(Kind::full))
FRONT_TEST(sbmv, symv(Kind::band))
FRONT_TEST(spmv, symv(Kind::packed))
FRONT_TEST(syr, syr(Kind::full))
FRONT_TEST(spr, syr(Kind::packed))
FRONT_TEST(syr2, syr2(Kind::full))
FRONT_TEST(spr2, syr2(Kind::packed))
FRONT_TEST(trmv, triangular(Kind::full, false))
FRONT_TEST(trsv, triangular(Kind::full, true))
FRONT_TEST(tbmv, triangular(Kind::band, false))
FRONT_TEST(tbsv, triangular(Kind::band, true))
FRONT_TEST(tpmv, triangular(Kind::packed, false))
FRONT_TEST(tpsv, triangular(Kind::packed, true))

}  // namespace
}  // namespace jex::test
