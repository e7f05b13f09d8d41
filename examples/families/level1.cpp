// The period of a series by vector kernels alone: mean, variance, norm, autocorrelation and its
// peak.
//
// Of n values v, with c = v - mean and z = c / |c|, the autocorrelation at lag k is
//   r(k) = sum over i of z(i) z(i + k),  r(0) = 1.
// The period is the lag of the highest local peak of r behind its first zero and within n / 2,
// refined by the parabola through the peak and its two neighbours.
#include <algorithm>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/series.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

// One lag beyond n / 2, the right neighbour of a peak there.
size_t lags(size_t n) { return n / 2 + 2; }

struct Statistics {
  double magnitude, mean, norm, variance;
  Vector scaled;           // z
  Vector autocorrelation;  // r(0), r(1) ...
};

Vector autocorrelation(const Kernels& kernels, const Vector& z) {
  Vector r(lags(z.size()));
  for (size_t k = 0; k < r.size(); ++k) r[k] = kernels.dot(z.size() - k, z.data(), z.data() + k);
  return r;
}

Statistics analyse(const Kernels& kernels, const Vector& v) {
  const jex_int n = v.size();
  const Vector ones(n, 1.0);
  Statistics s;
  s.magnitude = kernels.asum(v) / n;
  s.mean = kernels.dot(n, v.data(), ones.data()) / n;
  s.norm = kernels.nrm2(v);
  s.scaled = v;
  kernels.axpy(-s.mean, ones, s.scaled);
  s.variance = kernels.dot(n, s.scaled.data(), s.scaled.data()) / n;
  kernels.scal(1 / kernels.nrm2(s.scaled), s.scaled);
  s.autocorrelation = autocorrelation(kernels, s.scaled);
  return s;
}

// The same in long double, by plain loops.
struct Reference {
  long double magnitude = 0, mean = 0, norm = 0, variance = 0;
  std::vector<long double> autocorrelation;

  explicit Reference(const Vector& v) {
    const size_t n = v.size();
    for (const double x : v)
      magnitude += fabsl(x), mean += x, norm += static_cast<long double>(x) * x;
    magnitude /= n, mean /= n, norm = sqrtl(norm);
    std::vector<long double> c;
    for (const double x : v) c.push_back(x - mean), variance += c.back() * c.back();
    for (size_t k = 0; k < lags(n); ++k) {
      long double sum = 0;
      for (size_t i = 0; i + k < n; ++i) sum += c[i] * c[i + k];
      autocorrelation.push_back(sum / variance);
    }
    variance /= n;
  }
};

// Where the parabola through (-1, a), (0, b), (1, c) has its peak.
template <class T>
T vertex(const T* b) {
  const T curvature = (b[-1] - b[0]) + (b[1] - b[0]);
  return curvature < 0 ? (b[-1] - b[1]) / (2 * curvature) : 0;
}

// The first lag of an autocorrelation that is not positive; the last lag if there is none.
size_t first_zero(const Vector& r) {
  size_t k = 1;
  while (k + 1 < r.size() && r[k] > 0) ++k;
  return k;
}

// A sum of n terms runs in eight partial sums: a term goes through n / 8 + a few roundings of eps
// / 2. An autocorrelation meets them twice, in its own sum and in the norm.
double rounding_bound(size_t n) { return n / 8.0 + 16; }

// What one unit eps of relative error in the mean does to sums of centred values. With
// kappa = mean magnitude / deviation, the mean is off by eps kappa deviations: the variance feels
// the square of that alone, as centred values sum to zero; parts of the series need not.
struct Conditions {
  double variance, autocorrelation;

  Conditions(const Reference& exact, double bound) {
    const double kappa = static_cast<double>(exact.magnitude / sqrtl(exact.variance));
    const double squared = bound * DBL_EPSILON * kappa * kappa;
    variance = 1 + squared;
    autocorrelation = 1 + 2 * kappa + squared;
  }
};

double largest_error(const Vector& r, const std::vector<long double>& exact) {
  long double largest = 0;
  for (size_t k = 0; k < r.size(); ++k) keep_worst(largest, fabsl(r[k] - exact[k]));
  return static_cast<double>(largest);
}

std::vector<Check> basic_checks(const Statistics& s, const Reference& exact) {
  const double bound = rounding_bound(s.scaled.size());
  const Conditions condition(exact, bound);
  const auto check = [&](const char* name, double value, long double reference, double scale) {
    return compare(name, text("%.10g", value), value, reference, scale, bound);
  };
  const double magnitude = static_cast<double>(exact.magnitude);
  const double error = largest_error(s.autocorrelation, exact.autocorrelation);
  return {check("mean magnitude", s.magnitude, exact.magnitude, magnitude),
          check("mean", s.mean, exact.mean, magnitude),
          check("norm", s.norm, exact.norm, static_cast<double>(exact.norm)),
          check("variance", s.variance, exact.variance,
                condition.variance * static_cast<double>(exact.variance)),
          {"autocorrelation, worst lag", text("of %zu", s.autocorrelation.size()),
           condition.autocorrelation, error / (DBL_EPSILON * condition.autocorrelation), bound}};
}

struct Period {
  size_t zero;  // the search starts behind it
  size_t lag;   // 0: the autocorrelation has no local peak there
  double in_lags;
};

// The largest of the heights 1 + r at local peaks, which are never negative, among zeros elsewhere.
Period find_period(const Kernels& kernels, const Vector& r) {
  const size_t zero = first_zero(r);
  Vector heights(r.size(), 0.0);
  for (size_t k = zero + 1; k + 1 < r.size(); ++k)
    if (r[k - 1] < r[k] && r[k] >= r[k + 1]) heights[k] = 1 + r[k];
  const int lag = kernels.first_largest(heights);
  if (lag < 1 || lag + 1 >= static_cast<int>(r.size()) || heights[lag] == 0) return {zero, 0, 0};
  return {zero, static_cast<size_t>(lag), lag + vertex(&r[lag])};
}

// How far the exact autocorrelation is from a first zero at this lag: below zero before it, or
// above zero at it.
double zero_error(size_t zero, const std::vector<long double>& exact) {
  long double error = zero + 1 < exact.size() ? std::max(exact[zero], 0.0L) : 0;
  for (size_t k = 1; k < zero; ++k) error = std::max(error, -exact[k]);
  return static_cast<double>(error);
}

// The height that the peak should have: of the exact autocorrelation at its lag, or of a higher
// peak that stands out of its neighbours by more than rounding can make.
long double best_height(const Period& period, const std::vector<long double>& exact,
                        double rounding) {
  long double best = period.lag ? 1 + exact[period.lag] : 0;
  for (size_t k = period.zero + 1; k + 1 < exact.size(); ++k)
    if (exact[k] - std::max(exact[k - 1], exact[k + 1]) > 2 * rounding)
      best = std::max(best, 1 + exact[k]);
  return best;
}

// Peaks that are equal but for rounding may come out in either order: another lag is no error, a
// lower height is. An error e of r moves the vertex by 3 e / curvature at most.
std::vector<Check> period_checks(const Period& period, const Series& series, const Vector& r,
                                 const Reference& exact) {
  const double bound = rounding_bound(series.values.size());
  const double condition = Conditions(exact, bound).autocorrelation;
  const double unit = DBL_EPSILON * condition;
  const size_t lag = period.lag;
  const double height = lag ? 1 + r[lag] : 0, value = period.in_lags * series.step;
  std::vector<Check> checks{
      {"first zero of it", text("lag %zu", period.zero), condition,
       zero_error(period.zero, exact.autocorrelation) / unit, bound},
      compare("1 + r at the peak", lag ? text("%.10g", height) : "no peak", height,
              best_height(period, exact.autocorrelation, bound * unit), condition, bound)};
  if (!lag) return checks;
  const long double* b = &exact.autocorrelation[lag];
  const double curvature = static_cast<double>(2 * b[0] - b[-1] - b[1]);
  const double scale = series.step * (lag + 3 * condition / std::max(curvature, 0.0));
  const long double reference = (lag + vertex(b)) * static_cast<long double>(series.step);
  checks.push_back(compare("period", text("%.10g", value), value, reference, scale, bound));
  return checks;
}

Rate rate(const Kernels& kernels, const Vector& z) {
  double flops = 0;
  for (size_t k = 0; k < lags(z.size()); ++k) flops += 2.0 * (z.size() - k);
  const double passes = times_per_second([&] { autocorrelation(kernels, z); });
  return {text("autocorrelation of %zu lags", lags(z.size())), flops * passes / 1e9, "GFLOP/s"};
}

Picture draw(const Series& series, const Vector& r, const Period& period) {
  const double noise = 1.96 / std::sqrt(static_cast<double>(series.values.size()));
  const svg::Panel values = plot_of(series);
  svg::Panel lagged{"Autocorrelation", "lag, in units of " + series.x_name, "autocorrelation"};
  lagged.curves = {{"autocorrelation", 0, series.step, r}};
  lagged.levels = {{noise, "1.96 / √n"}, {-noise, ""}};
  if (period.lag)
    lagged.marks.push_back({period.lag * series.step, r[period.lag],
                            text("period %.4g", period.in_lags * series.step)});
  return {"level1.svg", svg::draw(series.y_name + " and its autocorrelation", {values, lagged})};
}

std::string verdict(const Vector& r, const Period& period, size_t n) {
  if (!period.lag) return "none: no local peak of the autocorrelation within half the series";
  const double noise = 1.96 / std::sqrt(static_cast<double>(n));
  return text("autocorrelation %.3f at lag %zu, %s 1.96 / sqrt(n) = %.3f, the level of noise",
              r[period.lag], period.lag, r[period.lag] > noise ? "above" : "not above", noise);
}

}  // namespace

Report level1(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const size_t n = series.values.size();
  const Kernels kernels{context.kernels};
  const Statistics s = analyse(kernels, series.values);
  context.progress.tell("sums in long double");
  const Reference exact(series.values);
  const Period period = find_period(kernels, s.autocorrelation);

  Report report;
  report.problem = {{"file", file_name(series.file)},
                    {"series", series.y_name + " against " + series.x_name},
                    {"values", text("%zu, from %.10g to %.10g in steps of %.10g", n, series.first,
                                    series.first + (n - 1) * series.step, series.step)}};
  report.checks = basic_checks(s, exact);
  for (Check& check : period_checks(period, series, s.autocorrelation, exact))
    report.checks.push_back(std::move(check));
  report.findings = {{"period", verdict(s.autocorrelation, period, n)}};
  report.rates = {rate(kernels, s.scaled)};
  report.pictures.push_back(draw(series, s.autocorrelation, period));
  return report;
}

}  // namespace jex::tour
