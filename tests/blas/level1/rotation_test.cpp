// Generated rotations: the published formulas for rotg, the defining equations for rotmg.

#include "blas/level1/level1.h"

namespace jex::test {
namespace {

template <class T>
struct Level1Rotation : testing::Test {};
TYPED_TEST_SUITE(Level1Rotation, Real2);

TYPED_TEST(Level1Rotation, Rotg) {
  using T = TypeParam;
  for_cases([](Case& c) {
    T a = factor<T>(c), b = factor<T>(c), cosine, sine;
    const T a0 = a, b0 = b, scale = std::fabs(a) + std::fabs(b);
    T r = 0, z = 0, cm = 1, sm = 0;
    if (scale != 0) {
      r = scale * T(std::sqrt((a / scale) * (a / scale) + (b / scale) * (b / scale)));
      if ((std::fabs(a) > std::fabs(b) ? a : b) < 0) r = -r;
      cm = a / r, sm = b / r;
      z = std::fabs(a) > std::fabs(b) ? sm : cm != 0 ? 1 / cm : T(1);
    }
    Entries<T>::rotg(&a, &b, &cosine, &sine);
    EXPECT_TRUE(same_bits(cosine, cm) && same_bits(sine, sm) && same_bits(a, r) && same_bits(b, z))
        << a0 << " " << b0;
  });
}

TYPED_TEST(Level1Rotation, Rotm) {
  using T = TypeParam;
  for_cases([](Case& c) {
    const T param[5] = {c.random.pick({T(-2), T(-1), T(0), T(1)}), factor<T>(c), factor<T>(c),
                        factor<T>(c), factor<T>(c)};
    auto x = c.vector<T>(), y = c.vector<T>();
    Entries<T>::rotm(&c.n, x.data(), x.inc_address(), y.data(), y.inc_address(), param);
    for (int i = 0; i < c.n && param[0] != -2; ++i) {
      const T u = x.at(i), v = y.at(i), *h = param;
      // An entry that the flag fixes at 1 or -1 is not multiplied with.
      const T left = h[0] == 0 ? u : u * h[1], right = h[0] == 1 ? v : v * h[3];
      const T below = h[0] == 1 ? -u : u * h[2], corner = h[0] == 0 ? v : v * h[4];
      y.at(i) = below + corner;
      x.at(i) = left + right;
    }
    expect_model(x, y);
  });
}

// H (x1, y1) = (x1', 0), and d1' x1'^2 = d1 x1^2 + d2 y1^2, for d1, d2 > 0 over many magnitudes.
TYPED_TEST(Level1Rotation, Rotmg) {
  using T = TypeParam;
  const T eps = std::numeric_limits<T>::epsilon();
  for_cases([&](Case& c) {
    const auto wide = [&] { return T(std::exp2(c.random.real(-30, 30))); };
    T d1 = wide(), d2 = wide(), x1 = T(c.random.real(-2, 2)) * wide();
    const T y1 = T(c.random.real(-2, 2)) * wide(), x0 = x1;
    const long double norm = (long double)d1 * x1 * x1 + (long double)d2 * y1 * y1;
    T param[5] = {9, 9, 9, 9, 9};
    Entries<T>::rotmg(&d1, &d2, &x1, &y1, param);
    if (param[0] == 0) param[1] = param[4] = 1;
    if (param[0] == 1) param[2] = -1, param[3] = 1;
    ASSERT_TRUE(param[0] == -1 || param[0] == 0 || param[0] == 1);
    const T first = param[1] * x0 + param[3] * y1, second = param[2] * x0 + param[4] * y1;
    const T size = std::fabs(param[1] * x0) + std::fabs(param[3] * y1);
    EXPECT_LE(std::fabs(first - x1), 8 * eps * size);
    EXPECT_LE(std::fabs(second), 8 * eps * (std::fabs(param[2] * x0) + std::fabs(param[4] * y1)));
    EXPECT_LE(std::fabs((long double)d1 * x1 * x1 - norm), 32 * eps * norm);
    for (const T d : {d1, d2}) EXPECT_TRUE(d > T(1) / (1 << 24) && d < (1 << 24)) << d;
  });
}

TYPED_TEST(Level1Rotation, RotmgWithoutARotation) {
  using T = TypeParam;
  const T inf = std::numeric_limits<T>::infinity();
  struct {
    T d1, d2, x1, y1, flag;
  } const table[] = {
      {1, 1, 1, 0, -2},        // nothing to make zero
      {1, 0, 1, 1, -2},        //
      {-1, 1, 1, 1, -1},       // negative d1: H = 0
      {1, -1, 1, 2, -1},       // d2 y1^2 would be negative
      {1, -1, 2, 1, 0},        // negative d2 that stays small
      {inf, 1, 1, T(0.5), 0},  // no power of gamma brings an infinite d1 into range
  };
  for (const auto& row : table) {
    T d1 = row.d1, d2 = row.d2, x1 = row.x1, param[5] = {9, 9, 9, 9, 9};
    Entries<T>::rotmg(&d1, &d2, &x1, &row.y1, param);
    EXPECT_EQ(param[0], row.flag) << row.d1 << " " << row.d2 << " " << row.x1 << " " << row.y1;
    const bool cleared = d1 == 0 && d2 == 0 && x1 == 0 && param[1] == 0 &&
                         param[2] == 0 && param[3] == 0 && param[4] == 0;
    EXPECT_EQ(cleared, row.flag == -1);
  }
}

template <class T>
struct Level1ComplexRotation : testing::Test {};
TYPED_TEST_SUITE(Level1ComplexRotation, Complex2);

// c a + s b = r and -conj(s) a + c b = 0, with c^2 + |s|^2 = 1.
TYPED_TEST(Level1ComplexRotation, Rotg) {
  using T = TypeParam;
  using R = Real<T>;
  const R bound = 16 * std::numeric_limits<R>::epsilon();
  for_cases([&](Case& c) {
    const T a0 = random_value<T>(c.random, Values::plain);
    T a = a0;
    const T b = random_value<T>(c.random, Values::plain);
    R cosine;
    T sine;
    Entries<T>::rotg(&a, &b, &cosine, &sine);
    const T first = subtract(add(multiply(a0, cosine), multiply(b, sine)), a);
    const T second = subtract(multiply(b, cosine), multiply(a0, conjugate(sine)));
    EXPECT_LE(magnitude(first), bound * 4);
    EXPECT_LE(magnitude(second), bound * 4);
    EXPECT_LE(std::fabs(cosine * cosine + sine.re * sine.re + sine.im * sine.im - 1), bound);
  });
  T a = {0, 0};
  const T b = {3, -4};
  R cosine;
  T sine;
  Entries<T>::rotg(&a, &b, &cosine, &sine);
  EXPECT_TRUE(cosine == 0 && sine.re == 1 && sine.im == 0 && a.re == 3 && a.im == -4);
}

}  // namespace
}  // namespace jex::test
