// Hilbert's matrices, scaled to integers, whose condition grows by a factor of thirty with each
// order: A x = b by a factorization in double and iterative refinement. The residual b - A x is a
// difference of large numbers: in double it is noise, and refinement goes nowhere; in extra
// precision, with x kept as the sum of two doubles, each step gains as many digits as the
// factorization has right.
//
//   N. J. Higham, "Accuracy and Stability of Numerical Algorithms", 2nd edition (2002), chapter 12.
#include <jex/jex.hpp>

#include <cstdint>
#include <numeric>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

// The Hilbert matrix times the least common multiple of its denominators: exact in double.
Vector hilbert(jex_int n) {
  int64_t multiple = 1;
  for (jex_int k = 2; k < 2 * n; ++k) multiple = std::lcm(multiple, int64_t(k));
  Vector a(size_t(n) * n);
  for (jex_int j = 0; j < n; ++j)
    for (jex_int i = 0; i < n; ++i) {
      const int64_t element = multiple / (i + j + 1);
      a[size_t(j) * n + i] = double(element);
    }
  return a;
}

// A x = b with the solution 1 everywhere: sums of integers below 2^53, so b is exact.
struct System {
  const Kernels& kernels;
  jex_int n;
  Vector a = hilbert(n), b = Vector(n), factor = a;

  System(const Kernels& kernels, jex_int n) : kernels(kernels), n(n) {
    for (size_t k = 0; k < a.size(); ++k) b[k % n] += a[k];
    if (kernels.potrf(n, factor.data(), n) != 0)
      throw std::runtime_error("a Hilbert matrix was found not to be positive definite");
  }
  // A^-1 b as far as L L' = A holds
  Vector solve(Vector x) const {
    kernels.trsv("L", "N", n, factor, n, x.data());
    kernels.trsv("L", "T", n, factor, n, x.data());
    return x;
  }
};

// Refines by so many steps at most, and returns the largest error of the result.
template <class Precision>
double refined(Precision precision, const System& s, int steps) {
  Vector x = s.solve(s.b), tail(s.n);
  const auto a = matrix(s.a.data(), s.n, s.n, Layout::column_major);
  for (int step = 0; step < steps; ++step) {
    Vector r = s.b;
    multiply(precision, -1., Op::none, a, vector(x.data(), s.n), vector(tail.data(), s.n), 1.,
             vector(r.data(), s.n));
    const Vector d = s.solve(r);
    double largest = 0;
    for (jex_int i = 0; i < s.n; ++i) {
      const double sum = tail[i] + d[i], head = x[i] + sum;
      tail[i] = sum - (head - x[i]);
      x[i] = head;
      largest = std::fmax(largest, std::fabs(d[i]));
    }
    if (largest < 1e-16) break;  // the next step would change no digit of the heads
  }
  double worst = 0;
  for (jex_int i = 0; i < s.n; ++i) keep_worst(worst, std::fabs((x[i] - 1) + tail[i]));
  return worst;
}

Rate rate() {
  const jex_int n = 500;
  const Vector a(size_t(n) * n, 0.1), x(n, 1.0 / 3);
  Vector y(n);
  const double products = times_per_second([&] {
    multiply(extra, 1., Op::none, matrix(a.data(), n, n, Layout::column_major), vector(x.data(), n),
             0., vector(y.data(), n));
  });
  return {text("extra-precision product of %d x %d, counting 2 n^2", n, n),
          2.0 * n * n * products / 1e9, "GFLOP/s"};
}

}  // namespace

Report extended(const Context& context) {
  const Kernels kernels{context.kernels};
  constexpr jex_int smallest = 2;
  Report report;
  report.problem = {{"systems", text("A x = b, A the Hilbert matrices of order %d to %d scaled to "
                                     "integers, x = (1, .., 1)",
                                     smallest, context.size)}};
  svg::Panel panel{"Error of the solution", "order of the matrix", "log10 of the error"};
  panel.curves = {{"factorization", smallest, 1, {}},
                  {"refined in double", smallest, 1, {}},
                  {"refined in extra precision", smallest, 1, {}}};
  for (jex_int n = smallest; n <= context.size; ++n) {
    const System system(kernels, n);
    const double errors[] = {refined(native, system, 0), refined(native, system, 30),
                             refined(extra, system, 30)};
    for (size_t k = 0; k < std::size(errors); ++k)
      panel.curves[k].y.push_back(std::log10(std::max(errors[k], 1e-60)));
    report.checks.push_back({text("x, order %d", n), "1", 1, errors[2] / DBL_EPSILON, 1});
    report.findings.push_back(
        {text("order %d", n), text("error %.1e factored, %.1e refined in double, %.1e in extra",
                                   errors[0], errors[1], errors[2])});
  }
  report.rates = {rate()};
  report.pictures = {{"extended.svg", svg::draw("Refinement for Hilbert's matrices", {panel})}};
  return report;
}

}  // namespace jex::tour
