// The solvers on the sphere: convergence of second order with spherical harmonics, in bands, caps,
// the whole sphere and sectors; statuses.
#include <gtest/gtest.h>
#include <jex/core.h>

#include <cmath>
#include <vector>

namespace {

const double pi = std::acos(-1.0);

// Harmonics of degree 1, 2 and 3, and their sum with the factors of -Laplace + q.
double harmonics(double p, double t, double q, bool is_source) {
  const double one = std::cos(t) + std::sin(t) * std::cos(p - 0.3);
  const double two = std::sin(t) * std::sin(t) * std::sin(2 * p);
  const double three = std::pow(std::sin(t), 3) * std::cos(3 * p);
  return is_source ? (2 + q) * one + (6 + q) * two + (12 + q) * three : one + two + three;
}

template <class T>
struct Entries;
#define ENTRIES(t, T)                                                                              \
  template <>                                                                                      \
  struct Entries<T> {                                                                              \
    static constexpr decltype(&jex_pdepl_##t##_init_sph_p) init[] = {jex_pdepl_##t##_init_sph_p,   \
                                                                     jex_pdepl_##t##_init_sph_np}; \
    static constexpr decltype(&jex_pdepl_##t##_commit_sph_p) commit[] = {                          \
        jex_pdepl_##t##_commit_sph_p, jex_pdepl_##t##_commit_sph_np};                              \
    static constexpr decltype(&jex_pdepl_##t##_sph_p) solve[] = {jex_pdepl_##t##_sph_p,            \
                                                                 jex_pdepl_##t##_sph_np};          \
  };
ENTRIES(d, double)
ENTRIES(s, float)

template <class T>
struct Sphere {
  using E = Entries<T>;
  bool is_sector;
  T ap, bp, at, bt;
  jex_int np, nt, ipar[80] = {}, stat = 77;
  jex_dft_dfti_handle handle = nullptr;
  std::vector<T> dpar, f;

  Sphere(bool is_sector_, double ap_, double bp_, double at_, double bt_, jex_int np_, jex_int nt_,
         T q)
      : is_sector(is_sector_), ap(T(ap_)), bp(T(bp_)), at(T(at_)), bt(T(bt_)), np(np_), nt(nt_) {
    const int n = std::max(np, 2);
    dpar.assign(n + 6 + (is_sector ? 3 * n / 2 + 1 : 0) + 1, T(-7));
    f.resize(size_t(np + 1) * (std::max(nt, 0) + 1));
    E::init[is_sector](&ap, &bp, &at, &bt, &np, &nt, &q, ipar, dpar.data(), &stat);
    EXPECT_EQ(stat, 0);
    ipar[22] = 3;
  }
  Sphere(const Sphere&) = delete;
  ~Sphere() {
    EXPECT_EQ(dpar.back(), T(-7));
    if (handle) {
      EXPECT_EQ(free(), 0);
      EXPECT_EQ(handle, nullptr);
    }
  }
  jex_int commit() {
    E::commit[is_sector](f.data(), &handle, ipar, dpar.data(), &stat);
    EXPECT_EQ(stat, ipar[0]);
    return stat;
  }
  jex_int solve() {
    E::solve[is_sector](f.data(), &handle, ipar, dpar.data(), &stat);
    return stat;
  }
  jex_int free() {
    (is_sector ? jex_pdepl_free_sph_np : jex_pdepl_free_sph_p)(&handle, ipar, &stat);
    EXPECT_EQ(stat, ipar[0]);
    return stat;
  }
  double p(int i) const { return double(ap) + (double(bp) - double(ap)) / np * i; }
  double t(int j) const { return double(at) + (double(bt) - double(at)) / nt * j; }
};

struct Part {
  const char* name;
  bool is_sector;
  double ap, bp, at, bt;
};
const Part parts[] = {
    {"band", false, 0.2, 0.2 + 2 * pi, 0.6, 2.2}, {"north cap", false, 0, 2 * pi, 0, 1.9},
    {"south cap", false, 0, 2 * pi, 1, pi},       {"globe", false, -pi, pi, 0, pi},
    {"sector", true, 0.1, 2.3, 0.5, 2.5},         {"sector to a pole", true, -1, 1.2, 0, 1.5}};

template <class T>
double error_of(const Part& part, int np, int nt, double q) {
  Sphere<T> s(part.is_sector, part.ap, part.bp, part.at, part.bt, np, nt, T(q));
  s.ipar[2] = 0;
  const bool pole[2] = {part.at == 0 && !part.is_sector, part.bt == pi && !part.is_sector};
  const auto is_given = [&](int i, int j) {
    return (j == 0 && !pole[0]) || (j == nt && !pole[1]) || (part.is_sector && (i == 0 || i == np));
  };
  for (int j = 0; j <= nt; ++j)
    for (int i = 0; i <= np; ++i)
      s.f[j * (np + 1) + i] = !part.is_sector && i == np && j > 0 && j < nt
                                  ? T(NAN)
                                  : T(harmonics(s.p(i), s.t(j), q, !is_given(i, j)));
  const std::vector<T> before = s.f;
  const bool is_singular = pole[0] && pole[1] && q == 0;
  EXPECT_EQ(s.commit(), q < 0) << part.name;
  EXPECT_EQ(s.solve(), is_singular) << part.name;
  EXPECT_EQ(s.ipar[0], 0);
  double error = 0;
  for (int j = 0; j <= nt; ++j)
    for (int i = 0; i <= np; ++i) {
      const T u = s.f[j * (np + 1) + i];
      const double e = std::abs(double(u) - harmonics(s.p(i), s.t(j), q, false));
      error = !(e <= error) ? e : error;
      EXPECT_TRUE(!is_given(i, j) || u == before[j * (np + 1) + i]) << part.name;
      EXPECT_TRUE(part.is_sector || i < np || is_given(i, j) || u == s.f[j * (np + 1)])
          << part.name;
    }
  return error;
}

TEST(SphereSolver, ConvergesWithSecondOrder) {
  for (const Part& part : parts)
    for (const double q : {0.0, 1.5, -0.4})
      for (const int np : {30, 33}) {
        const double coarse = error_of<double>(part, np, 20, q);
        const double ratio = coarse / error_of<double>(part, 2 * np, 40, q);
        EXPECT_TRUE(ratio > 3.4 && ratio < 4.7)
            << part.name << " q " << q << " np " << np << ": " << ratio << " of " << coarse;
        const double single = error_of<float>(part, np, 20, q);
        EXPECT_FALSE(!(std::abs(single - coarse) < 1e-3))
            << part.name << " q " << q << " np " << np << ": " << single << ", " << coarse;
      }
}

TEST(SphereSolver, RefusesWhatIsNoPartOfASphere) {
  const struct {
    Part part;
    jex_int np, nt;
  } cases[] = {
      {{"no circle", false, 0, 6, 0.5, 1}, 8, 8},  {{"turned", false, 0, 2 * pi, 1, 0.5}, 8, 8},
      {{"north", true, 0, 1, -0.5, 1}, 8, 8},      {{"south", true, 0, 1, 0.5, 3.2}, 8, 8},
      {{"twice round", true, 0, 7, 0.5, 1}, 8, 8}, {{"np", true, 0, 1, 0.5, 1}, 1, 8},
      {{"nt", false, 0, 2 * pi, 0, pi}, 8, 1}};
  for (const auto& c : cases) {
    Sphere<double> s(c.part.is_sector, c.part.ap, c.part.bp, c.part.at, c.part.bt, c.np, c.nt, 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(s.commit(), -100) << c.part.name;
    EXPECT_EQ(s.solve(), -10000) << c.part.name;
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Error:"), std::string::npos);
    s.ipar[1] = 0;
    EXPECT_EQ(s.free(), -1000);
  }
}

}  // namespace
