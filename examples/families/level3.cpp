// The covariance matrix of a series' windows, by a rank-k update, and its Cholesky factors, by
// blocks: potrf on the diagonal, trsm below it, syrk on what is left.
//
// Row t of X is the window c(t) .. c(t + m - 1) of the centred values, and S = X'X / rows + ridge.
// S = L L' is computed in its lower triangle:
//
//   | L11          |   L11 = potrf(S11)
//   | L21  S22'    |   L21 = S21 inverse(L11'),  S22' = S22 - L21 L21', and so on with S22'
#include <algorithm>
#include <numeric>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/series.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

constexpr jex_int block = 32;

// Column j of X is the values from j on.
Vector windows(const Vector& values, size_t rows, size_t m) {
  const double mean = std::accumulate(values.begin(), values.end(), 0.0) / values.size();
  Vector x(rows * m);
  for (size_t j = 0; j < m; ++j)
    for (size_t t = 0; t < rows; ++t) x[t + j * rows] = values[t + j] - mean;
  return x;
}

// The lower triangle of S; a ridge of a thousandth of the variance keeps it definite.
Vector covariance(const Kernels& kernels, const Vector& x, jex_int rows, jex_int m) {
  Vector s(size_t(m) * m, 0.0);
  kernels.syrk("T", m, rows, 1.0 / rows, x.data(), rows, 0, s.data(), m);
  for (jex_int i = 0; i < m; ++i) s[i + size_t(i) * m] *= 1.001;
  return s;
}

// L in the lower triangle; the number of the minor that is not positive definite, or 0.
jex_int factor(const Kernels& kernels, Vector& s, jex_int m) {
  for (jex_int j = 0; j < m; j += block) {
    const jex_int width = std::min(block, m - j), rest = m - j - width;
    double* const diagonal = &s[j + size_t(j) * m];
    if (const jex_int minor = kernels.potrf(width, diagonal, m)) return j + minor;
    if (rest == 0) break;
    double *const below = diagonal + width, *const corner = below + size_t(width) * m;
    kernels.trsm(rest, width, diagonal, below, m);
    kernels.syrk("N", rest, width, -1, below, m, 1, corner, m);
  }
  return 0;
}

// Largest error of the lower triangle of computed against sum(i, j), in units of eps times the sum
// of magnitudes, which sum adds to size; NaN stays NaN.
template <class Sum>
double error_of(const Vector& computed, size_t m, Sum sum) {
  long double worst = 0;
  for (size_t j = 0; j < m; ++j)
    for (size_t i = j; i < m; ++i) {
      long double size = 0;
      const long double value = sum(i, j, size);
      keep_worst(worst, fabsl(computed[i + j * m] - value) / (DBL_EPSILON * size));
    }
  return static_cast<double>(worst);
}

Rate rate(const Kernels& kernels, const Vector& s, jex_int m) {
  Vector l;
  const double factorizations = times_per_second([&] {
    l = s;
    factor(kernels, l, m);
  });
  return {text("Cholesky factorization of order %d", int(m)),
          double(m) * m * m / 3 * factorizations / 1e9, "GFLOP/s"};
}

// The whole matrix of its lower triangle.
Picture draw(const Series& series, Vector s, size_t m) {
  for (size_t j = 0; j < m; ++j)
    for (size_t i = 0; i < j; ++i) s[i + j * m] = s[j + i * m];
  const svg::Range lags{0, m * series.step};
  const std::string axis = "place in the window, in units of " + series.x_name;
  return {"level3.svg",
          svg::draw_field({"Covariance of " + series.y_name, axis, "place in the window",
                           "covariance", lags, lags, int(m), int(m), std::move(s)})};
}

}  // namespace

Report level3(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const size_t m = std::min<size_t>(context.size, series.values.size() / 2);
  const size_t rows = series.values.size() - m + 1;
  const Kernels kernels{context.kernels};
  const Vector x = windows(series.values, rows, m), s = covariance(kernels, x, rows, m);
  Vector l = s;
  const jex_int minor = factor(kernels, l, m);

  context.progress.tell("sums in long double");
  const double update_error = error_of(s, m, [&](size_t i, size_t j, long double& size) {
    long double sum = 0;
    for (size_t t = 0; t < rows; ++t) {
      const long double term = static_cast<long double>(x[t + i * rows]) * x[t + j * rows] / rows *
                               (i == j ? 1.001L : 1.0L);
      sum += term;
      size += fabsl(term);
    }
    return sum;
  });
  const double residual = error_of(s, m, [&](size_t i, size_t j, long double& size) {
    long double sum = 0;
    for (size_t k = 0; k <= j; ++k) {
      const long double term = static_cast<long double>(l[i + k * m]) * l[j + k * m];
      sum += term;
      size += fabsl(term);
    }
    return sum;
  });
  long double log_determinant = 0;
  for (size_t i = 0; i < m; ++i) log_determinant += 2 * logl(l[i + i * m]);

  Report report;
  report.problem = {{"matrix", text("covariance of %zu windows of %zu values of %s", rows, m,
                                    series.y_name.c_str())},
                    {"factors", text("S = L L', by blocks of %d columns", int(block))}};
  report.checks = {
      {"covariance", text("%zu columns", m), 1, update_error, 2.0 * rows + 16},
      {"L L'", text("minor %d", int(minor)), 1, minor ? std::nan("") : residual, 2.0 * m + 16}};
  report.findings = {{"determinant", text("exp(%.6Lf)", log_determinant)}};
  report.rates = {rate(kernels, s, m)};
  report.pictures = {draw(series, s, m)};
  return report;
}

}  // namespace jex::tour
