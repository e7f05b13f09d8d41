// Convergence of second order, and the difference equations themselves, for every combination of
// conditions.
#include "pdepl/helmholtz.h"

using namespace jex::test;

namespace {

// A solution with values and derivatives on every side.
double u(int d, const double* p) {
  const double plane = std::exp(0.5 * p[0]) * std::cos(1.3 * p[1] + 0.2);
  return d == 2 ? plane : plane * std::sin(0.9 * p[2] + 0.5);
}
double slope(int d, const double* p, int axis) {
  const double e = std::exp(0.5 * p[0]), c = std::cos(1.3 * p[1] + 0.2),
               s = std::sin(1.3 * p[1] + 0.2);
  const double z = d == 2 ? 1 : std::sin(0.9 * p[2] + 0.5);
  if (axis == 0) return 0.5 * e * c * z;
  if (axis == 1) return -1.3 * e * s * z;
  return e * c * 0.9 * std::cos(0.9 * p[2] + 0.5);
}
double minus_laplacian(int d, const double* p) {
  return (-0.25 + 1.69 + (d == 3 ? 0.81 : 0)) * u(d, p);
}

template <class T>
double error_of(const Box& box, const std::string& letters, double q) {
  Helmholtz<T> problem(box, letters, q);
  problem.ipar[1] = problem.ipar[2] = 0;
  const auto place = [&](const int(&p)[3], double(&x)[3]) {
    for (int a = 0; a < 3; ++a) x[a] = a < box.dimensions ? box.begin[a] + box.h(a) * p[a] : 0;
  };
  each_point(box, [&](int i, int j, int k) {
    const int p[3] = {i, j, k};
    double x[3];
    place(p, x);
    problem.f[box.at(i, j, k)] =
        is_given(letters, box, p)
            ? T(NAN)
            : T(minus_laplacian(box.dimensions, x) + q * u(box.dimensions, x));
    for (int a = 0; a < box.dimensions; ++a)
      for (int end = 0; end < 2; ++end) {
        if (p[a] != (end ? box.n[a] : 0)) continue;
        const double outward = (end ? 1 : -1) * slope(box.dimensions, x, a);
        problem.data[2 * a + end][at_side(box, a, p)] =
            T(is_neumann(letters, 2 * a + end) ? outward : u(box.dimensions, x));
      }
  });
  const bool is_singular = q == 0 && letters.find('D') == std::string::npos;
  EXPECT_EQ(problem.commit(), q < 0 ? 1 : 0) << letters;
  EXPECT_EQ(problem.solve(), is_singular ? 1 : 0) << letters;
  EXPECT_EQ(problem.ipar[0], 0);

  double mean = 0, total = 0;
  each_point(box, [&](int i, int j, int k) {
    const int p[3] = {i, j, k};
    double x[3];
    place(p, x);
    total += weight(box, p);
    mean += weight(box, p) * (u(box.dimensions, x) - double(problem.f[box.at(i, j, k)]));
  });
  mean = is_singular ? mean / total : 0;
  double error = 0;
  each_point(box, [&](int i, int j, int k) {
    const int p[3] = {i, j, k};
    double x[3];
    place(p, x);
    const double difference = u(box.dimensions, x) - double(problem.f[box.at(i, j, k)]) - mean;
    error = !(std::abs(difference) <= error) ? std::abs(difference) : error;
    if (!is_given(letters, box, p)) return;
    // Exactly the data of a side, that of the later axis where sides meet.
    for (int a = box.dimensions - 1; a >= 0; --a)
      for (int end = 1; end >= 0; --end)
        if (p[a] == (end ? box.n[a] : 0) && !is_neumann(letters, 2 * a + end)) {
          EXPECT_EQ(problem.f[box.at(i, j, k)], problem.data[2 * a + end][at_side(box, a, p)]);
          return;
        }
  });
  return error;
}

void converges(int dimensions, Box box) {
  Box fine = box;
  for (jex_int& n : fine.n) n *= 2;
  for (const std::string& letters : all_letters(dimensions))
    for (const double q : {0.0, 2.5, -0.3}) {
      const double coarse = error_of<double>(box, letters, q);
      const double ratio = coarse / error_of<double>(fine, letters, q);
      EXPECT_TRUE(ratio > 3.5 && ratio < 4.6) << letters << " q " << q << " ratio " << ratio;
      const double single = error_of<float>(box, letters, q);
      EXPECT_FALSE(!(std::abs(single - coarse) < 3e-4))
          << letters << " q " << q << " single " << single << " double " << coarse;
    }
}

TEST(Helmholtz, ConvergesOnRectangles) {
  converges(2, {2, {0.2, -0.3, 0}, {1.5, 0.9, 0}, {16, 21, 0}});
}
TEST(Helmholtz, ConvergesInBoxes) {
  converges(3, {3, {0.2, -0.3, 0.1}, {1.5, 0.9, 1.2}, {9, 8, 10}});
}

// Every equation of the grid, for random data: the order of the elimination does not matter here,
// its residual does.
template <class T>
void satisfies(const Box& box, const std::string& letters, double q, jex_int threads) {
  Helmholtz<T> problem(box, letters, q);
  problem.ipar[2] = 0;
  problem.ipar[22] = threads;
  std::mt19937 random(box.size() + letters[0] + 2 * letters[3]);
  std::uniform_real_distribution<float> value(-1, 1);
  for (T& v : problem.f) v = value(random);
  for (auto& side : problem.data)
    for (T& v : side) v = value(random);
  const std::vector<T> f = problem.f;
  ASSERT_GE(problem.commit(), 0);
  ASSERT_EQ(problem.solve(), 0);
  const std::vector<T>& v = problem.f;
  double largest = 0, residual = 0, scale = std::abs(q);
  for (const T x : v) largest = std::max(largest, std::abs(double(x)));
  for (int a = 0; a < box.dimensions; ++a) scale += 4 / (box.h(a) * box.h(a));
  each_point(box, [&](int i, int j, int k) {
    const int p[3] = {i, j, k};
    if (is_given(letters, box, p)) return;
    double left = (q) * double(v[box.at(i, j, k)]), right = double(f[box.at(i, j, k)]);
    for (int a = 0; a < box.dimensions; ++a) {
      const double h = box.h(a);
      double around = 0;
      for (int end = 0; end < 2; ++end) {
        int beside[3] = {i, j, k};
        if (p[a] == (end ? box.n[a] : 0)) {
          right += 2 / h * double(problem.data[2 * a + end][at_side(box, a, p)]);
          beside[a] += end ? -1 : 1;
        } else {
          beside[a] += end ? 1 : -1;
        }
        around += double(v[box.at(beside[0], beside[1], beside[2])]);
      }
      left += (2 * double(v[box.at(i, j, k)]) - around) / (h * h);
    }
    const double r = std::abs(left - right);
    residual = !(r <= residual) ? r : residual;
  });
  const double n = std::max({box.n[0], box.n[1], box.n[2]});
  const double bound = std::numeric_limits<T>::epsilon() * 8 * std::sqrt(n) * (scale * largest + 1);
  EXPECT_FALSE(!(residual <= bound)) << letters << " " << box.n[0] << " x " << box.n[1] << " x "
                                     << box.n[2] << " q " << q << " " << residual / bound;
}

TEST(Helmholtz, SatisfiesItsDifferenceEquations) {
  const std::vector<Box> boxes = {{2, {}, {1, 1, 0}, {2, 1, 0}},   {2, {}, {1, 2, 0}, {3, 2, 0}},
                                  {2, {}, {3, 1, 0}, {97, 64, 0}}, {2, {}, {1, 1, 0}, {30, 300, 0}},
                                  {3, {}, {1, 2, 3}, {2, 2, 1}},   {3, {}, {1, 1, 1}, {13, 20, 9}}};
  for (const Box& box : boxes)
    for (const std::string& letters : all_letters(box.dimensions))
      for (const double q : {0.5, -0.2}) {
        satisfies<double>(box, letters, q, 1);
        satisfies<float>(box, letters, q, 3);
      }
}

TEST(Helmholtz, ThreadsDoNotChangeABit) {
  for (const Box& box :
       {Box{2, {}, {1, 1, 0}, {150, 120, 0}}, Box{3, {}, {1, 1, 1}, {20, 21, 22}}}) {
    const std::string letters = box.dimensions == 2 ? "DNND" : "NNDNDD";
    std::vector<double> results[2];
    for (const jex_int threads : {1, 5}) {
      jex_set_num_threads(threads);
      Helmholtz<double> problem(box, letters, 1);
      problem.ipar[22] = threads;
      for (size_t i = 0; i < problem.f.size(); ++i) problem.f[i] = std::sin(double(i * i % 1009));
      ASSERT_EQ(problem.commit(), 0);
      ASSERT_EQ(problem.solve(), 0);
      results[threads > 1] = problem.f;
    }
    EXPECT_EQ(results[0], results[1]);
  }
  jex_set_num_threads(0);
}

}  // namespace
