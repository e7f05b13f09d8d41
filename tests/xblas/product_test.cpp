// The native path bit for bit against its model: sums in double, one term after the other, rounded
// once to the type of y. The quick ways of both precisions.

#include "xblas/product.h"

namespace jex::test {
namespace {

template <class T>
struct Xblas : testing::Test {};
TYPED_TEST_SUITE(Xblas, All4);

// A number in double, and back.
template <class T>
auto widened(T a) {
  if constexpr (is_complex<T>)
    return jex_dcomplex{a.re, a.im};
  else
    return double(a);
}
template <class T, class D>
T narrowed(D a) {
  if constexpr (is_complex<T>)
    return {Real<T>(a.re), Real<T>(a.im)};
  else
    return T(a);
}

template <class T>
bool is_one(T a) {
  return magnitude(subtract(a, number<T>(1))) == 0;
}

template <class T>
auto native_sum(Product<T>& p, int i, Vector<T>& x) {
  auto sum = widened(T{});
  for (int k = 0; k < p.lenx; ++k)
    if (T e; p.element(i, k, e)) sum = add(sum, multiply(widened(e), widened(x.at(k))));
  return sum;
}

template <class T>
void native_model(Product<T>& p) {
  const T alpha = p.v.alpha, beta = p.v.beta;
  for (int i = 0; i < p.leny; ++i) {
    T& y = p.y->at(i);
    if (is_zero(alpha)) {
      y = is_zero(beta) ? T{} : narrowed<T>(multiply(widened(y), widened(beta)));
      continue;
    }
    auto sum = native_sum(p, i, *p.x);
    if (p.tail) sum = add(sum, native_sum(p, i, *p.tail));
    if (!(is_one(alpha) && is_zero(beta))) sum = multiply(sum, widened(alpha));
    if (!is_zero(beta)) sum = add(sum, multiply(widened(y), widened(beta)));
    y = narrowed<T>(sum);
  }
}

TYPED_TEST(Xblas, NativeSums) {
  for_products<TypeParam>(1200, [](Case& c, Kind kind) {
    Product<TypeParam> p(c, kind, c.random.pick({211, 212, 213}));
    run(p.v);
    native_model(p);
    expect_model(*p.x, *p.y);
  });
}

// An unknown precision, and nothing read in vain.
TYPED_TEST(Xblas, QuickWays) {
  using T = TypeParam;
  const T one = number<T>(1), nan = number<T>(std::numeric_limits<double>::quiet_NaN());
  for (int kind = 0; kind < (is_complex<T> ? 4 : 3); ++kind)
    for (const jex_int prec : {-1, 0, 210, 211, 213, 214, 215}) {
      T y[3] = {nan, nan, nan};
      const jex_int option = kind < 2 ? 112 : 121;
      Arguments<T> v{Kind(kind), option,  3,       3, 0,   0, T{}, nullptr,
                     3,          nullptr, nullptr, 1, T{}, y, 1,   prec};
      run(v);
      const bool known = prec >= 211 && prec <= 214;
      for (const T& e : y) ASSERT_TRUE(same_bits(e, known ? T{} : nan)) << prec;
      v.beta = one;  // alpha = 0, beta = 1: y stays
      for (T& e : y) e = one;
      run(v);
      for (const T& e : y) ASSERT_TRUE(same_bits(e, one));
    }
}

TEST(XblasSums, CancelledTermsRemainWithExtra) {
  const double a[] = {1e16, 1, -1e16}, x[] = {1, 1, 1};
  double y = 7;
  Arguments<double> v{Kind::gemv, 111, 1, 3, 0, 0, 1, a, 1, x, nullptr, 1, 0, &y, 1, 214};
  run(v);
  EXPECT_EQ(y, 1);
  v.prec = 213;
  run(v);
  EXPECT_EQ(y, 0);
}

}  // namespace
}  // namespace jex::test
