// Rank-one and rank-two updates of symmetric and Hermitian matrices, bit for bit: each element has
// one or two products and as many sums.

#include "blas/level1/level1.h"
#include "blas/level2/symmetric_entries.h"
#include "blas/level2/symmetric_matrix.h"

namespace jex::test {
namespace {

template <class T>
struct SymmetricUpdate : testing::Test {};
TYPED_TEST_SUITE(SymmetricUpdate, All4);

// Zeros here and there among the elements: columns that are passed over.
template <class T>
void put_zeros(Random& random, int n, Vector<T>& x) {
  T* const first = x.data() + (x.inc() < 0 ? (1 - n) * x.inc() : 0);
  for (int i = 0; i < n; ++i)
    if (random.between(0, 5) == 0) first[i * x.inc()] = x.at(i) = T{};
}

template <class T>
T conjugate_if(bool conj, T a) {
  return conj ? conjugate(a) : a;
}

template <class T, class A, class Kernel>
void check_rank_one(Storage storage, bool conj, Kernel kernel) {
  for_cases([&](Case& c) {
    c.n = c.random.between(0, 3) ? std::min(c.n, 40) : c.n / 3;
    const bool upper = c.random.between(0, 1);
    const A alpha = special_factor<A>(c.random);
    SymmetricMatrix<T> a(c.random, storage, upper, c.n, c.values, conj);
    auto x = c.vector<T>(increment(c.random, c.random.between(0, 1)));
    put_zeros(c.random, c.n, x);
    c.text += upper ? " upper" : " lower";
    kernel(upper ? "U" : "L", c.n, alpha, x, a);
    for (int j = 0; j < c.n && !is_zero(alpha); ++j) {
      const T t = multiply(conjugate_if(conj, x.at(j)), alpha);
      for (int i = 0; i < c.n; ++i)
        if (a.stores(i, j) && !is_zero(x.at(j))) a.at(i, j) = add(a.at(i, j), multiply(x.at(i), t));
      if constexpr (is_complex<T>)
        if (conj) a.at(j, j).im = 0;
    }
    EXPECT_EQ(a.difference(), "");
    expect_model(x);
  });
}

TYPED_TEST(SymmetricUpdate, RankOne) {
  using T = TypeParam;
  check_rank_one<T, Real<T>>(
      Storage::full, is_complex<T>,
      [](const char* uplo, int n, Real<T> alpha, Vector<T>& x, SymmetricMatrix<T>& a) {
        SymmetricEntries<T>::syr(uplo, &n, &alpha, x.data(), x.inc_address(), a.data(),
                                 a.lda_address());
      });
  check_rank_one<T, Real<T>>(
      Storage::packed, is_complex<T>,
      [](const char* uplo, int n, Real<T> alpha, Vector<T>& x, SymmetricMatrix<T>& a) {
        SymmetricEntries<T>::spr(uplo, &n, &alpha, x.data(), x.inc_address(), a.data());
      });
}

TEST(SymmetricUpdate, ComplexSymmetricRankOne) {
  using T = jex_scomplex;
  check_rank_one<T, T>(Storage::packed, false,
                       [](const char* uplo, int n, T alpha, Vector<T>& x, SymmetricMatrix<T>& a) {
                         jex_blas_cspr(uplo, &n, &alpha, x.data(), x.inc_address(), a.data());
                       });
}

template <class T, class Kernel>
void check_rank_two(Storage storage, bool panels, Kernel kernel) {
  for_cases([&](Case& c) {
    c.n = c.random.between(0, 3) ? std::min(c.n, 40) : c.n / 3;
    const int nb = panels ? c.random.between(-1, std::max(1, c.n + 2)) : c.n;
    const bool upper = c.random.between(0, 1);
    const T alpha = special_factor<T>(c.random);
    SymmetricMatrix<T> a(c.random, storage, upper, c.n, c.values, true);
    const bool unit = c.random.between(0, 1);
    auto x = c.vector<T>(increment(c.random, unit)), y = c.vector<T>(increment(c.random, unit));
    put_zeros(c.random, c.n, x);
    put_zeros(c.random, c.n, y);
    c.text += (upper ? " upper nb=" : " lower nb=") + std::to_string(nb);
    kernel(upper ? "U" : "L", c.n, nb, alpha, x, y, a);
    const PanelColumns panel(upper, c.n, std::max(nb, 0));
    for (int j = panel.first; j < panel.last && !is_zero(alpha); ++j) {
      const T by_x = multiply(alpha, conjugate(y.at(j))),
              by_y = conjugate(multiply(alpha, x.at(j)));
      for (int i = 0; i < c.n; ++i)
        if (a.stores(i, j) && !(is_zero(x.at(j)) && is_zero(y.at(j))))
          a.at(i, j) = add(add(a.at(i, j), multiply(x.at(i), by_x)), multiply(y.at(i), by_y));
      if constexpr (is_complex<T>) a.at(j, j).im = 0;
    }
    EXPECT_EQ(a.difference(), "");
    expect_model(x, y);
  });
}

TYPED_TEST(SymmetricUpdate, RankTwo) {
  using T = TypeParam;
  using V = Vector<T>;
  using M = SymmetricMatrix<T>;
  check_rank_two<T>(
      Storage::full, false, [](const char* uplo, int n, int, T alpha, V& x, V& y, M& a) {
        SymmetricEntries<T>::syr2(uplo, &n, &alpha, x.data(), x.inc_address(), y.data(),
                                  y.inc_address(), a.data(), a.lda_address());
      });
  check_rank_two<T>(Storage::packed, false,
                    [](const char* uplo, int n, int, T alpha, V& x, V& y, M& a) {
                      SymmetricEntries<T>::spr2(uplo, &n, &alpha, x.data(), x.inc_address(),
                                                y.data(), y.inc_address(), a.data());
                    });
}

TYPED_TEST(SymmetricUpdate, RankTwoPanel) {
  using T = TypeParam;
  check_rank_two<T>(Storage::full, true,
                    [](const char* uplo, int n, int nb, T alpha, Vector<T>& x, Vector<T>& y,
                       SymmetricMatrix<T>& a) {
                      SymmetricEntries<T>::syr2_nb(uplo, &n, &nb, &alpha, x.data(), x.inc_address(),
                                                   y.data(), y.inc_address(), a.data(),
                                                   a.lda_address());
                    });
}

// Large enough for the fetches ahead, a size that fills no group and no register.
TYPED_TEST(SymmetricUpdate, LargerThanTheCache) {
  using T = TypeParam;
  const int n = 531, one = 1;
  for (const bool upper : {false, true}) {
    Random random(upper + 1);
    const T alpha = random_value<T>(random, Values::plain);
    SymmetricMatrix<T> a(random, Storage::full, upper, n, Values::plain, true);
    Vector<T> x(random, n, 1, 0, Against::back, Values::plain);
    Vector<T> y(random, n, 1, 8, Against::back, Values::plain);
    SymmetricEntries<T>::syr2(upper ? "U" : "L", &n, &alpha, x.data(), &one, y.data(), &one,
                              a.data(), a.lda_address());
    for (int j = 0; j < n; ++j) {
      const T by_x = multiply(alpha, conjugate(y.at(j))),
              by_y = conjugate(multiply(alpha, x.at(j)));
      for (int i = 0; i < n; ++i)
        if (a.stores(i, j))
          a.at(i, j) = add(add(a.at(i, j), multiply(x.at(i), by_x)), multiply(y.at(i), by_y));
      if constexpr (is_complex<T>) a.at(j, j).im = 0;
    }
    EXPECT_EQ(a.difference(), "");
    expect_model(x, y);
  }
}

}  // namespace
}  // namespace jex::test
