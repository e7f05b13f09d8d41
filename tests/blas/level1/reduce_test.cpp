// Reductions against the scalar model of their order of sums, bit for bit; the complex products,
// whose order is free, against a bound and against themselves at other places.

#include "blas/level1/level1.h"

#include <functional>

namespace jex::test {
namespace {

// Blocks as long as the number of sums, then halves of that; term j of a block goes to sum j, peeled
// terms to the first. The upper half of the sums is added to the lower until one is left.
template <class R>
R told_sum(const std::vector<R>& terms, int peel, int count = 8) {
  R sum[16] = {};
  const int n = int(terms.size());
  int i = 0;
  for (; i < peel; ++i) sum[0] += terms[i];
  for (int block = count; block; block /= 2)
    for (bool again = true; again && n - i >= block; again = block == count, i += block)
      for (int j = 0; j < block; ++j) sum[j] += terms[i + j];
  for (int half = count / 2; half; half /= 2)
    for (int j = 0; j < half; ++j) sum[j] += sum[j + half];
  return sum[0];
}

// Elements before a 16-byte boundary that all the vectors reach together.
template <class T>
int told_peel(int n, std::initializer_list<const T*> vectors) {
  for (int peel = 0; peel < 16 / int(sizeof(T)) && peel <= n; ++peel) {
    bool together = true;
    for (const T* p : vectors) together = together && uintptr_t(p + peel) % 16 == 0;
    if (together) return peel;
  }
  return 0;
}
// A peel that would outrun the vector takes all of it, with the same result.
template <class T>
int told_peel_short(int n, std::initializer_list<const T*> vectors) {
  return n < 4 ? std::min(n, told_peel<T>(4, vectors)) : told_peel<T>(n, vectors);
}

template <class T>
struct Level1Sum : testing::Test {};
TYPED_TEST_SUITE(Level1Sum, Real2);

// Both increments 1 or both -1 pair the stored elements in order; other walks have no peel.
template <class R, class T>
R told_dot(const Case& c, Vector<T>& x, Vector<T>& y) {
  const bool unit = x.inc() == y.inc() && std::abs(x.inc()) == 1;
  const bool reversed = unit && x.inc() == -1;
  std::vector<R> terms;
  for (int i = 0; i < c.n; ++i) {
    const int k = reversed ? c.n - 1 - i : i;
    terms.push_back(R(x.at(k)) * R(y.at(k)));
  }
  return told_sum(terms, unit ? told_peel_short<T>(c.n, {x.data(), y.data()}) : 0);
}

TYPED_TEST(Level1Sum, Dot) {
  using T = TypeParam;
  for_cases([](Case& c) {
    auto x = c.vector<T>(), y = c.vector<T>();
    const T ours = Entries<T>::dot(&c.n, x.data(), x.inc_address(), y.data(), y.inc_address());
    EXPECT_PRED2(same_bits<T>, ours, (told_dot<T, T>(c, x, y)));
    expect_model(x, y);
  });
}

TEST(Level1Sum, DotOfFloatsInDouble) {
  for_cases([](Case& c) {
    const float sb = factor<float>(c);
    auto x = c.vector<float>(), y = c.vector<float>();
    const double model = told_dot<double>(c, x, y);
    EXPECT_PRED2(same_bits<double>, model,
                 jex_blas_dsdot(&c.n, x.data(), x.inc_address(), y.data(), y.inc_address()));
    EXPECT_PRED2(same_bits<float>, float(model + sb),
                 jex_blas_sdsdot(&c.n, &sb, x.data(), x.inc_address(), y.data(), y.inc_address()));
  });
}

// The reals of a vector as they are stored (unit increments) or walked.
template <class T>
std::vector<Real<T>> reals(const Case& c, Vector<T>& x) {
  std::vector<Real<T>> all;
  for (int i = 0; i < c.n; ++i) {
    const T& a = x.at(x.inc() == -1 ? c.n - 1 - i : i);
    const auto* part = reinterpret_cast<const Real<T>*>(&a);
    all.insert(all.end(), part, part + Parts<T>::count);
  }
  return all;
}

template <class T>
struct Level1Norm : testing::Test {};
TYPED_TEST_SUITE(Level1Norm, All4);

TYPED_TEST(Level1Norm, Asum) {
  using T = TypeParam;
  using R = Real<T>;
  for_cases([](Case& c) {
    auto x = c.vector<T>();
    std::vector<R> terms = reals(c, x);
    for (R& term : terms) term = std::fabs(term);
    const R* first = reinterpret_cast<const R*>(x.data());
    const int peel =
        std::abs(x.inc()) == 1 ? told_peel_short<R>(int(terms.size()), {first}) : 0;
    EXPECT_PRED2(same_bits<R>, told_sum(terms, peel, 64 / sizeof(R)),
                 Entries<T>::asum(&c.n, x.data(), x.inc_address()));
    expect_model(x);
  });
}

// Stored elements: double in blocks of four with the rest added after the total, float widened and
// peeled. Spaced elements: two sums.
template <class T>
Real<T> told_norm(const Case& c, Vector<T>& x) {
  std::vector<double> terms;
  for (const Real<T> a : reals(c, x)) terms.push_back(double(a) * double(a));
  const int count = int(terms.size());
  double sum = 0;
  if (std::abs(x.inc()) != 1) {
    double pair[2] = {};
    for (int i = 0; i < count; ++i) pair[i % 2] += terms[i];
    sum = pair[0] + pair[1];
  } else if constexpr (std::is_same_v<Real<T>, float>) {
    const auto* first = reinterpret_cast<const float*>(x.data());
    sum = told_sum(terms, told_peel_short<float>(count, {first}));
  } else {
    sum = told_sum(std::vector(terms.begin(), terms.begin() + count / 4 * 4), 0);
    for (int i = count / 4 * 4; i < count; ++i) sum += terms[i];
  }
  return Real<T>(std::sqrt(sum));
}

TYPED_TEST(Level1Norm, Nrm2) {
  using T = TypeParam;
  for_cases([](Case& c) {
    auto x = c.vector<T>();
    EXPECT_PRED2(same_bits<Real<T>>, told_norm(c, x),
                 Entries<T>::nrm2(&c.n, x.data(), x.inc_address()));
    expect_model(x);
  });
}

TEST(Level1Norm, OverflowsOnlyInDouble) {
  const int two = 2, four = 4, one = 1, zero = 0;
  const double big[2] = {1e200, 1e200}, tiny[2] = {1e-200, 1e-200}, single = -3;
  const float large[2] = {1e30f, 1e30f};
  EXPECT_TRUE(std::isinf(jex_blas_dnrm2(&two, big, &one)));
  EXPECT_EQ(jex_blas_dnrm2(&two, tiny, &one), 0);
  EXPECT_EQ(jex_blas_dnrm2(&four, &single, &zero), 6);
  EXPECT_FLOAT_EQ(jex_blas_snrm2(&two, large, &one), 1.41421356e30f);
}

TEST(Level1Norm, Dcabs1) {
  const jex_dcomplex x = {-3, 4};
  EXPECT_EQ(jex_blas_dcabs1(&x), 7);
}

template <class T>
struct Level1ComplexDot : testing::Test {};
TYPED_TEST_SUITE(Level1ComplexDot, Complex2);

// |error| <= (n + 2) eps sum |x||y|, and the same bits wherever the same elements lie.
TYPED_TEST(Level1ComplexDot, BoundAndPlace) {
  using T = TypeParam;
  using R = Real<T>;
  for_cases([](Case& c) {
    c.values = Values::plain;
    const bool conjugated = c.random.between(0, 1);
    const auto dot = conjugated ? Entries<T>::dotc : Entries<T>::dotu;
    auto x = c.vector<T>(), y = c.vector<T>();
    const T ours = dot(&c.n, x.data(), x.inc_address(), y.data(), y.inc_address());
    long double re = 0, im = 0, size = 0;
    std::vector<T> dense_x, dense_y;
    const bool reversed = x.inc() == -1 && y.inc() == -1;
    for (int i = 0; i < c.n; ++i) {
      const int k = reversed ? c.n - 1 - i : i;
      const T a = conjugated ? conjugate(x.at(k)) : x.at(k), b = y.at(k);
      re += (long double)a.re * b.re - (long double)a.im * b.im;
      im += (long double)a.re * b.im + (long double)a.im * b.re;
      size += magnitude(a) * magnitude(b);
      dense_x.push_back(x.at(k));
      dense_y.push_back(b);
    }
    const long double bound = (c.n + 2) * std::numeric_limits<R>::epsilon() * size;
    EXPECT_TRUE(std::fabs(ours.re - re) <= bound && std::fabs(ours.im - im) <= bound);
    const int one = 1;
    EXPECT_PRED2(same_bits<T>, ours, dot(&c.n, dense_x.data(), &one, dense_y.data(), &one));
    expect_model(x, y);
  });
}

TYPED_TEST(Level1ComplexDot, Conjugation) {
  using T = TypeParam;
  const T x = {1, 2}, y = {3, 4};
  const int one = 1;
  const T u = Entries<T>::dotu(&one, &x, &one, &y, &one), h = Entries<T>::dotc(&one, &x, &one, &y, &one);
  EXPECT_TRUE(u.re == -5 && u.im == 10 && h.re == 11 && h.im == -2);
}

}  // namespace
}  // namespace jex::test
