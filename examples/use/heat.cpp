// A C++ program: the steady temperature of a plate with given edges, whose solution is known.
#include <jex/jex.hpp>

#include <cmath>
#include <cstdio>
#include <vector>

int main() {
  constexpr int cells = 64, points = cells + 1;
  const auto known = [](double x, double y) { return std::exp(x) * std::sin(y); };

  std::vector<double> west(points), east(points), south(points), north(points);
  for (int i = 0; i < points; ++i) {
    const double t = double(i) / cells;
    west[i] = known(0, t), east[i] = known(1, t);
    south[i] = known(t, 0), north[i] = known(t, 1);
  }
  const jex::Region<double, 2> plate{{0, 0}, {1, 1}, {cells, cells}};
  std::vector<double> u(plate.points(), 0.0);  // no sources inside
  jex::poisson(plate, "DDDD", std::span(u), {west, east, south, north});

  double error = 0;
  for (int j = 0; j < points; ++j) {
    for (int i = 0; i < points; ++i) {
      const double there = known(double(i) / cells, double(j) / cells);
      error = std::fmax(error, std::fabs(u[i + j * points] - there));
    }
  }
  std::printf("largest error on a grid of %d by %d: %.1e\n", cells, cells, error);
  return error < 1e-5 ? 0 : 1;
}
