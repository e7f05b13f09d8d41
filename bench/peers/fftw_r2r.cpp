// Peer library: FFTW's real-to-real transforms, planned by its measuring mode.
//   dtrig0_ .. dtrig5_, strig..(n, x, y): y := transform of the points of x(0 .. n), not scaled
//   dpoisson_(n, length, f): -u'' = f, zero on the sides of a square: transforms along both axes, a
//   division, and the transforms again
#include <cmath>
#include <map>
#include <vector>

#include <fftw3.h>

namespace {

template <class R>
struct Planner;
template <>
struct Planner<double> {
  using Plan = fftw_plan;
  static constexpr auto plan = fftw_plan_r2r_1d;
  static constexpr auto execute = fftw_execute_r2r;
};
template <>
struct Planner<float> {
  using Plan = fftwf_plan;
  static constexpr auto plan = fftwf_plan_r2r_1d;
  static constexpr auto execute = fftwf_execute_r2r;
};

struct Kind {
  fftw_r2r_kind kind;
  int first, points;  // points beyond n
};
constexpr Kind kinds[] = {{FFTW_RODFT00, 1, -1}, {FFTW_REDFT00, 0, 1}, {FFTW_REDFT01, 0, 0},
                          {FFTW_RODFT01, 1, 0},  {FFTW_REDFT11, 0, 0}, {FFTW_RODFT11, 1, 0}};

template <class R>
void run(int type, int n, const R* x, R* y) {
  using P = Planner<R>;
  static std::map<int, typename P::Plan> plans;
  static int last = -1;
  static typename P::Plan plan;
  const Kind kind = kinds[type];
  const int key = n * 8 + type;
  if (key != last) {
    typename P::Plan& made = plans[key];
    if (!made) {
      std::vector<R> a(n + 1), b(n + 1);
      // The arrays of a call are aligned as these are.
      made = P::plan(n + kind.points, a.data() + kind.first, b.data() + kind.first, kind.kind,
                     FFTW_MEASURE);
    }
    plan = made;
    last = key;
  }
  P::execute(plan, const_cast<R*>(x) + kind.first, y + kind.first);
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))
#define TYPE(k)                                                                           \
  EXPORT void dtrig##k##_(const int* n, const double* x, double* y) { run(k, *n, x, y); } \
  EXPORT void strig##k##_(const int* n, const float* x, float* y) { run(k, *n, x, y); }
TYPE(0)
TYPE(1)
TYPE(2)
TYPE(3)
TYPE(4)
TYPE(5)

EXPORT void dpoisson_(const int* order, const double* length, double* f) {
  static int last = 0;
  static fftw_plan plan;
  static std::vector<double> inside, terms;
  const int n = *order, m = n - 1;
  if (n != last) {
    inside.resize(size_t(m) * m);
    terms.resize(m);
    plan = fftw_plan_r2r_2d(m, m, inside.data(), inside.data(), FFTW_RODFT00, FFTW_RODFT00,
                            FFTW_MEASURE);
    for (int k = 1; k < n; ++k) {
      const double root = 2 * n / *length * std::sin(1.57079632679489661923 * k / n);
      terms[k - 1] = root * root * 4 * n * n;
    }
    last = n;
  }
  for (int j = 0; j < m; ++j)
    for (int i = 0; i < m; ++i) inside[size_t(j) * m + i] = f[size_t(j + 1) * (n + 1) + i + 1];
  fftw_execute(plan);
  for (int j = 0; j < m; ++j)
    for (int i = 0; i < m; ++i) inside[size_t(j) * m + i] /= terms[i] + terms[j];
  fftw_execute(plan);
  for (int j = 0; j < m; ++j)
    for (int i = 0; i < m; ++i) f[size_t(j + 1) * (n + 1) + i + 1] = inside[size_t(j) * m + i];
}
