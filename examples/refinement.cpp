// Solves A x = b for Hilbert matrices scaled to integers, whose condition grows by a factor of
// thirty with each order, by a factorization in double and iterative refinement. The residual b - A
// x is a difference of large numbers: in double it is noise, and refinement goes nowhere; in extra
// precision, with x kept as the sum of two doubles, each step gains as many digits as the
// factorization has right.
//
//   N. J. Higham, "Accuracy and Stability of Numerical Algorithms", 2nd edition (2002), chapter 12.

#include <jex/jex.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <vector>

namespace {

using Numbers = std::vector<double>;

// P A = L U by columns, with the rows exchanged in the order of pivots.
struct Factors {
  jex_int n;
  Numbers lu;
  std::vector<jex_int> pivots;

  Factors(jex_int n, Numbers a) : n(n), lu(std::move(a)), pivots(n) {
    for (jex_int k = 0; k < n; ++k) {
      jex_int pivot = k;
      for (jex_int i = k + 1; i < n; ++i)
        if (std::fabs(at(i, k)) > std::fabs(at(pivot, k))) pivot = i;
      pivots[k] = pivot;
      for (jex_int j = 0; j < n; ++j) std::swap(at(k, j), at(pivot, j));
      for (jex_int i = k + 1; i < n; ++i) {
        at(i, k) /= at(k, k);
        for (jex_int j = k + 1; j < n; ++j) at(i, j) -= at(i, k) * at(k, j);
      }
    }
  }

  Numbers solve(Numbers b) {
    for (jex_int k = 0; k < n; ++k) std::swap(b[k], b[pivots[k]]);
    for (jex_int k = 0; k < n; ++k)
      for (jex_int i = k + 1; i < n; ++i) b[i] -= at(i, k) * b[k];
    for (jex_int k = n - 1; k >= 0; --k) {
      b[k] /= at(k, k);
      for (jex_int i = 0; i < k; ++i) b[i] -= at(i, k) * b[k];
    }
    return b;
  }

 private:
  double& at(jex_int i, jex_int j) { return lu[size_t(j) * n + i]; }
};

// The Hilbert matrix times the least common multiple of its denominators: exact in double.
Numbers hilbert(jex_int n) {
  long long multiple = 1;
  for (jex_int k = 2; k < 2 * n; ++k) multiple = std::lcm(multiple, static_cast<long long>(k));
  Numbers a(size_t(n) * n);
  for (jex_int j = 0; j < n; ++j)
    for (jex_int i = 0; i < n; ++i) a[size_t(j) * n + i] = double(multiple / (i + j + 1));
  return a;
}

// Largest relative error of the sum head + tail against the solution of ones.
double error_of(const Numbers& head, const Numbers& tail) {
  double worst = 0;
  for (size_t i = 0; i < head.size(); ++i)
    worst = std::fmax(worst, std::fabs((head[i] - 1) + tail[i]));
  return worst;
}

// Refines by so many steps at most, and returns the error of the result.
template <class Precision>
double refine(Precision precision, jex_int n, const Numbers& a, const Numbers& b, int steps) {
  Factors factors(n, a);
  Numbers x = factors.solve(b), tail(n);
  const auto matrix = jex::matrix(a.data(), n, n, jex::Layout::column_major);
  for (int step = 0; step < steps; ++step) {
    Numbers r = b;
    jex::multiply(precision, -1., jex::Op::none, matrix, jex::vector(x.data(), n),
                  jex::vector(tail.data(), n), 1., jex::vector(r.data(), n));
    const Numbers d = factors.solve(r);
    double largest = 0;
    for (jex_int i = 0; i < n; ++i) {
      const double sum = tail[i] + d[i], head = x[i] + sum;
      tail[i] = sum - (head - x[i]);
      x[i] = head;
      largest = std::fmax(largest, std::fabs(d[i]));
    }
    if (largest < 1e-16) break;  // the next step would change no digit of the heads
  }
  return error_of(x, tail);
}

}  // namespace

int main() {
  bool rescued = true;
  std::printf("order  factorization  refined in double  refined in extra\n");
  try {
    for (jex_int n = 4; n <= 11; ++n) {
      const Numbers a = hilbert(n);
      Numbers b(n), ones(n, 1);
      // Sums of integers below 2^53: b is exact, and the solution is 1 everywhere.
      for (jex_int j = 0; j < n; ++j)
        for (jex_int i = 0; i < n; ++i) b[i] += a[size_t(j) * n + i];
      const double once = refine(jex::native, n, a, b, 0);
      const double native = refine(jex::native, n, a, b, 30);
      const double extra = refine(jex::extra, n, a, b, 30);
      std::printf("%5d  %13.1e  %17.1e  %16.1e\n", int(n), once, native, extra);
      rescued &= extra < 1e-15;
    }
  } catch (const std::exception& trouble) {
    std::fprintf(stderr, "jex-refinement: %s\n", trouble.what());
    return 1;
  }
  std::printf(rescued ? "extra precision gives every digit\n" : "refinement failed\n");
  return rescued ? 0 : 1;
}
