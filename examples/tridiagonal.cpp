// A blocked reduction of a symmetric matrix to tridiagonal form, A = Q T Q', on the panel kernels.
//
// The lower triangle is reduced panel by panel. Inside a panel the matrix to the right stays as it
// was; every reflector I - tau v v' leaves a rank-two update v w' + w v' behind, which is applied
// to the columns of the panel as they come up, and to the rest of the matrix after the panel. (J.
// J. Dongarra, D. C. Sorensen, S. J. Hammarling, "Block reduction of matrices to condensed forms
// for eigenvalue computations", Journal of Computational and Applied Mathematics 27 (1989),
// 215-227.)
//
// The program then checks |A - Q T Q'|, and that T has the trace and the Frobenius norm of A.
#include <jex/core.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdio.h>
#include <stdlib.h>
#include <vector>

namespace {

using Vector = std::vector<double>;

const int panel_width = 8;
const int one = 1;

struct Matrix {
  int n;
  Vector elements;
  explicit Matrix(int n) : n(n), elements(n * n) {}
  double& at(int i, int j) { return elements[i + j * n]; }
};

struct Reflector {
  Vector v;  // v[i] = 0 above its first row, where it is 1
  double tau;
};

// y := A x for the trailing matrix of order n at a: the sum over its panels.
void trailing_product(int n, const double* a, int lda, const double* x, double* y) {
  const double alpha = 1, clear = 0, add = 1;
  for (int k = 0; k < n; k += panel_width) {
    const int rows = n - k;
    jex::module()->jex_blas_dsymv_nb("L", &rows, &panel_width, &alpha, a + k * (lda + 1), &lda,
                                     x + k, &one, k == 0 ? &clear : &add, y + k, &one);
  }
}

double dot(int n, const double* x, const double* y) {
  return jex::module()->jex_blas_ddot(&n, x, &one, y, &one);
}
void axpy(int n, double alpha, const double* x, double* y) {
  jex::module()->jex_blas_daxpy(&n, &alpha, x, &one, y, &one);
}

// The reflector that leaves beta e1 of the n elements of x, whose first element becomes beta.
Reflector make_reflector(int n, double* x, int offset, int order) {
  Reflector h{Vector(order), 0};
  const int rest = n - 1;
  const double norm = rest > 0 ? jex::module()->jex_blas_dnrm2(&rest, x + 1, &one) : 0;
  h.v[offset] = 1;
  if (norm == 0) return h;
  const double beta = -std::copysign(std::hypot(x[0], norm), x[0]);
  h.tau = (beta - x[0]) / beta;
  for (int i = 1; i < n; ++i) h.v[offset + i] = x[i] / (x[0] - beta);
  x[0] = beta;
  std::fill(x + 1, x + n, 0.0);
  return h;
}

// Reduces the lower triangle of a to its diagonal and subdiagonal; returns the reflectors in order.
std::vector<Reflector> reduce(Matrix& a) {
  const int n = a.n;
  std::vector<Reflector> reflectors;
  for (int begin = 0; begin < n - 1; begin += panel_width) {
    const int end = std::min(begin + panel_width, n - 1);
    const size_t first = reflectors.size();
    std::vector<Vector> updates;
    for (int j = begin; j < end; ++j) {
      // The updates that earlier columns of the panel owe to this one: a panel of one column.
      const double minus = -1;
      const int rows = n - j, below = n - j - 1;
      for (size_t k = 0; k < updates.size(); ++k)
        jex::module()->jex_blas_dsyr2_nb("L", &rows, &one, &minus, &reflectors[first + k].v[j],
                                         &one, &updates[k][j], &one, &a.at(j, j), &n);
      reflectors.push_back(make_reflector(below, &a.at(j + 1, j), j + 1, n));
      const Reflector& h = reflectors.back();

      // w = tau (A v) - (tau / 2) (w' v) v, A with all its updates.
      Vector w(n);
      const double* const v = &h.v[j + 1];
      trailing_product(below, &a.at(j + 1, j + 1), n, v, &w[j + 1]);
      for (size_t k = 0; k < updates.size(); ++k) {
        const double *vk = &reflectors[first + k].v[j + 1], *wk = &updates[k][j + 1];
        axpy(below, -dot(below, wk, v), vk, &w[j + 1]);
        axpy(below, -dot(below, vk, v), wk, &w[j + 1]);
      }
      for (double& element : w) element *= h.tau;
      axpy(below, -h.tau / 2 * dot(below, &w[j + 1], v), v, &w[j + 1]);
      updates.push_back(w);
    }
    // The matrix behind the panel receives all of them, panel by panel while it is in the cache.
    for (int k = end; k < n; k += panel_width)
      for (size_t u = 0; u < updates.size(); ++u) {
        const double minus = -1;
        const int rows = n - k;
        jex::module()->jex_blas_dsyr2_nb("L", &rows, &panel_width, &minus,
                                         &reflectors[first + u].v[k], &one, &updates[u][k], &one,
                                         &a.at(k, k), &n);
      }
  }
  return reflectors;
}

// b := Q b with Q = H1 H2 ..: the reflectors from the last to the first, on every column.
void apply(const std::vector<Reflector>& reflectors, Matrix& b) {
  for (size_t k = reflectors.size(); k-- > 0;)
    for (int j = 0; j < b.n; ++j) {
      const Reflector& h = reflectors[k];
      axpy(b.n, -h.tau * dot(b.n, h.v.data(), &b.at(0, j)), h.v.data(), &b.at(0, j));
    }
}

Matrix transpose(Matrix& a) {
  Matrix t(a.n);
  for (int j = 0; j < a.n; ++j)
    for (int i = 0; i < a.n; ++i) t.at(j, i) = a.at(i, j);
  return t;
}

double trace(Matrix& a) {
  double sum = 0;
  for (int i = 0; i < a.n; ++i) sum += a.at(i, i);
  return sum;
}

double norm(const Matrix& a) {
  double sum = 0;
  for (const double element : a.elements) sum += element * element;
  return std::sqrt(sum);
}

bool check(const char* what, double error, double bound) {
  const bool good = error <= bound;  // NaN is not
  printf("  %-28s %9.2e  bound %9.2e  %s\n", what, error, bound, good ? "good" : "BAD");
  return good;
}

bool reduce_and_check(int n) {
  Matrix a(n);
  for (int j = 0; j < n; ++j)
    for (int i = j; i < n; ++i) a.at(i, j) = a.at(j, i) = std::cos(1.0 + i * j) / (1 + i - j);

  // The upper triangle must stay out of it.
  Matrix work = a;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < j; ++i) work.at(i, j) = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Reflector> reflectors = reduce(work);

  Matrix t(n);
  for (int i = 0; i < n; ++i) {
    t.at(i, i) = work.at(i, i);
    if (i + 1 < n) t.at(i + 1, i) = t.at(i, i + 1) = work.at(i + 1, i);
  }
  // Q T Q' = Q (Q T)'
  Matrix product = t;
  apply(reflectors, product);
  product = transpose(product);
  apply(reflectors, product);
  for (int k = 0; k < n * n; ++k) product.elements[k] -= a.elements[k];

  const double size = norm(a), bound = 4 * n * std::numeric_limits<double>::epsilon() * size;
  printf("order %d\n", n);
  bool good = check("|A - Q T Q'|", norm(product), bound);
  good &= check("sum of eigenvalues", std::fabs(trace(t) - trace(a)), bound);
  good &= check("Frobenius norm", std::fabs(norm(t) - size), bound);
  return good;
}

}  // namespace

int main() {
  if (jex_core_load() != 0) return fprintf(stderr, "%s\n", jex_core_error()), EXIT_FAILURE;
  bool good = true;
  for (const int n : {1, 2, 9, 64, 100, 201}) good &= reduce_and_check(n);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
