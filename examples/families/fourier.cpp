// The spectrum of a series: its oscillations as peaks, by one Fourier transform.
//
// The centred values c(0 .. n-1) are transformed as they are, whatever n is; P(k) = |C(k)|^2 / n is
// the power at k cycles in the whole series, that is at the period n step / k. The peak is refined
// by a parabola through the amplitudes of three neighbours of a transform padded with zeros to four
// times the length, which samples the same spectrum more finely.
#include <algorithm>
#include <numeric>

#include <jex/dfti.h>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/series.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

using Samples = std::vector<jex_dcomplex>;

// A transform in place, through the core's descriptor interface.
class Fourier {
 public:
  explicit Fourier(size_t n) {
    check(jex_dft_dfti_create_descriptor_d_1d(&handle_, JEX_DFT_DOUBLE, JEX_DFT_COMPLEX, 1,
                                              static_cast<jex_int>(n)));
    check(jex_dft_dfti_set_value_dblval(handle_, JEX_DFTI_BACKWARD_SCALE, 1.0 / n));
    check(jex_dft_dfti_commit_descriptor_external(handle_));
  }
  Fourier(const Fourier&) = delete;
  ~Fourier() { jex_dft_dfti_free_descriptor_external(&handle_); }
  void forward(Samples& x) const { check(jex_dft_dfti_compute_forward(handle_, x.data())); }
  void backward(Samples& x) const { check(jex_dft_dfti_compute_backward(handle_, x.data())); }

 private:
  static void check(jex_int status) {
    if (status != 0) throw std::runtime_error(jex_dft_dfti_error_message_external(status));
  }
  jex_dft_dfti_handle handle_ = nullptr;
};

Samples centred(const Vector& values, size_t length) {
  const double mean = std::accumulate(values.begin(), values.end(), 0.0) / values.size();
  Samples x(length);
  for (size_t i = 0; i < values.size(); ++i) x[i] = {values[i] - mean, 0};
  return x;
}

double power(const jex_dcomplex& c, size_t n) { return (c.re * c.re + c.im * c.im) / n; }

// The transform by its definition, in long double: the error of the result relative to its size, in
// units of eps, and the power at one index.
struct Definition {
  double error;
  long double peak;
};
Definition compare_with_definition(const Samples& x, const Samples& transformed, size_t peak) {
  const size_t n = x.size();
  std::vector<long double> c(n), s(n);
  for (size_t k = 0; k < n; ++k) {
    const long double angle = 2 * acosl(-1.0L) * k / n;
    c[k] = cosl(angle);
    s[k] = sinl(angle);
  }
  RelativeError error;
  long double at_peak = 0;
  for (size_t k = 0; k < n; ++k) {
    long double re = 0, im = 0;
    for (size_t j = 0, index = 0; j < n; ++j, index = (index + k) % n) {
      re += x[j].re * c[index] + x[j].im * s[index];
      im += x[j].im * c[index] - x[j].re * s[index];
    }
    error.add(transformed[k].re, re);
    error.add(transformed[k].im, im);
    if (k == peak) at_peak = (re * re + im * im) / n;
  }
  return {error.in_eps(), at_peak};
}

// The largest of P(1 .. n/2).
size_t highest(const Vector& powers) {
  return std::max_element(powers.begin() + 1, powers.end()) - powers.begin();
}

// The peak of the finely sampled spectrum next to index k of the coarse one, in cycles.
double refined_cycles(const Vector& values, size_t k) {
  constexpr size_t fineness = 4;
  const size_t n = values.size();
  Samples x = centred(values, fineness * n);
  Fourier(x.size()).forward(x);
  const auto amplitude = [&](size_t i) { return std::sqrt(power(x[i], n)); };
  size_t best = fineness * k;
  for (size_t i = fineness * (k - 1) + 1; i < fineness * (k + 1); ++i)
    if (amplitude(i) > amplitude(best)) best = i;
  const double before = amplitude(best - 1), at = amplitude(best), after = amplitude(best + 1);
  const double curvature = before - 2 * at + after;
  const double shift = curvature < 0 ? 0.5 * (before - after) / curvature : 0;
  return (best + shift) / fineness;
}

Rate rate(const Fourier& transform, Samples x) {
  const size_t n = x.size();
  const double pairs = times_per_second([&] { transform.forward(x), transform.backward(x); });
  return {text("transforms of %zu values, counting 5 n log2 n", n),
          2 * pairs * 5.0 * n * std::log2(static_cast<double>(n)) / 1e9, "GFLOP/s"};
}

Picture draw(const Series& series, const Vector& powers, size_t peak, double cycles) {
  const double span = series.values.size() * series.step;
  const svg::Panel values = plot_of(series);
  svg::Panel spectrum{"Spectrum", "cycles per unit of " + series.x_name, "power"};
  spectrum.curves = {{"power", 0, 1 / span, powers}};
  spectrum.marks.push_back({peak / span, powers[peak], text("period %.4g", span / cycles)});
  return {"fourier.svg", svg::draw("Spectrum of " + series.y_name, {values, spectrum})};
}

}  // namespace

Report fourier(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const size_t n = series.values.size();
  const Samples x = centred(series.values, n);
  const Fourier transform(n);
  Samples spectrum = x;
  transform.forward(spectrum);
  Samples back = spectrum;
  transform.backward(back);

  Vector powers(n / 2 + 1);
  for (size_t k = 0; k < powers.size(); ++k) powers[k] = power(spectrum[k], n);
  const size_t peak = highest(powers);
  const double cycles = refined_cycles(series.values, peak);
  context.progress.tell("transform by its definition in long double");
  const Definition definition = compare_with_definition(x, spectrum, peak);
  RelativeError returned;
  long double size = 0, energy = 0;
  for (size_t i = 0; i < n; ++i) {
    returned.add(back[i].re, x[i].re);
    returned.add(back[i].im, x[i].im);
    size += static_cast<long double>(x[i].re) * x[i].re;
    energy += power(spectrum[i], n);
  }

  const double log_n = std::log2(static_cast<double>(n)), bound = 1.5 * log_n;
  Report report;
  report.problem = {{"file", file_name(series.file)},
                    {"series", text("%zu values of %s", n, series.y_name.c_str())}};
  report.checks = {
      {"spectrum", text("%zu values", n), 1, definition.error, bound},
      compare("power at the peak", text("%.10g", powers[peak]), powers[peak], definition.peak,
              powers[peak], 4 * bound * std::sqrt(static_cast<double>(size) / powers[peak])),
      {"there and back", text("%zu values", n), 1, returned.in_eps(), 2 * bound},
      compare("sum of the powers", text("%.10g", static_cast<double>(energy)),
              static_cast<double>(energy), size, static_cast<double>(size), 4 * bound)};
  report.findings = {
      {"period",
       text("%.4g, at %zu cycles in the series; it has %.1f %% of the variance",
            n * series.step / cycles, peak, static_cast<double>(200 * powers[peak] / size))}};
  report.rates = {rate(transform, x)};
  report.pictures.push_back(draw(series, powers, peak, cycles));
  return report;
}

}  // namespace jex::tour
