// The lag correlation matrix of a series, by matrix-vector kernels: its leading mode by a power
// iteration, and the linear prediction of the series by blocked triangular solves.
//
// R(i, j) = r(|i - j|), r(k) the sum of c(i) c(i + k) over that of c(i)^2, c the centred values. R
// = U'U is factored by bordering: column j of U above its diagonal solves U' u = R(1:j-1, j). The
// prediction coefficients a solve R a = r(1:m), by U'z = r, U a = z.
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
    kernels.trsv("U", "T", j, u, m, column);
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
  for (size_t i = 0; i < y.size(); ++i) keep_worst(worst, fabsl(product.value[i] - y[i]));
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

std::vector<Rate> rates(const Kernels& kernels, const Vector& matrix, const Vector& u, size_t m) {
  Vector y(m), x(m, 1.0);
  const double flops = double(m) * m;
  const double products = times_per_second([&] { kernels.symv(matrix, x, y); });
  const double solves = times_per_second([&] {
    x.assign(m, 1.0);
    kernels.trsv("U", "N", m, u, m, x.data());
  });
  return {{text("symmetric product of order %zu", m), 2 * flops * products / 1e9, "GFLOP/s"},
          {text("triangular solve of order %zu", m), flops * solves / 1e9, "GFLOP/s"}};
}

Picture draw(const Series& series, const Mode& mode, const Vector& coefficients) {
  const std::string lag = "lag, in units of " + series.x_name;
  svg::Panel shape{"Leading mode", lag, "mode"};
  shape.curves = {{"mode", 0, series.step, mode.shape}};
  svg::Panel weights{"Prediction", lag, "weight"};
  weights.curves = {{"weights", series.step, series.step, coefficients}};
  shape.levels = weights.levels = {{0, ""}};
  return {"level2.svg",
          svg::draw("Leading mode and prediction of " + series.y_name, {shape, weights})};
}

}  // namespace

Report level2(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const size_t m = std::min<size_t>(context.size, series.values.size() / 2);
  const Kernels kernels{context.kernels};
  const Vector r = autocorrelation(series.values, m);
  const Vector matrix = toeplitz(r, m);

  const Vector u = factor(kernels, matrix, m);
  Vector coefficients(r.begin() + 1, r.end());
  kernels.trsv("U", "T", m, u, m, coefficients.data());
  kernels.trsv("U", "N", m, u, m, coefficients.data());
  const Vector lagged(r.begin() + 1, r.end());
  const double error_variance = r[0] - kernels.dot(m, coefficients.data(), lagged.data());

  context.progress.tell("power iteration");
  const Mode mode = leading_mode(kernels, matrix, m);
  const Product solved(matrix, coefficients), image(matrix, mode.shape);
  long double quotient = 0, length = 0, distance = 0;
  for (size_t i = 0; i < m; ++i) {
    quotient += mode.shape[i] * image.value[i];
    length += static_cast<long double>(mode.shape[i]) * mode.shape[i];
    distance = std::max(distance, fabsl(image.value[i] - mode.eigenvalue * mode.shape[i]));
  }
  quotient /= length;

  const double order = m, bound = 4 * order + 16;
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
       text("one step ahead leaves %.1f %% of the variance", 100 * error_variance / r[0])}};
  report.rates = rates(kernels, matrix, u, m);
  report.pictures.push_back(draw(series, mode, coefficients));
  return report;
}

}  // namespace jex::tour
