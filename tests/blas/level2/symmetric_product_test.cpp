// Products with symmetric and Hermitian matrices: within the error bound of the sum in extended
// precision; the real panel kernels also bit for bit.

#include "blas/level1/level1.h"
#include "blas/level2/symmetric_entries.h"
#include "blas/level2/symmetric_matrix.h"

#include "support/exact.h"

namespace jex::test {
namespace {

template <class T>
struct SymmetricProduct : testing::Test {};
TYPED_TEST_SUITE(SymmetricProduct, All4);

// What the panel adds to element i of y, without alpha, and the sum of the magnitudes.
template <class T>
struct RowSum {
  Exact sum = 0;
  long double magnitudes = 0;

  RowSum(SymmetricMatrix<T>& a, Vector<T>& x, int i, int n, PanelColumns panel) {
    for (int j = 0; j < n; ++j) {
      // (i, j) is stored, or mirrors an element, in this column of the triangle.
      const int column = (i > j) == a.upper() ? i : j;
      if (!panel.has(column)) continue;
      const Exact term = exact(a.whole(i, j)) * exact(x.at(j));
      sum += term;
      magnitudes += size_of(exact(a.whole(i, j))) * size_of(exact(x.at(j)));
    }
  }
};

// One element of y against the bound; NaN where NaN belongs, and nowhere else.
template <class T>
bool is_near(T ours, Exact model, long double bound) {
  const Exact mine = exact(ours);
  const bool nan = std::isnan(model.real()) || std::isnan(model.imag());
  if (nan) return std::isnan(mine.real()) && std::isnan(mine.imag()) == is_complex<T>;
  return size_of(mine - model) <= bound;
}

// call(n, nb, alpha, a, x, y) runs the kernel; the panel has all columns when nb is 0.
template <class T, class Kernel>
void check_product(Storage storage, bool panels, Kernel kernel) {
  for_cases([&](Case& c) {
    c.n = c.random.between(0, 3) ? std::min(c.n, 24) : c.n / 4;
    c.values = Values::plain;
    const int nb = panels ? c.random.between(-1, std::max(1, c.n + 2)) : c.n;
    const bool upper = c.random.between(0, 1);
    const T alpha = special_factor<T>(c.random), beta = special_factor<T>(c.random);
    SymmetricMatrix<T> a(c.random, storage, upper, c.n, c.values, true);
    const bool unit = c.random.between(0, 1);
    auto x = c.vector<T>(increment(c.random, unit)), y = c.vector<T>(increment(c.random, unit));
    c.text += (upper ? " upper nb=" : " lower nb=") + std::to_string(nb);
    const char* uplo = upper ? c.random.pick({"U", "u"}) : c.random.pick({"L", "l", "x"});

    const bool reads = !is_zero(alpha);
    kernel(uplo, c.n, nb, alpha, reads ? a.data() : nullptr, a, reads ? x.data() : nullptr, x, beta,
           y);
    const T* const first = y.data() + (y.inc() < 0 && c.n > 0 ? (1 - c.n) * y.inc() : 0);
    for (int i = 0; c.n > 0 && nb > 0 && i < c.n; ++i) {
      const T ours = first[i * y.inc()];
      Exact model = is_zero(beta) ? Exact(0) : exact(beta) * exact(y.at(i));
      long double magnitudes = size_of(model);
      if (reads) {
        const RowSum<T> row(a, x, i, c.n, PanelColumns(upper, c.n, nb));
        model += exact(alpha) * row.sum;
        magnitudes += size_of(exact(alpha)) * row.magnitudes;
      } else if (is_zero(beta)) {
        EXPECT_TRUE(same_bits(ours, T{})) << "element " << i << " is not +0";
      }
      const long double eps = std::numeric_limits<Real<T>>::epsilon();
      EXPECT_TRUE(is_near(ours, model, 2 * (c.n + 2) * eps * magnitudes)) << "element " << i;
      y.at(i) = ours;
    }
    EXPECT_EQ(a.difference(), "");
    expect_model(x, y);
  });
}

TYPED_TEST(SymmetricProduct, Full) {
  using T = TypeParam;
  check_product<T>(Storage::full, false,
                   [](const char* uplo, int n, int, T alpha, T* p, SymmetricMatrix<T>& a, T* x,
                      Vector<T>& vx, T beta, Vector<T>& y) {
                     SymmetricEntries<T>::symv(uplo, &n, &alpha, p, a.lda_address(), x,
                                               vx.inc_address(), &beta, y.data(), y.inc_address());
                   });
}

TYPED_TEST(SymmetricProduct, Panel) {
  using T = TypeParam;
  check_product<T>(Storage::full, true,
                   [](const char* uplo, int n, int nb, T alpha, T* p, SymmetricMatrix<T>& a, T* x,
                      Vector<T>& vx, T beta, Vector<T>& y) {
                     SymmetricEntries<T>::symv_nb(uplo, &n, &nb, &alpha, p, a.lda_address(), x,
                                                  vx.inc_address(), &beta, y.data(),
                                                  y.inc_address());
                   });
}

TYPED_TEST(SymmetricProduct, Band) {
  using T = TypeParam;
  check_product<T>(Storage::band, false,
                   [](const char* uplo, int n, int, T alpha, T* p, SymmetricMatrix<T>& a, T* x,
                      Vector<T>& vx, T beta, Vector<T>& y) {
                     SymmetricEntries<T>::sbmv(uplo, &n, a.k_address(), &alpha, p, a.lda_address(),
                                               x, vx.inc_address(), &beta, y.data(),
                                               y.inc_address());
                   });
}

TYPED_TEST(SymmetricProduct, Packed) {
  using T = TypeParam;
  check_product<T>(Storage::packed, false,
                   [](const char* uplo, int n, int, T alpha, T* p, SymmetricMatrix<T>&, T* x,
                      Vector<T>& vx, T beta, Vector<T>& y) {
                     SymmetricEntries<T>::spmv(uplo, &n, &alpha, p, x, vx.inc_address(), &beta,
                                               y.data(), y.inc_address());
                   });
}

// Large enough for the fetches ahead, a size that fills no group and no register.
TYPED_TEST(SymmetricProduct, LargerThanTheCache) {
  using T = TypeParam;
  const int n = 531, one = 1;
  const T beta{};
  for (const bool upper : {false, true}) {
    Random random(upper + 1);
    const T alpha = random_value<T>(random, Values::plain);
    SymmetricMatrix<T> a(random, Storage::full, upper, n, Values::plain, true);
    Vector<T> x(random, n, 1, 0, Against::back, Values::plain);
    Vector<T> y(random, n, 1, 8, Against::back, Values::special);
    SymmetricEntries<T>::symv(upper ? "U" : "L", &n, &alpha, a.data(), a.lda_address(), x.data(),
                              &one, &beta, y.data(), &one);
    for (int i = 0; i < n; ++i) {
      const RowSum<T> row(a, x, i, n, PanelColumns(upper, n, n));
      const long double eps = std::numeric_limits<Real<T>>::epsilon();
      ASSERT_TRUE(is_near(y.data()[i], exact(alpha) * row.sum,
                          2 * n * eps * size_of(exact(alpha)) * row.magnitudes))
          << "element " << i;
    }
  }
}

template <class T>
struct SymmetricPanel : testing::Test {};
TYPED_TEST_SUITE(SymmetricPanel, Real2);

// The sums of one group of columns, element by element.
template <class T>
struct GroupModel {
  static constexpr int width = 16 / sizeof(T);
  SymmetricMatrix<T>& a;
  Vector<T>&x, &y;
  int j, columns;
  T t[4], sum[4][width] = {};

  GroupModel(SymmetricMatrix<T>& a, Vector<T>& x, Vector<T>& y, int j, int columns, int n, T alpha)
      : a(a), x(x), y(y), j(j), columns(columns) {
    for (int c = 0; c < columns; ++c) t[c] = alpha * x.at(j + c);
    for (int r = 0; r < columns; ++r) block_row(r);
    const int first = a.upper() ? 0 : j + columns, last = a.upper() ? j : n;
    const int whole = (last - first) / width * width;
    for (int i = first; i < last; ++i) row(i, i - first < whole ? (i - first) % width : 0);
    for (int c = 0; c < columns; ++c) y.at(j + c) = total(sum[c]) * alpha + y.at(j + c);
  }

  void row(int i, int lane) {
    for (int c = 0; c < columns; ++c) {
      y.at(i) = y.at(i) + a.at(i, j + c) * t[c];
      sum[c][lane] = sum[c][lane] + a.at(i, j + c) * x.at(i);
    }
  }
  // Where a register of the block holds any stored element of a column, the rows beyond the
  // triangle add +0.
  void block_row(int r) {
    const int step = columns == 1 ? 1 : width, begin = r / step * step;
    for (int c = 0; c < columns; ++c) {
      bool any = false;
      for (int k = begin; k < begin + step; ++k) any |= a.stores(j + k, j + c);
      const bool stored = a.stores(j + r, j + c);
      if (any) y.at(j + r) = y.at(j + r) + (stored ? a.at(j + r, j + c) * t[c] : T(0));
      if (stored && r != c)
        sum[c][r % width] = sum[c][r % width] + a.at(j + r, j + c) * x.at(j + r);
    }
  }
  static T total(const T* s) {
    if constexpr (width == 4)
      return (s[0] + s[2]) + (s[1] + s[3]);
    else
      return s[0] + s[1];
  }
};

TYPED_TEST(SymmetricPanel, BitForBit) {
  using T = TypeParam;
  for_cases([](Case& c) {
    c.n = c.random.between(0, 3) ? std::min(c.n, 30) : c.n / 4;
    const int nb = c.random.between(-1, std::max(1, c.n + 2));
    const bool upper = c.random.between(0, 1);
    const T alpha = special_factor<T>(c.random), beta = special_factor<T>(c.random);
    SymmetricMatrix<T> a(c.random, Storage::full, upper, c.n, c.values, true);
    const bool unit = c.random.between(0, 1);
    auto x = c.vector<T>(increment(c.random, unit)), y = c.vector<T>(increment(c.random, unit));
    c.text += (upper ? " upper nb=" : " lower nb=") + std::to_string(nb);
    SymmetricEntries<T>::symv_nb(upper ? "U" : "L", &c.n, &nb, &alpha, a.data(), a.lda_address(),
                                 x.data(), x.inc_address(), &beta, y.data(), y.inc_address());
    if (c.n > 0 && nb > 0) {
      if (beta != 1)
        for (int i = 0; i < c.n; ++i) y.at(i) = is_zero(beta) ? T(0) : y.at(i) * beta;
      const PanelColumns panel(upper, c.n, nb);
      int j = panel.first;
      if (!is_zero(alpha)) {
        for (; j + 4 <= panel.last; j += 4) GroupModel<T>(a, x, y, j, 4, c.n, alpha);
        for (; j < panel.last; ++j) GroupModel<T>(a, x, y, j, 1, c.n, alpha);
      }
    }
    EXPECT_EQ(a.difference(), "");
    expect_model(x, y);
  });
}

}  // namespace
}  // namespace jex::test
