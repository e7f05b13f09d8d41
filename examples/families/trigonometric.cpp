// A series smoothed by its cosines: no phase, and no jump between its ends, as a Fourier series of
// it would have.
//
// Of values v(0 .. n), the coefficients F(k) of
//   v(j) = sum'' of F(k) cos(k j pi / n),   k = 0 .. n, first and last terms halved,
// are one cosine transform; those of the slowest waves alone, taken back, are the smooth part.
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

constexpr jex_int cosines_at_points = 1;  // DCT-I

class CosineTransform {
 public:
  CosineTransform(const Module& kernels, Vector f) : kernels_(kernels), tables_(f.size()) {
    const jex_int n = f.size() - 1;
    jex_int status;
    kernels_.jex_pdett_d_init_trig_transform(&n, &cosines_at_points, parameters_, tables_.data(),
                                             &status);
    if (status == 0)
      kernels_.jex_pdett_d_commit_trig_transform(f.data(), &handle_, parameters_, tables_.data(),
                                                 &status);
    check(status);
  }
  CosineTransform(const CosineTransform&) = delete;
  ~CosineTransform() {
    jex_int status;
    kernels_.jex_pdett_free_trig_transform(&handle_, parameters_, &status);
  }
  void forward(Vector& f) { compute(kernels_.jex_pdett_d_forward_trig_transform, f); }
  void backward(Vector& f) { compute(kernels_.jex_pdett_d_backward_trig_transform, f); }

 private:
  template <class Entry>
  void compute(Entry entry, Vector& f) {
    jex_int status;
    entry(f.data(), &handle_, parameters_, tables_.data(), &status);
    check(status);
  }
  static void check(jex_int status) {
    if (status != 0) throw std::runtime_error(text("trigonometric transform: status %d", status));
  }
  const Module& kernels_;
  Vector tables_;
  jex_int parameters_[11];
  jex_dft_dfti_handle handle_ = nullptr;
};

// cos(k pi / n) for k = 0 .. 2n - 1.
std::vector<long double> cosines(size_t n) {
  std::vector<long double> c(2 * n);
  for (size_t k = 0; k < 2 * n; ++k) c[k] = cosl(acosl(-1.0L) * k / n);
  return c;
}

// The first count terms of the sum, by its definition.
Vector sum_of_cosines(const Vector& coefficients, size_t count) {
  const size_t n = coefficients.size() - 1;
  const std::vector<long double> c = cosines(n);
  Vector result(n + 1);
  for (size_t j = 0; j <= n; ++j) {
    long double sum = 0;
    for (size_t k = 0, index = 0; k < count; ++k) {
      sum += coefficients[k] * c[index] * (k == 0 || k == n ? 0.5L : 1.0L);
      index += j;
      if (index >= 2 * n) index -= 2 * n;
    }
    result[j] = static_cast<double>(sum);
  }
  return result;
}

double error_of(const Vector& computed, const Vector& exact) {
  RelativeError error;
  for (size_t i = 0; i < computed.size(); ++i) error.add(computed[i], exact[i]);
  return error.in_eps();
}

// The share of the variance that the coefficients below `count` have.
double share(const Vector& coefficients, size_t count) {
  double kept = 0, all = 0;
  for (size_t k = 1; k < coefficients.size(); ++k) {
    const double power = coefficients[k] * coefficients[k];
    all += power;
    if (k < count) kept += power;
  }
  return kept / all;
}

Picture draw(const Series& series, const Vector& smooth) {
  svg::Panel panel = plot_of(series);
  panel.curves.push_back({"smooth", series.first, series.step, smooth});
  return {"trigonometric.svg", svg::draw(series.y_name + " and its slow waves", {panel})};
}

}  // namespace

Report trigonometric(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const size_t n = series.values.size() - 1;
  const size_t kept = 1 + std::min<size_t>(context.size, n / 2);
  CosineTransform transform(context.kernels, series.values);

  Vector coefficients = series.values;
  transform.forward(coefficients);
  Vector back = coefficients;
  transform.backward(back);
  Vector smooth = coefficients;
  std::fill(smooth.begin() + kept, smooth.end(), 0.0);
  transform.backward(smooth);

  context.progress.tell("sums of cosines in long double");
  const double bound = 2 * std::sqrt(double(n));
  Report report;
  report.problem = {{"file", file_name(series.file)},
                    {"series", text("%zu values of %s", n + 1, series.y_name.c_str())},
                    {"smooth part", text("cosines 0 to %zu, periods of %.4g and more", kept - 1,
                                         2 * n * series.step / (kept - 1))}};
  report.checks = {
      {"coefficients", text("%zu", n + 1), 1,
       error_of(sum_of_cosines(coefficients, n + 1), series.values), bound},
      {"smooth part", text("%zu values", n + 1), 1,
       error_of(smooth, sum_of_cosines(coefficients, kept)), bound},
      {"there and back", text("%zu values", n + 1), 1, error_of(back, series.values), bound}};
  report.findings = {
      {"smooth part", text("has %.1f %% of the variance", 100 * share(coefficients, kept))}};
  const double pairs = times_per_second([&] { transform.forward(back), transform.backward(back); });
  report.rates = {{text("cosine transforms of %zu values, counting 2.5 n log2 n", n + 1),
                   2 * pairs * 2.5 * n * std::log2(double(n)) / 1e9, "GFLOP/s"}};
  report.pictures.push_back(draw(series, smooth));
  return report;
}

}  // namespace jex::tour
