// lasr, larfx and lartv against their definitions in double precision.

#include "blas/level3/operand.h"

namespace jex::test {
namespace {

template <class T>
struct Entries;
#define JEX_TEST_LASR(t, name) \
  { #name, jex_blas_##t##lasr_##name }
#define JEX_TEST_ENTRIES(t, T)                                                     \
  template <>                                                                      \
  struct Entries<T> {                                                              \
    struct Lasr {                                                                  \
      const char* name;                                                            \
      decltype(&jex_blas_##t##lasr_lvf) entry;                                     \
    };                                                                             \
    static constexpr Lasr lasr[] = {JEX_TEST_LASR(t, lvf), JEX_TEST_LASR(t, lvb),  \
                                    JEX_TEST_LASR(t, ltf), JEX_TEST_LASR(t, ltb),  \
                                    JEX_TEST_LASR(t, lbf), JEX_TEST_LASR(t, lbb),  \
                                    JEX_TEST_LASR(t, rvf), JEX_TEST_LASR(t, rvb),  \
                                    JEX_TEST_LASR(t, rtf), JEX_TEST_LASR(t, rtb),  \
                                    JEX_TEST_LASR(t, rbf), JEX_TEST_LASR(t, rbb)}; \
    static constexpr auto larfx = jex_blas_##t##larfx;                             \
    static constexpr auto lartv = jex_blas_##t##lartv;                             \
  };
JEX_TEST_ENTRIES(s, float)
JEX_TEST_ENTRIES(d, double)
JEX_TEST_ENTRIES(c, jex_scomplex)
JEX_TEST_ENTRIES(z, jex_dcomplex)

template <class T>
class Rotations : public testing::Test {};
TYPED_TEST_SUITE(Rotations, Element4);

int size(Random& random) {
  return random.between(0, 3) ? random.between(0, 20) : random.between(30, 130);
}

// A as it was, times the rotations of the name one after another: A := P A or A := A P^T.
template <class T>
Sums rotated(const Matrix<T>& a, const std::string& name, const std::vector<Real<T>>& c,
             const std::vector<Real<T>>& s) {
  const bool left = name[0] == 'l';
  const int z = left ? a.rows : a.columns;
  Sums sums(a.rows, a.columns);
  double largest = 0;
  a.for_elements([&](int i, int j) {
    sums.value[i + j * a.rows] = wide(a.before(i, j));
    largest = std::max(largest, std::abs(wide(a.before(i, j))));
  });
  for (int step = 1; step < z; ++step) {
    const int k = name[2] == 'f' ? step : z - step;
    const int p = name[1] == 't' ? 1 : k, q = name[1] == 'b' ? z : k + 1;
    for (int other = 0; other < (left ? a.columns : a.rows); ++other) {
      const auto place = [&](int r) {
        return left ? r - 1 + other * a.rows : other + (r - 1) * a.rows;
      };
      Wide &x = sums.value[place(p)], &y = sums.value[place(q)];
      const Wide old = x;
      const double cosine = c[k - 1], sine = s[k - 1];
      x = cosine * x + sine * y;
      y = cosine * y - sine * old;
    }
  }
  // Rotations keep the length of a row or column of z elements.
  for (double& size : sums.size) size = largest * std::sqrt(double(std::max(z, 1)));
  return sums;
}

TYPED_TEST(Rotations, LasrInAllVariants) {
  using R = Real<TypeParam>;
  for (const unsigned seed : case_seeds(25))
    for (const auto& [name, entry] : Entries<TypeParam>::lasr) {
      Random random(seed);
      const int m = size(random), n = size(random), z = name[0] == 'l' ? m : n;
      Matrix<TypeParam> a(random, m, n);
      std::vector<R> c(z), s(z);
      for (int k = 0; k < z; ++k) {
        const double angle = random.real(0, 6.3);
        c[k] = R(cos(angle));
        s[k] = R(sin(angle));
      }
      const Sums sums = rotated(a, name, c, s);
      entry(&m, &n, c.data(), s.data(), a.data(), &a.ld);
      expect_sums(a, sums, 4 * z);
      if (testing::Test::HasFailure())
        FAIL() << "JEX_CASE=" << seed << " " << name << " " << m << " " << n;
    }
}

TYPED_TEST(Rotations, LarfxIsTheReflector) {
  for (const unsigned seed : case_seeds(60))
    for (const char side : {'L', 'r'}) {
      Random random(seed);
      const int m = size(random), n = size(random);
      const bool left = side == 'L';
      Matrix<TypeParam> c(random, m, n), v(random, left ? m : n, 1);
      TypeParam tau = random_value<TypeParam>(random, Values::plain);
      if (random.between(0, 5) == 0) tau = TypeParam{};
      const Dense column(v.rows, 1, [&](int i, int) { return wide(v.before(i, 0)); });
      const Dense row(1, v.rows, [&](int, int i) { return std::conj(wide(v.before(i, 0))); });
      const Dense old(m, n, [&](int i, int j) { return wide(c.before(i, j)); });
      Sums inner(left ? 1 : m, left ? n : 1), sums(m, n);
      left ? inner.add_product(1, row, old) : inner.add_product(1, old, column);
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) {
          const Wide w = inner.value[left ? j : i], other = left ? column(i, 0) : row(0, j);
          sums.add(i, j, old(i, j));
          sums.value[i + j * m] -= wide(tau) * w * other;
          sums.size[i + j * m] += std::abs(wide(tau) * other) * inner.size[left ? j : i];
        }
      Entries<TypeParam>::larfx(&side, &m, &n, v.data(), &tau, c.data(), &c.ld, nullptr);
      EXPECT_TRUE(v.unchanged(true));
      expect_sums(c, sums, v.rows);
      if (testing::Test::HasFailure())
        FAIL() << "JEX_CASE=" << seed << " " << side << " " << m << " " << n;
    }
}

// y = x and s = i: the conjugate shows. Increments walk from the first element.
TYPED_TEST(Rotations, LartvRotatesEachPair) {
  using T = TypeParam;
  for (const unsigned seed : case_seeds(60)) {
    Random random(seed);
    const int n = random.between(-1, 40), incx = random.between(1, 3), incy = random.between(1, 3),
              incc = random.between(1, 3);
    std::vector<T> x(150), y(150), s(150);
    std::vector<Real<T>> c(150);
    for (int i = 0; i < 150; ++i) {
      for (auto* v : {&x, &y, &s}) (*v)[i] = random_value<T>(random, Values::plain);
      c[i] = Real<T>(random.real(-1, 1));
    }
    const auto old_x = x, old_y = y;
    Entries<T>::lartv(&n, x.data(), &incx, y.data(), &incy, c.data(), s.data(), &incc);
    const double eps = 16 * std::numeric_limits<Real<T>>::epsilon();
    for (int i = 0; i < 150; ++i) {
      const bool in_x = i % incx == 0 && i / incx < n, in_y = i % incy == 0 && i / incy < n;
      const auto turned = [&](int k, bool first) {
        const Wide u = wide(old_x[k * incx]), v = wide(old_y[k * incy]), sine = wide(s[k * incc]);
        const double cosine = c[k * incc];
        return first ? cosine * u + sine * v : cosine * v - std::conj(sine) * u;
      };
      EXPECT_LE(std::abs(wide(x[i]) - (in_x ? turned(i / incx, true) : wide(old_x[i]))),
                in_x ? eps * 10 : 0);
      EXPECT_LE(std::abs(wide(y[i]) - (in_y ? turned(i / incy, false) : wide(old_y[i]))),
                in_y ? eps * 10 : 0);
    }
    if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed;
  }
}

}  // namespace
}  // namespace jex::test
