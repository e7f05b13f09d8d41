// The core's product by a triangle, against a plain sum in long double, and through the module.

#include <jex/core.h>
#include <jex/core_imports.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/dlfcn.h"

namespace {

template <class T>
using Entry = void (*)(const char*, const char*, const char*, const char*, const jex_int*,
                       const jex_int*, const T*, const T*, const jex_int*, T*, const jex_int*);

// By name the linker may choose the module's entry: this is the core's own.
template <class T>
Entry<T> core_entry() {
  void* core = dlopen(JEX_CORE_FILE, RTLD_NOW | RTLD_NOLOAD);
  return reinterpret_cast<Entry<T>>(
      dlsym(core, sizeof(T) == 8 ? "jex_blas_xdtrmm_4vek" : "jex_blas_xstrmm_4vek"));
}

template <class T>
Entry<T> module_entry() {
  if constexpr (sizeof(T) == 8)
    return jex::module()->jex_blas_xdtrmm_4vek;
  else
    return jex::module()->jex_blas_xstrmm_4vek;
}

template <class T>
constexpr T nan_of = std::numeric_limits<T>::quiet_NaN();

// A problem whose every element that must not be read or written is NaN.
template <class T>
struct Problem {
  char side, uplo, trans, diag;
  jex_int m, n;
  T alpha;
  jex_int order = side == 'L' ? m : n, lda = order + 2, ldb = m + 3;
  std::vector<T> a = std::vector<T>(size_t(lda) * order, nan_of<T>);
  std::vector<T> b = std::vector<T>(size_t(ldb) * n, nan_of<T>);

  Problem(char side, char uplo, char trans, char diag, int m, int n, T alpha)
      : side(side), uplo(uplo), trans(trans), diag(diag), m(m), n(n), alpha(alpha) {
    std::mt19937 random(m * 31 + n);
    std::uniform_real_distribution<T> value(-1, 1);
    for (int j = 0; j < order; ++j)
      for (int i = 0; i < order; ++i)
        if (stored(i, j)) a[i + j * lda] = value(random);
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) b[i + j * ldb] = value(random);
  }

  bool stored(int i, int j) const { return i == j ? diag == 'N' : uplo == 'U' ? i < j : i > j; }

  // Element (i, j) of op(A).
  long double op(int i, int j) const {
    if (trans != 'N') std::swap(i, j);
    return stored(i, j) ? a[i + j * lda] : i == j ? 1 : 0;
  }

  // Element (i, j) of the result, and the sum of magnitudes that bounds its error.
  std::pair<long double, long double> expected(int i, int j) const {
    long double sum = 0, magnitude = 0;
    for (int k = 0; k < order; ++k) {
      const long double x = side == 'L' ? op(i, k) * b[k + j * ldb] : b[i + k * ldb] * op(k, j);
      sum += x;
      magnitude += std::fabs(x);
    }
    return {alpha * sum, std::fabs(alpha) * magnitude};
  }

  std::vector<T> result(Entry<T> entry) const {
    std::vector<T> out = b;
    entry(&side, &uplo, &trans, &diag, &m, &n, &alpha, a.data(), &lda, out.data(), &ldb);
    return out;
  }

  std::string name() const {
    return std::string{side, uplo, trans, diag} + " m=" + std::to_string(m) +
           " n=" + std::to_string(n) + " alpha=" + std::to_string(alpha);
  }
};

template <class T>
std::vector<T> strip(const std::vector<T>& b, const Problem<T>& p, int j) {
  return {b.begin() + j * p.ldb, b.begin() + j * p.ldb + p.m};
}

template <class T, class Check>
void for_all(Check check) {
  for (char side : {'L', 'R'})
    for (char uplo : {'U', 'L'})
      for (char trans : {'N', 'T', 'C'})
        for (char diag : {'N', 'U'})
          for (int m : {1, 2, 3, 4, 5, 8, 11, 23})
            for (int n : {1, 2, 3, 4, 5, 7, 12, 22})
              for (T alpha : {T(1), T(-0.75)})
                check(Problem<T>(side, uplo, trans, diag, m, n, alpha));
}

template <class T>
class Trmm4Vek : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(Trmm4Vek, Reals);

TYPED_TEST(Trmm4Vek, EqualsThePlainSum) {
  using T = TypeParam;
  const auto entry = core_entry<T>();
  for_all<T>([&](const Problem<T>& p) {
    const std::vector<T> out = p.result(entry);
    for (int j = 0; j < p.n; ++j) {
      for (int i = 0; i < p.m; ++i) {
        const auto [value, magnitude] = p.expected(i, j);
        const long double bound =
            (p.order + 2) * (long double)std::numeric_limits<T>::epsilon() * magnitude;
        ASSERT_TRUE(std::fabs(out[i + j * p.ldb] - value) <= bound)
            << p.name() << " (" << i << "," << j << "): " << out[i + j * p.ldb] << ", not "
            << double(value);
      }
      for (int i = p.m; i < p.ldb; ++i)
        ASSERT_EQ(memcmp(&out[i + j * p.ldb], &p.b[i + j * p.ldb], sizeof(T)), 0)
            << p.name() << ": wrote below column " << j;
    }
  });
}

// A vector's result does not depend on whether it was one of four or one of the rest.
TYPED_TEST(Trmm4Vek, SameBitsAloneAndAmongFour) {
  using T = TypeParam;
  const auto entry = core_entry<T>();
  for_all<T>([&](const Problem<T>& p) {
    if (p.side == 'R') return;
    const std::vector<T> together = p.result(entry);
    for (int j = 0; j < p.n; ++j) {
      Problem<T> one = p;
      one.n = 1;
      one.b.assign(p.b.begin() + j * p.ldb, p.b.begin() + (j + 1) * p.ldb);
      ASSERT_EQ(strip(one.result(entry), p, 0), strip(together, p, j)) << p.name() << " " << j;
    }
  });
}

TYPED_TEST(Trmm4Vek, ModulePassesTheCallOn) {
  using T = TypeParam;
  ASSERT_NE(jex::module(), nullptr) << jex_core_error();
  for_all<T>([](const Problem<T>& p) {
    const std::vector<T> core = p.result(core_entry<T>()), module = p.result(module_entry<T>());
    ASSERT_EQ(memcmp(core.data(), module.data(), core.size() * sizeof(T)), 0) << p.name();
    if (p.alpha != 1) {
      ASSERT_NE(memcmp(core.data(), p.b.data(), core.size() * sizeof(T)), 0) << p.name();
    }
  });
}

TYPED_TEST(Trmm4Vek, ZeroAlphaReadsNothing) {
  using T = TypeParam;
  for (char side : {'L', 'R'}) {
    Problem<T> p(side, 'U', 'N', 'N', 5, 6, T(0));
    std::fill(p.a.begin(), p.a.end(), nan_of<T>);
    std::fill(p.b.begin(), p.b.end(), nan_of<T>);
    const std::vector<T> out = p.result(core_entry<T>());
    for (int j = 0; j < p.n; ++j) {
      EXPECT_EQ(strip(out, p, j), std::vector<T>(p.m)) << side;
      EXPECT_TRUE(std::isnan(out[p.m + j * p.ldb])) << side;
    }
  }
}

TYPED_TEST(Trmm4Vek, EmptyProblemsAndWords) {
  using T = TypeParam;
  const auto entry = core_entry<T>();
  const T one = 1;
  for (auto [m, n] : {std::pair<jex_int, jex_int>{0, 3}, {3, 0}, {-1, 3}, {3, -1}})
    entry("L", "U", "N", "N", &m, &n, &one, nullptr, &m, nullptr, &m);
  // Lower case and whole words.
  const Problem<T> p('R', 'L', 'T', 'U', 6, 5, T(2));
  std::vector<T> out = p.b;
  entry("right", "lower", "transpose", "unit", &p.m, &p.n, &p.alpha, p.a.data(), &p.lda, out.data(),
        &p.ldb);
  EXPECT_EQ(memcmp(out.data(), p.result(entry).data(), out.size() * sizeof(T)), 0);
}

}  // namespace
