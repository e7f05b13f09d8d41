// General matrices: gemv and ger bit for bit against their models, all products against long
// double.

#include "blas/level1/level1.h"
#include "blas/level2/general_model.h"

#include "support/exact.h"

namespace jex::test {
namespace {

template <class T>
struct Level2General : testing::Test {};
TYPED_TEST_SUITE(Level2General, All4);

// alpha and beta: 0, -0, 1, -1, random, NaN.
template <class T>
T scalar(Case& c) {
  using R = Real<T>;
  const R special =
      c.random.pick({R(0), R(-0.0), R(1), R(-1), R(0.75), std::numeric_limits<R>::quiet_NaN()});
  if (c.random.between(0, 2) == 0) return random_value<T>(c.random, Values::plain);
  if constexpr (is_complex<T>)
    return {special, c.random.pick({R(0), R(-0.0), R(1)})};
  else
    return special;
}

struct Shape {
  int m, n;
};
Shape shape(Case& c) {
  switch (c.random.between(0, 9)) {
    case 3:  // where the loops over registers begin
      return {c.random.between(7, 20), c.random.between(0, 12)};
    case 0:
      return {c.random.between(0, 3), c.random.between(0, 3)};
    case 1:
      return {c.random.between(60, 600), c.random.between(1, 9)};
    case 2:
      return {c.random.between(1, 9), c.random.between(60, 200)};
    default:
      return {c.random.between(0, 70), c.random.between(0, 70)};
  }
}

char trans_letter(Case& c) {
  const char trans = c.random.pick({'N', 'n', 'N', 'n', 'T', 't', 'C', 'c', 'x', '\0'});
  c.text.append(" trans=").push_back(trans);
  return trans;
}

bool is_plain(char trans) { return trans == 'N' || trans == 'n'; }

// x and y of a product; increments of 1 two times out of three.
template <class T>
struct Operands {
  Vector<T> x, y;
};
template <class T>
Operands<T> operands(Case& c, bool plain, Shape s) {
  const bool unit = c.random.between(0, 2);
  const auto vector = [&](int n) {
    c.n = n;
    return c.vector<T>(unit ? 1 : c.random.pick({1, 2, 3, -1, -2}));
  };
  return {.x = vector(plain ? s.n : s.m), .y = vector(plain ? s.m : s.n)};
}

template <class T>
void check_gemv(Case& c, Shape s) {
  const char trans = trans_letter(c);
  const T alpha = scalar<T>(c), beta = scalar<T>(c);
  c.text += " m=" + std::to_string(s.m) + " n=" + std::to_string(s.n);
  GeneralMatrix<T> a(c.random, s.m, s.n, c.values);
  auto [x, y] = operands<T>(c, is_plain(trans), s);
  GeneralEntries<T>::gemv(&trans, &s.m, &s.n, &alpha, a.data(), a.lda_address(), x.data(),
                          x.inc_address(), &beta, y.data(), y.inc_address());
  gemv_model(trans, a, alpha, x, beta, y);
  expect_model(a, x, y);
}

TYPED_TEST(Level2General, Gemv) {
  for_cases([](Case& c) { check_gemv<TypeParam>(c, shape(c)); });
}

// Beyond the second-level cache the kernels take other ways with the same sums.
TYPED_TEST(Level2General, GemvOfLargeMatrices) {
  for (const unsigned seed : case_seeds(12)) {
    Case c(seed, longest);
    const int n = c.random.between(530, 560);
    check_gemv<TypeParam>(c, {n + c.random.between(-9, 9), n});
    if (testing::Test::HasFailure()) FAIL() << c.text;
  }
}

// alpha = 0 reads neither matrix nor x, beta = 0 does not read y, m or n = 0 reads nothing at all.
TYPED_TEST(Level2General, GemvReadsNothingInVain) {
  using T = TypeParam;
  const int zero = 0, five = 5, one = 1;
  const T none = {}, unity = [] {
    T t{};
    reinterpret_cast<Real<T>&>(t) = 1;
    return t;
  }();
  const T nan = multiply(unity, std::numeric_limits<Real<T>>::quiet_NaN());
  T* const nowhere = nullptr;
  for (const char* trans : {"N", "T"}) {
    T y[5];
    std::fill(y, y + 5, nan);
    GeneralEntries<T>::gemv(trans, &five, &five, &none, nowhere, &five, nowhere, &one, &none, y,
                            &one);
    for (const T& e : y) EXPECT_TRUE(same_bits(e, T{}));
    const auto untouched = [&](const int& m, const int& n, const T& alpha, const T& beta) {
      GeneralEntries<T>::gemv(trans, &m, &n, &alpha, nowhere, &five, nowhere, &one, &beta, nowhere,
                              &one);
    };
    untouched(zero, five, unity, none);
    untouched(five, zero, unity, none);
    untouched(five, five, none, unity);
  }
}

// Sums of negative zeros stay negative, unless lanes that started at +0 are added.
TEST(Level2GeneralReal, GemvKeepsTheSignOfZero) {
  for (int m = 1; m < 20; ++m) {
    Random random(m);
    GeneralMatrix<double> a(random, m, 7, Values::plain);
    Vector<double> x(random, m, 1, 0, Against::back, Values::plain);
    Vector<double> y(random, 7, 1, 0, Against::back, Values::plain);
    for (int j = 0; j < 7; ++j) {
      for (int i = 0; i < m; ++i) a.data()[&a.at(i, j) - &a.at(0, 0)] = a.at(i, j) = -0.0;
      y.data()[j] = y.at(j) = -0.0;
    }
    for (int i = 0; i < m; ++i) x.data()[i] = x.at(i) = 1;
    const double one = 1;
    const int n = 7, inc = 1;
    jex_blas_dgemv("T", &m, &n, &one, a.data(), a.lda_address(), x.data(), &inc, &one, y.data(),
                   &inc);
    gemv_model('T', a, one, x, one, y);
    expect_model(a, x, y);
  }
}

// The product in long double, and an error of a few roundings for each term of the sums.
template <class T>
void check_accuracy(Case& c, bool band) {
  const char trans = trans_letter(c);
  const bool plain = is_plain(trans);
  const Shape s = shape(c);
  const T alpha = random_value<T>(c.random, Values::plain);
  const T beta = random_value<T>(c.random, Values::plain);
  c.values = Values::plain;
  GeneralMatrix<T> a(c.random, s.m, s.n, c.values, band);
  c.text += " m=" + std::to_string(s.m) + " n=" + std::to_string(s.n) +
            " kl=" + std::to_string(a.kl) + " ku=" + std::to_string(a.ku);
  auto [x, y] = operands<T>(c, plain, s);
  std::vector<Exact> product(c.n), size(c.n);
  for (int j = 0; j < s.n; ++j) {
    for (int i = 0; i < s.m; ++i) {
      if (!a.stores(i, j)) continue;
      const bool conj = is_complex<T> && (trans == 'C' || trans == 'c');
      const Exact e = conj ? std::conj(exact(a.at(i, j))) : exact(a.at(i, j));
      const Exact f = exact(alpha) * exact(x.at(plain ? j : i));
      product[plain ? i : j] += e * f;
      size[plain ? i : j] += size_of(e) * size_of(f);
    }
  }
  if (band)
    GeneralEntries<T>::gbmv(&trans, &s.m, &s.n, &a.kl, &a.ku, &alpha, a.data(), a.lda_address(),
                            x.data(), x.inc_address(), &beta, y.data(), y.inc_address());
  else
    GeneralEntries<T>::gemv(&trans, &s.m, &s.n, &alpha, a.data(), a.lda_address(), x.data(),
                            x.inc_address(), &beta, y.data(), y.inc_address());
  for (int i = 0; i < c.n && s.m > 0 && s.n > 0; ++i) {
    const int place = (y.inc() < 0 ? (1 - c.n) * y.inc() : 0) + i * y.inc();
    const T ours = y.data()[place];
    const Exact scaled = exact(beta) * exact(y.at(i));
    const long double bound = (std::max(s.m, s.n) + 8) * 2 *
                              std::numeric_limits<Real<T>>::epsilon() *
                              (size[i].real() + size_of(scaled));
    EXPECT_TRUE(size_of(exact(ours) - scaled - product[i]) <= bound) << "element " << i;
    y.at(i) = ours;
  }
  expect_model(a, x, y);
}

TYPED_TEST(Level2General, GemvIsAccurate) {
  for_cases([](Case& c) { check_accuracy<TypeParam>(c, false); });
}

TYPED_TEST(Level2General, GbmvIsAccurate) {
  for_cases([](Case& c) { check_accuracy<TypeParam>(c, true); });
}

// The scaling step and the quick returns of gbmv; NaN in y must not survive beta = 0.
TYPED_TEST(Level2General, GbmvScales) {
  using T = TypeParam;
  for_cases([](Case& c) {
    const char trans = trans_letter(c);
    const Shape s = shape(c);
    const T alpha = {}, beta = scalar<T>(c);
    GeneralMatrix<T> a(c.random, s.m, s.n, Values::special, true);
    auto [x, y] = operands<T>(c, is_plain(trans), s);
    GeneralEntries<T>::gbmv(&trans, &s.m, &s.n, &a.kl, &a.ku, &alpha, a.data(), a.lda_address(),
                            x.data(), x.inc_address(), &beta, y.data(), y.inc_address());
    if (s.m > 0 && s.n > 0) scale_model(y, c.n, beta);
    expect_model(a, x, y);
  });
}

template <class T>
void check_ger(Case& c, Shape s, bool conj) {
  const T alpha = scalar<T>(c);
  c.text += " m=" + std::to_string(s.m) + " n=" + std::to_string(s.n);
  GeneralMatrix<T> a(c.random, s.m, s.n, c.values);
  c.n = s.m;
  auto x = c.vector<T>();
  c.n = s.n;
  auto y = c.vector<T>();
  (conj ? GeneralEntries<T>::gerc : GeneralEntries<T>::geru)(
      &s.m, &s.n, &alpha, x.data(), x.inc_address(), y.data(), y.inc_address(), a.data(),
      a.lda_address());
  if (!is_zero(alpha)) {
    for (int j = 0; j < s.n; ++j) {
      const T t = multiply(alpha, conj ? conjugate(y.at(j)) : y.at(j));
      for (int i = 0; i < s.m; ++i) a.at(i, j) = add(a.at(i, j), multiply(x.at(i), t));
    }
  }
  expect_model(a, x, y);
}

TYPED_TEST(Level2General, Ger) {
  for_cases([](Case& c) { check_ger<TypeParam>(c, shape(c), c.random.between(0, 1)); });
}

TYPED_TEST(Level2General, GerOfLargeMatrices) {
  for (const unsigned seed : case_seeds(8)) {
    Case c(seed, longest);
    check_ger<TypeParam>(c, {c.random.between(530, 560), 550}, c.random.between(0, 1));
    if (testing::Test::HasFailure()) FAIL() << c.text;
  }
}

}  // namespace
}  // namespace jex::test
