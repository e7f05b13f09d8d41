// Kernels that change vectors element by element, bit for bit against the loop over the walk.

#include "blas/level1/level1.h"

namespace jex::test {
namespace {

template <class T>
struct Level1Update : testing::Test {};
TYPED_TEST_SUITE(Level1Update, All4);

TYPED_TEST(Level1Update, Axpy) {
  using T = TypeParam;
  for_cases([](Case& c) {
    const T alpha = factor<T>(c);
    auto x = c.vector<T>(), y = c.vector<T>();
    Entries<T>::axpy(&c.n, &alpha, x.data(), x.inc_address(), y.data(), y.inc_address());
    if (!is_zero(alpha))
      for (int i = 0; i < c.n; ++i) y.at(i) = add(y.at(i), multiply(x.at(i), alpha));
    expect_model(x, y);
  });
}

template <class T, class A, class Scal>
void check_scal(Scal scal) {
  for_cases([&](Case& c) {
    const A alpha = factor<A>(c);
    auto x = c.vector<T>();
    scal(&c.n, &alpha, x.data(), x.inc_address());
    for (int i = 0; i < c.n; ++i) x.at(i) = multiply(x.at(i), alpha);
    expect_model(x);
  });
}

TYPED_TEST(Level1Update, Scal) {
  check_scal<TypeParam, TypeParam>(Entries<TypeParam>::scal);
  if constexpr (is_complex<TypeParam>)
    check_scal<TypeParam, Real<TypeParam>>(Entries<TypeParam>::real_scal);
}

TYPED_TEST(Level1Update, CopyAndSwap) {
  using T = TypeParam;
  for_cases([](Case& c) {
    auto x = c.vector<T>(), y = c.vector<T>();
    const bool swapping = c.random.between(0, 1);
    (swapping ? Entries<T>::swap : (decltype(Entries<T>::swap))Entries<T>::copy)(
        &c.n, x.data(), x.inc_address(), y.data(), y.inc_address());
    for (int i = 0; i < c.n; ++i) {
      const T old = y.at(i);
      y.at(i) = x.at(i);
      if (swapping) x.at(i) = old;
    }
    expect_model(x, y);
  });
}

// Vectors long enough for the string copy, from every offset; guard pages on both sides.
TYPED_TEST(Level1Update, CopyOfLongVectors) {
  using T = TypeParam;
  const int n = 20000 / sizeof(T) + 3, one = 1;
  for (const size_t offset : {0, 4, 8, 12}) {
    Random random(offset + 1);
    Vector<T> x(random, n, 1, offset, Against::back, Values::plain);
    Vector<T> y(random, n, 1, 12 - offset, Against::front, Values::plain);
    Entries<T>::copy(&n, x.data(), &one, y.data(), &one);
    for (int i = 0; i < n; ++i) y.at(i) = x.at(i);
    expect_model(x, y);
  }
}

template <class T, class S, class Rot>
void check_rot(Rot rot) {
  for_cases([&](Case& c) {
    const Real<T> cosine = factor<Real<T>>(c);
    const S sine = factor<S>(c);
    auto x = c.vector<T>(), y = c.vector<T>();
    rot(&c.n, x.data(), x.inc_address(), y.data(), y.inc_address(), &cosine, &sine);
    for (int i = 0; i < c.n; ++i) {
      const T old = x.at(i), second = y.at(i);
      const T ynew = subtract(multiply(second, cosine), multiply(old, conjugate(sine)));
      x.at(i) = add(multiply(old, cosine), multiply(second, sine));
      y.at(i) = ynew;
    }
    expect_model(x, y);
  });
}

TYPED_TEST(Level1Update, Rot) {
  check_rot<TypeParam, TypeParam>(Entries<TypeParam>::rot);
  if constexpr (is_complex<TypeParam>)
    check_rot<TypeParam, Real<TypeParam>>(Entries<TypeParam>::real_rot);
}

TYPED_TEST(Level1Update, Rot2) {
  using T = TypeParam;
  for_cases([](Case& c) {
    const T tau = factor<T>(c), v = factor<T>(c);
    auto x = c.vector<T>(), y = c.vector<T>();
    Entries<T>::rot2(&c.n, x.data(), x.inc_address(), y.data(), y.inc_address(), &tau, &v);
    for (int i = 0; i < c.n; ++i) {
      const T t = multiply(add(multiply(y.at(i), v), x.at(i)), tau);
      x.at(i) = subtract(x.at(i), t);
      y.at(i) = subtract(y.at(i), multiply(t, v));
    }
    expect_model(x, y);
  });
}

TYPED_TEST(Level1Update, Rot3) {
  using T = TypeParam;
  for_cases([](Case& c) {
    const T tau = factor<T>(c), p = factor<T>(c), q = factor<T>(c);
    auto x = c.vector<T>(), y = c.vector<T>(), z = c.vector<T>();
    Entries<T>::rot3(&c.n, x.data(), x.inc_address(), y.data(), y.inc_address(), z.data(),
                     z.inc_address(), &tau, &p, &q);
    for (int i = 0; i < c.n; ++i) {
      const T sum = add(add(multiply(y.at(i), p), x.at(i)), multiply(z.at(i), q));
      const T t = multiply(sum, tau);
      x.at(i) = subtract(x.at(i), t);
      y.at(i) = subtract(y.at(i), multiply(t, p));
      z.at(i) = subtract(z.at(i), multiply(t, q));
    }
    expect_model(x, y, z);
  });
}

}  // namespace
}  // namespace jex::test
