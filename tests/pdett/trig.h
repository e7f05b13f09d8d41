// A trigonometric transform for tests, in both precisions and spellings, and its formulas.
#pragma once

#include <gtest/gtest.h>
#include <jex/core.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace jex::test {

enum class Spelling { one_underscore, two_underscores };

template <class R>
struct TrigEntries {
  void (*init)(const jex_int*, const jex_int*, jex_int*, R*, jex_int*);
  void (*commit)(const R*, jex_dft_dfti_handle*, jex_int*, R*, jex_int*);
  void (*forward)(R*, jex_dft_dfti_handle*, jex_int*, const R*, jex_int*);
  void (*backward)(R*, jex_dft_dfti_handle*, jex_int*, const R*, jex_int*);
  decltype(&jex_pdett_free_trig_transform) free;
};

template <class R>
TrigEntries<R> trig_entries(Spelling spelling);
#define JEX_ENTRIES(R, name, free_name)                                                      \
  {                                                                                          \
    name##_init_trig_transform, name##_commit_trig_transform, name##_forward_trig_transform, \
        name##_backward_trig_transform, free_name                                            \
  }
template <>
inline TrigEntries<double> trig_entries(Spelling s) {
  if (s == Spelling::one_underscore)
    return JEX_ENTRIES(double, jex_pdett_d, jex_pdett_free_trig_transform);
  return JEX_ENTRIES(double, jex_pdett__d, jex_pdett__free_trig_transform);
}
template <>
inline TrigEntries<float> trig_entries(Spelling s) {
  if (s == Spelling::one_underscore)
    return JEX_ENTRIES(float, jex_pdett_s, jex_pdett_free_trig_transform);
  return JEX_ENTRIES(float, jex_pdett__s, jex_pdett__free_trig_transform);
}
#undef JEX_ENTRIES

constexpr int room_of(int type, int n) { return type < 4 ? n + 1 : 2 * n + 1; }

template <class R>
struct Trig {
  TrigEntries<R> entries;
  jex_int n, ipar[11] = {}, stat = 77;
  jex_dft_dfti_handle handle = nullptr;
  std::vector<R> par;

  Trig(jex_int n_, jex_int type, Spelling spelling = Spelling::one_underscore)
      : entries(trig_entries<R>(spelling)), n(n_), par(room_of(type, std::max(n_, 2)) + 1, R(-7)) {
    entries.init(&n, &type, ipar, par.data(), &stat);
    EXPECT_EQ(stat, 0);
  }
  Trig(const Trig&) = delete;
  ~Trig() {
    EXPECT_EQ(par.back(), R(-7)) << "more room taken than told, n = " << n;
    if (!handle) return;
    entries.free(&handle, ipar, &stat);
    EXPECT_EQ(stat, 0);
    EXPECT_EQ(ipar[6], 0);
    EXPECT_EQ(handle, nullptr);
  }
  jex_int commit(const std::vector<R>& f) {
    entries.commit(f.data(), &handle, ipar, par.data(), &stat);
    EXPECT_EQ(stat, ipar[6]);
    return stat;
  }
  jex_int commit() { return commit(std::vector<R>(std::max(n, 0) + 1)); }
  jex_int run(bool forward, R* f) {
    stat = 77;
    (forward ? entries.forward : entries.backward)(f, &handle, ipar, par.data(), &stat);
    return stat;
  }
};

// Points that take part, first and last of them, and the formula of a result.
struct Range {
  int first, last;
};
inline Range range_of(int type, int n) {
  switch (type) {
    case 0:
      return {1, n - 1};
    case 1:
      return {0, n};
    case 3:
    case 5:
      return {1, n};
    default:
      return {0, n - 1};
  }
}

// cos and sin of m pi / 4n.
class Angles {
 public:
  explicit Angles(int n) : n_(n), c_(8 * n), s_(8 * n) {
    for (int m = 0; m < 8 * n; ++m) {
      c_[m] = cosl(3.14159265358979323846264338327950288L * m / (4 * n));
      s_[m] = sinl(3.14159265358979323846264338327950288L * m / (4 * n));
    }
  }
  long double c(int64_t m) const { return c_[m % (8 * n_)]; }
  long double s(int64_t m) const { return s_[m % (8 * n_)]; }

 private:
  int n_;
  std::vector<long double> c_, s_;
};

// Result `at` of the forward or backward transform of f, unscaled or with the factor 2/n.
template <class R>
long double formula(int type, bool forward, const std::vector<R>& f, const Angles& w, int at,
                    bool scaled = true) {
  const int64_t n = f.size() - 1;
  const Range range = range_of(type, n);
  if (at < range.first || at > range.last) return 0;
  long double sum = 0;
  for (int64_t i = range.first; i <= range.last; ++i) {
    const int64_t j = forward ? i : at, k = forward ? at : i;  // point, frequency
    long double term = f[i];
    switch (type) {
      case 0:
        term *= w.s(4 * k * j);
        break;
      case 1:
        term *= w.c(4 * k * j) * (i == 0 || i == n ? 0.5L : 1);
        break;
      case 2:
        term *= w.c(2 * (2 * k + 1) * j) * (forward && i == 0 ? 0.5L : 1);
        break;
      case 3:
        term *= w.s(2 * (2 * k - 1) * j) * (forward && i == n ? 0.5L : 1);
        break;
      case 4:
        term *= w.c((2 * k + 1) * (2 * j + 1));
        break;
      default:
        term *= w.s((2 * k - 1) * (2 * j - 1));
    }
    sum += term;
  }
  return forward && scaled ? sum * 2 / n : sum;
}

template <class R>
std::vector<R> random_line(int n, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> value(-1, 1);
  std::vector<R> f(n + 1);
  for (R& v : f) v = value(random);
  return f;
}

}  // namespace jex::test
