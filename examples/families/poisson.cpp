// Poisson's equation with a known solution, on five grids, each half as fine as the next:
//
//   -u_xx - u_yy = 3 u,   u(x, y) = exp(x) cos(2 y)   on the unit square,
//
// u given where x = 0 and y = 1, its outward derivative where x = 1 and y = 0. The error falls with
// the square of the step; the residual of the difference equations shows the solver's own rounding.
#include <algorithm>

#include <jex/jex.hpp>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

double exact(double x, double y) { return std::exp(x) * std::cos(2 * y); }

struct Square {
  int n;
  Vector f;                       // the right-hand side, then the solution
  Vector left, right, low, high;  // data of the sides

  explicit Square(int n_) : n(n_), f(points()), left(n + 1), right(left), low(left), high(left) {
    for (int j = 0; j <= n; ++j)
      for (int i = 0; i <= n; ++i) f[at(i, j)] = 3 * exact(place(i), place(j));
    for (int i = 0; i <= n; ++i) {
      left[i] = exact(0, place(i));
      right[i] = exact(1, place(i));  // the derivative of exp(x) is exp(x)
      low[i] = 0;                     // that of cos(2 y) is 0 at y = 0
      high[i] = exact(place(i), 1);
    }
  }
  size_t points() const { return size_t(n + 1) * (n + 1); }
  size_t at(int i, int j) const { return size_t(j) * (n + 1) + i; }
  double place(int i) const { return double(i) / n; }

  void solve() {
    const Region<double, 2> region{{0, 0}, {1, 1}, {n, n}};
    poisson<double, 2>(region, "DNND", f, {left, right, low, high});
  }

  double error() const {
    double worst = 0;
    for (int j = 0; j <= n; ++j)
      for (int i = 0; i <= n; ++i)
        keep_worst(worst, std::fabs(f[at(i, j)] - exact(place(i), place(j))));
    return worst;
  }

  // Of the equations inside, in units of eps times the sum of magnitudes.
  double residual() const {
    const double square = double(n) * n;
    double worst = 0;
    for (int j = 1; j < n; ++j)
      for (int i = 1; i < n; ++i) {
        const double u = f[at(i, j)], source = 3 * exact(place(i), place(j));
        const double around = f[at(i - 1, j)] + f[at(i + 1, j)] + f[at(i, j - 1)] + f[at(i, j + 1)];
        const double r = std::fabs(square * (4 * u - around) - source) /
                         (square * 8 * std::max(1.0, std::fabs(u)) * DBL_EPSILON);
        keep_worst(worst, r);
      }
    return worst;
  }
};

// What is solved for, again and again, is the first solution: bounded, as each one is.
Rate rate(Square square) {
  return {text("unknowns of a grid of %d x %d", square.n + 1, square.n + 1),
          square.points() * times_per_second([&] { square.solve(); }) / 1e6, "million a second"};
}

}  // namespace

Report poisson(const Context& context) {
  const int finest = context.size, coarsest = finest / 16;
  Report report;
  report.problem = {{"equation", "-u_xx - u_yy = f on the unit square, u = exp(x) cos(2 y)"},
                    {"sides", "u at x = 0 and y = 1, its derivative at x = 1 and y = 0"}};
  svg::Panel errors{"Error against the grid", "log2 of the intervals along a side",
                    "log10 of the largest error"};
  Vector logs;
  double last = 0;
  for (int n = coarsest; n <= finest; n *= 2) {
    context.progress.tell(text("grid of %d x %d", n + 1, n + 1));
    Square square(n);
    square.solve();
    const double error = square.error(), order = std::log2(last / error);
    logs.push_back(std::log10(error));
    report.findings.push_back(
        {text("%d x %d", n + 1, n + 1),
         last == 0 ? text("error %.3e", error) : text("error %.3e, order %.3f", error, order)});
    last = error;
    if (2 * n <= finest) continue;
    // Rounding has its part in the finest error: a hundredth of an order.
    report.checks = {
        {"order", text("%.4f", order), 1, std::fabs(order - 2), 0.01, "orders"},
        {"residual", text("%zu equations", square.points()), 1, square.residual(), 64}};
    report.pictures = {{"poisson.svg", svg::draw_field({"u(x, y) = exp(x) cos(2 y)",
                                                        "x",
                                                        "y",
                                                        "u",
                                                        {0, 1},
                                                        {0, 1},
                                                        n + 1,
                                                        n + 1,
                                                        square.f})}};
    report.rates = {rate(square)};
  }
  errors.curves = {{"error", std::log2(coarsest), 1, logs}};
  report.pictures.push_back({"order.svg", svg::draw("Second order", {errors})});
  return report;
}

}  // namespace jex::tour
