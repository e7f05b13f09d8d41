// The front: right calls reach the solver, wrong ones answer with the position of their first wrong
// argument and touch nothing.
#include <jex/core.h>
#include <jex/jex.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

TEST(HelmholtzFront, AnswersWithTheFirstWrongArgument) {
  const double begin[] = {0, 0, 0}, end[] = {1, 1, 1}, back[] = {1, 1, 0}, bad[] = {0, NAN, 0};
  const jex_int n[] = {2, 2, 1}, thin[] = {2, 1, 1}, huge[] = {1 << 15, 1 << 15, 1};
  const double* const data[6] = {};
  std::vector<double> f(18, 7.0);
  const auto call = [&](jex_int d, const double* a, const double* b, const jex_int* m,
                        const char* letters, double q, const double* const* sides,
                        double* x) { return jex_dhelmholtz(d, a, b, m, letters, q, sides, x); };
  EXPECT_EQ(call(1, begin, end, n, "DDDDDD", 0, data, f.data()), 1);
  EXPECT_EQ(call(3, nullptr, end, n, "DDDDDD", 0, data, f.data()), 2);
  EXPECT_EQ(call(3, bad, end, n, "DDDDDD", 0, data, f.data()), 2);
  EXPECT_EQ(call(3, begin, back, n, "DDDDDD", 0, data, f.data()), 3);
  EXPECT_EQ(call(3, begin, end, thin, "DDDDDD", 0, data, f.data()), 4);
  EXPECT_EQ(call(2, begin, end, huge, "DDDD", 0, data, f.data()), 4);
  EXPECT_EQ(call(3, begin, end, n, "DDDDD", 0, data, f.data()), 5);
  EXPECT_EQ(call(3, begin, end, n, "DDDDDD", INFINITY, data, f.data()), 6);
  EXPECT_EQ(call(3, begin, end, n, "DDDDDD", 0, nullptr, f.data()), 7);
  EXPECT_EQ(call(3, begin, end, n, "DDDDDD", 0, data, nullptr), 8);
  EXPECT_EQ(f, std::vector<double>(18, 7.0));
  EXPECT_EQ(call(2, begin, end, thin, "dndN", 0, data, f.data()), 0);
}

// -u'' = 2 in x with u = x (1 - x), exact in second differences: zero where it is zero, derivatives
// elsewhere.
template <class T>
void parabola() {
  const jex::Region<T, 2> region{{0, 0}, {1, 3}, {20, 12}};
  std::vector<T> f(region.points(), T(2));
  jex::poisson<T, 2>(region, "DDNN", std::span<T>(f));
  const T eps = std::numeric_limits<T>::epsilon();
  for (int i = 0; i <= 20; ++i)
    for (int j = 0; j <= 12; ++j) {
      const T x = T(i) / 20;
      EXPECT_NEAR(f[j * 21 + i], x * (1 - x), 100 * eps);
    }

  const jex::Region<T, 3> box{{0, 0, 0}, {1, 1, 1}, {6, 4, 5}};
  std::vector<T> g(box.points(), T(2)), slopes(box.side_points(0), T(-1));
  jex::Sides<T, 3> sides;
  sides[0] = sides[1] = slopes;
  jex::helmholtz<T, 3>(box, "NNNNNN", T(0), std::span<T>(g), sides);
  // The mean of x - x^2 on the grid, ends counted half, and on the interval differ by h^2 / 6.
  for (int i = 0; i <= 6; ++i) {
    const T x = T(i) / 6;
    EXPECT_NEAR(g[i + 7 * 13], x * (1 - x) - T(1.0 / 6 - 1.0 / 216), 100 * eps);
  }
  EXPECT_THROW((jex::poisson<T, 3>(box, "NNNN", std::span<T>(g))), std::invalid_argument);
  EXPECT_THROW((jex::poisson<T, 3>(box, "NNNNNX", std::span<T>(g))), std::invalid_argument);
  EXPECT_THROW((jex::poisson<T, 2>(region, "NNNN", std::span<T>(g))), std::invalid_argument);
  sides[5] = std::span<const T>(slopes.data(), 3);
  EXPECT_THROW((jex::helmholtz<T, 3>(box, "NNNNNN", T(0), std::span<T>(g), sides)),
               std::invalid_argument);
}

TEST(HelmholtzFront, SolvesWhatSecondDifferencesSolveExactly) {
  parabola<double>();
  parabola<float>();
}

// What cannot be solved is left out: a constant in the right-hand side of an all-Neumann problem
// changes nothing, and the mean is 0.
TEST(HelmholtzFront, LeastSquaresWhereThereIsNoSolution) {
  const jex::Region<double, 2> region{{0, 0}, {1, 1}, {30, 17}};
  std::vector<double> f(region.points()), g;
  for (size_t i = 0; i < f.size(); ++i) f[i] = std::sin(double(i));
  g = f;
  for (double& v : g) v += 3;
  jex::poisson(region, "NNNN", std::span(f));
  jex::poisson<double, 2>(region, "NNNN", std::span(g));
  double mean = 0;
  for (int j = 0; j <= 17; ++j)
    for (int i = 0; i <= 30; ++i) {
      EXPECT_NEAR(f[j * 31 + i], g[j * 31 + i], 1e-13);
      mean += f[j * 31 + i] * (i % 30 ? 1 : 0.5) * (j % 17 ? 1 : 0.5);
    }
  EXPECT_NEAR(mean, 0, 1e-12);
}

}  // namespace
