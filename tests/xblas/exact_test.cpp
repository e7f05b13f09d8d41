// The extra path against sums of MPFR that lose nothing: random calls of every routine, and dot
// products that cancel as far as double length reaches, and beyond.

#include "xblas/product.h"

#include <mpfr.h>

namespace jex::test {
namespace {

// Room for the span of all products here: exponents within -400 .. 400.
class Exact {
 public:
  Exact() {
    mpfr_init2(value_, 1024);
    mpfr_set_zero(value_, 1);
  }
  Exact(const Exact& other) : Exact() { mpfr_set(value_, other.value_, MPFR_RNDN); }
  Exact& operator=(const Exact& other) {
    mpfr_set(value_, other.value_, MPFR_RNDN);
    return *this;
  }
  ~Exact() { mpfr_clear(value_); }
  void add_product(double a, double b) {
    mpfr_t p;
    mpfr_init2(p, 106);
    mpfr_set_d(p, a, MPFR_RNDN);
    mpfr_mul_d(p, p, b, MPFR_RNDN);
    mpfr_add(value_, value_, p, MPFR_RNDN);
    mpfr_clear(p);
  }
  Exact times(double a) const {
    Exact product;
    mpfr_mul_d(product.value_, value_, a, MPFR_RNDN);
    return product;
  }
  void add(const Exact& a) { mpfr_add(value_, value_, a.value_, MPFR_RNDN); }
  void subtract(double a) { mpfr_sub_d(value_, value_, a, MPFR_RNDN); }
  double rounded() const { return mpfr_get_d(value_, MPFR_RNDN); }

 private:
  mpfr_t value_;
};

// Error of a, allowed two units of its type, and a few of double length for each of n terms.
template <class R>
void expect_near(R ours, Exact exact, double size, int n) {
  const double value = exact.rounded();
  exact.subtract(ours);
  const double bound = 2 * std::numeric_limits<R>::epsilon() * std::fabs(value) +
                       (n + 4) * 0x1p-102 * size + std::numeric_limits<R>::denorm_min();
  EXPECT_TRUE(std::fabs(exact.rounded()) <= bound)
      << ours << " for " << value << ", bound " << bound;
}

template <class T>
struct Extra : testing::Test {};
TYPED_TEST_SUITE(Extra, All4);

// re and im of the exact value, and a bound of the magnitudes that went into both.
struct ExactNumber {
  Exact re, im;
  double size = 0;
};

template <class T>
double re(T a) {
  if constexpr (is_complex<T>)
    return a.re;
  else
    return a;
}
template <class T>
double im(T a) {
  if constexpr (is_complex<T>)
    return a.im;
  else
    return 0;
}

template <class T>
void add_product(ExactNumber& sum, T a, T b) {
  sum.re.add_product(re(a), re(b));
  sum.re.add_product(-im(a), im(b));
  sum.im.add_product(re(a), im(b));
  sum.im.add_product(im(a), re(b));
  sum.size += (std::fabs(re(a)) + std::fabs(im(a))) * (std::fabs(re(b)) + std::fabs(im(b)));
}

template <class T>
void check_extra(Case& c, Kind kind) {
  c.values = Values::plain;
  Product<T> p(c, kind, 214);
  do p.v.alpha = special_factor<T>(c.random);
  while (std::isnan(magnitude(p.v.alpha)));
  do p.v.beta = special_factor<T>(c.random);
  while (std::isnan(magnitude(p.v.beta)));
  run(p.v);
  for (int i = 0; i < p.leny; ++i) {
    ExactNumber sum;
    for (int k = 0; k < p.lenx; ++k) {
      T e;
      if (!p.element(i, k, e)) continue;
      add_product(sum, e, p.x->at(k));
      if (p.tail) add_product(sum, e, p.tail->at(k));
    }
    const T alpha = p.v.alpha;
    ExactNumber all;
    all.re = sum.re.times(re(alpha));
    all.re.add(sum.im.times(-im(alpha)));
    all.im = sum.im.times(re(alpha));
    all.im.add(sum.re.times(im(alpha)));
    all.size = sum.size * magnitude(alpha);
    add_product(all, p.v.beta, p.y->at(i));
    const T ours = p.v.y[(p.v.incy < 0 ? (1 - p.leny) * p.v.incy : 0) + i * p.v.incy];
    using R = Real<T>;
    expect_near(R(re(ours)), all.re, all.size, 4 * p.lenx);
    expect_near(R(im(ours)), all.im, all.size, 4 * p.lenx);
    p.y->at(i) = ours;
  }
  expect_model(*p.x, *p.y);
}

TYPED_TEST(Extra, ProductsAreThoseOfTwiceTheLength) {
  for_products<TypeParam>(800, [](Case& c, Kind kind) { check_extra<TypeParam>(c, kind); });
}

// Terms of a dot product with the given condition (sum of magnitudes over the result): the first
// half spreads over the exponents, each of the others cancels what has been summed so far.
struct Dot {
  std::vector<double> x, y;
  Exact exact;
  double size = 0;

  Dot(Random& random, int n, double log2_condition) {
    const auto add = [&](double a, double b) {
      x.push_back(a), y.push_back(b);
      exact.add_product(a, b);
      size += std::fabs(a * b);
    };
    const double span = log2_condition / 2;
    for (int k = 0; k < n / 2; ++k) {
      const int e = k == 0 ? int(span / 2) : random.between(0, int(span / 2));
      add(std::ldexp(random.real(-1, 1), e), std::ldexp(random.real(-1, 1), e));
    }
    for (int k = n / 2; k < n; ++k) {
      const double place = span * (n - 1 - k) / (n - n / 2);
      const double a = std::ldexp(random.real(0.5, 1), int(place / 2));
      const double goal = std::ldexp(random.real(-1, 1), int(place) - int(span));
      add(a, (goal - exact.rounded()) / a);
    }
  }
};

// Ten thousand dot products of conditions up to 2^100 (1e30), each beside a row of ones, in both
// walks of gemv.
TEST(ExtraSums, IllConditionedDotProducts) {
  int double_length_enough = 0, native_wrong = 0;
  for (const unsigned seed : case_seeds(500)) {
    Random random(seed);
    const int n = random.between(4, 60);
    for (int r = 0; r < 20; ++r) {
      const Dot dot(random, n, 100.0 * r / 19);
      double y[2] = {7, 7};
      std::vector<double> matrix(2 * n);
      const bool plain = random.between(0, 1);
      for (int k = 0; k < n; ++k) {
        matrix[plain ? 2 * k : k] = dot.y[k];
        matrix[plain ? 2 * k + 1 : n + k] = 1;
      }
      Arguments<double> v{Kind::gemv,
                          plain ? 111 : 112,
                          plain ? 2 : n,
                          plain ? n : 2,
                          0,
                          0,
                          1,
                          matrix.data(),
                          plain ? 2 : n,
                          dot.x.data(),
                          nullptr,
                          1,
                          0,
                          y,
                          1,
                          214};
      run(v);
      expect_near(y[0], dot.exact, dot.size, n);
      const double value = dot.exact.rounded(), unit = std::numeric_limits<double>::epsilon();
      if ((n + 4) * 0x1p-102 * dot.size < unit * std::fabs(value)) {
        ++double_length_enough;
        EXPECT_LE(std::fabs(y[0] - value), 2 * unit * std::fabs(value));
      }
      v.prec = 213;
      run(v);
      native_wrong += !(std::fabs(y[0] - value) <= 2 * unit * std::fabs(value));
      if (HasFailure()) FAIL() << "JEX_CASE=" << seed << " row " << r;
    }
  }
  if (getenv("JEX_CASE")) return;
  // The dot products are what they are meant to be: hard for double, mostly not for double length.
  EXPECT_GT(double_length_enough, 4000);
  EXPECT_GT(native_wrong, 6000);
}

}  // namespace
}  // namespace jex::test
