// The lag correlation matrix of a series, by matrix-vector kernels: its leading mode by a power
// iteration, and the linear prediction of the series by blocked triangular solves.
//
// R(i, j) = r(|i - j|), r(k) the sum of c(i) c(i + k) over that of c(i)^2, c the centred values. R
// = U'U is factored by bordering: column j of U above its diagonal solves U' u = R(1:j-1, j). The
// prediction coefficients a solve R a = r(1:m), by U'z = r, U a = z.
#include <algorithm>
#include <chrono>
#include <numeric>

#include "families/kernels.h"
#include "tour/family.h"
#include "tour/series.h"
#include "tour/svg.h"
#include "tour/text.h"

namespace jex::tour {
namespace {

constexpr size_t most_lags = 128;
// Added to r(0) = 1: a series that repeats itself exactly has a singular R.
constexpr double ridge = 1e-6;

// r(0) .. r(m), m lags.
Vector autocorrelation(const Vector& values, size_t m) {
  const size_t n = values.size();
  const double mean = std::accumulate(values.begin(), values.end(), 0.0) / n;
  Vector r(m + 1);
  for (size_t k = 0; k <= m; ++k)
    for (size_t i = 0; i + k < n; ++i) r[k] += (values[i] - mean) * (values[i + k] - mean);
  for (size_t k = m; k > 0; --k) r[k] /= r[0];
  r[0] = 1 + ridge;
  return r;
}

Vector toeplitz(const Vector& r, size_t m) {
  Vector matrix(m * m);
  for (size_t j = 0; j < m; ++j)
    for (size_t i = 0; i < m; ++i) matrix[i + j * m] = r[i < j ? j - i : i - j];
  return matrix;
}

// U with U'U = R in the upper triangle.
Vector factor(const Kernels& kernels, const Vector& matrix, size_t m) {
  Vector u(m * m, 0.0);
  for (size_t j = 0; j < m; ++j) {
    double* column = &u[j * m];
    std::copy_n(&matrix[j * m], j, column);
    kernels.trsv("T", j, u, m, column);
    column[j] = std::sqrt(matrix[j + j * m] - kernels.dot(j, column, column));
  }
  return u;
}

// A matrix and a vector multiplied in long double, with the size of what was added.
struct Product {
  std::vector<long double> value;
  double largest = 0;

  Product(const Vector& matrix, const Vector& x) : value(x.size()) {
    for (size_t i = 0; i < x.size(); ++i) {
      long double size = 0;
      for (size_t j = 0; j < x.size(); ++j) {
        const long double term = static_cast<long double>(matrix[i + j * x.size()]) * x[j];
        value[i] += term;
        size += fabsl(term);
      }
      largest = std::max(largest, static_cast<double>(size));
    }
  }
};

// max |product - y| in units of eps times the largest sum of magnitudes; NaN stays NaN.
double residual(const Product& product, const Vector& y) {
  long double worst = 0;
  for (size_t i = 0; i < y.size(); ++i) {
    const long double distance = fabsl(product.value[i] - y[i]);
    if (!(distance <= worst)) worst = distance;
  }
  return static_cast<double>(worst / (DBL_EPSILON * product.largest));
}

struct Mode {
  Vector shape, image;  // |shape| = 1, image = R shape
  double eigenvalue;
  int steps;
};

// The two modes of one oscillation lie close together, so a step may gain little.
Mode leading_mode(const Kernels& kernels, const Vector& matrix, size_t m) {
  constexpr int most_steps = 20000;
  Mode mode{Vector(m), Vector(m), 0, 0};
  for (size_t i = 0; i < m; ++i) mode.shape[i] = 1.0 / (1 + i);
  for (double change = 1; mode.steps < most_steps && change > 1e-14; ++mode.steps) {
    kernels.scal(1 / kernels.nrm2(mode.shape), mode.shape);
    kernels.symv(matrix, mode.shape, mode.image);
    const double previous = mode.eigenvalue;
    mode.eigenvalue = kernels.dot(m, mode.shape.data(), mode.image.data());
    change = std::fabs(mode.eigenvalue - previous) / mode.eigenvalue;
    if (change > 1e-14) mode.shape = mode.image;
  }
  kernels.scal(1 / kernels.nrm2(mode.shape), mode.shape);
  kernels.symv(matrix, mode.shape, mode.image);
  mode.eigenvalue = kernels.dot(m, mode.shape.data(), mode.image.data());
  return mode;
}

template <class Work>
double rate(double flops, Work work) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  double seconds = 0;
  int passes = 0;
  for (; seconds < 0.05; seconds = std::chrono::duration<double>(Clock::now() - start).count())
    for (int i = 0; i < 16; ++i, ++passes) work();
  return flops * passes / seconds;
}

Picture draw(const Series& series, const Mode& mode, const Vector& coefficients) {
  const std::string lag = "lag, in units of " + series.x_name;
  svg::Panel shape{"Leading mode", lag, "mode", {}, {{0, ""}}, {}};
  shape.curves.push_back({"mode", 0, series.step, mode.shape});
  svg::Panel weights{"Prediction", lag, "weight", {}, {{0, ""}}, {}};
  weights.curves.push_back({"weights", series.step, series.step, coefficients});
  return {"level2.svg",
          svg::draw("Leading mode and prediction of " + series.y_name, {shape, weights})};
}

}  // namespace

Report level2(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const size_t m = std::min(most_lags, series.values.size() / 2);
  const Kernels kernels{context.kernels};
  const Vector r = autocorrelation(series.values, m);
  const Vector matrix = toeplitz(r, m);

  const Vector u = factor(kernels, matrix, m);
  Vector coefficients(r.begin() + 1, r.end());
  kernels.trsv("T", m, u, m, coefficients.data());
  kernels.trsv("N", m, u, m, coefficients.data());
  const Vector lagged(r.begin() + 1, r.end());
  const double error_variance = r[0] - kernels.dot(m, coefficients.data(), lagged.data());

  const Mode mode = leading_mode(kernels, matrix, m);
  const Product solved(matrix, coefficients), image(matrix, mode.shape);
  long double quotient = 0, length = 0, distance = 0;
  for (size_t i = 0; i < m; ++i) {
    quotient += mode.shape[i] * image.value[i];
    length += static_cast<long double>(mode.shape[i]) * mode.shape[i];
    distance = std::max(distance, fabsl(image.value[i] - mode.eigenvalue * mode.shape[i]));
  }
  quotient /= length;

  Vector y(m), x(m, 1.0);
  const double order = m;
  const double product_rate = rate(2 * order * order, [&] { kernels.symv(matrix, x, y); });
  const double solve_rate = rate(order * order, [&] {
    x.assign(m, 1.0);
    kernels.trsv("N", m, u, m, x.data());
  });

  const double bound = 4 * order + 16;
  Report report;
  report.problem = {{"matrix", text("correlation of %s over %zu lags, symmetric, of order %zu",
                                    series.y_name.c_str(), m, m)}};
  report.checks = {compare("leading eigenvalue", text("%.10g", mode.eigenvalue), mode.eigenvalue,
                           quotient, image.largest * std::sqrt(order), bound),
                   {"R times its mode", text("%zu rows", m), 1, residual(image, mode.image), bound},
                   {"R times prediction", text("%zu rows", m), 1, residual(solved, lagged), bound}};
  report.findings = {
      {"mode", text("%.1f %% of the variance, after %d steps, |R v - lambda v| = %.1e lambda",
                    100 * mode.eigenvalue / (order * r[0]), mode.steps,
                    static_cast<double>(distance) / mode.eigenvalue)},
      {"prediction",
       text("one step ahead leaves %.1f %% of the variance", 100 * error_variance / r[0])},
      {"rate", text("%.1f GFLOP/s symmetric product, %.1f GFLOP/s triangular solve",
                    product_rate / 1e9, solve_rate / 1e9)}};
  report.pictures.push_back(draw(series, mode, coefficients));
  return report;
}

}  // namespace jex::tour
