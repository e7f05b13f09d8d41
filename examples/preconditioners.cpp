// Conjugate gradients on an elastic grid, three displacements at each node, in block sparse rows,
// preconditioned in two ways:
//
//   block Gauss-Seidel   one symmetric sweep from zero, with the inverses of the diagonal blocks
//   incomplete LDL'      the factors of A without fill, made here, solved with by the library
//
// Every node is tied to its neighbours by springs of different stiffness along the tie and across
// it, which couples the displacements; the lower edge is held. (J. A. Meijerink, H. A. van der
// Vorst, "An iterative solution method for linear systems of which the coefficient matrix is a
// symmetric M-matrix", Mathematics of Computation 31 (1977), 148-162.)
//
// The program shows the iterations of each, and checks the residuals with the CSR product.
#include <jex/core.h>
#include <jex/sparse_formats.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <stdio.h>
#include <stdlib.h>
#include <vector>

namespace {

using Vector = std::vector<double>;

const jex_int one = 1, side = 3;

const jex::Module& module() { return *jex::module(); }

struct Csr {
  jex_int m = 0;
  Vector values;
  std::vector<jex_int> columns, rows{1};

  jex_sparse_matrix view() {
    return {'R', 1, m, m, 0, 0, 0, values.data(), columns.data(), rows.data()};
  }
};

using Rows = std::vector<std::map<jex_int, double>>;

Csr compress(const Rows& rows) {
  Csr a;
  for (const auto& row : rows) {
    for (const auto& [j, value] : row) a.columns.push_back(j + 1), a.values.push_back(value);
    a.rows.push_back(a.columns.size() + 1);
    ++a.m;
  }
  return a;
}

// Springs k = stiffness (d d' + I / 20) between nodes that lie in the direction d of each other.
Rows elastic_grid(int width, int height) {
  Rows rows(width * height * side);
  const auto tie = [&](int from, int to, const double(&d)[3], double stiffness, bool held) {
    for (int r = 0; r < side; ++r)
      for (int c = 0; c < side; ++c) {
        const double k = stiffness * (d[r] * d[c] + (r == c) / 20.0);
        rows[from * side + r][from * side + c] += k;
        if (held) continue;
        rows[to * side + r][to * side + c] += k;
        rows[from * side + r][to * side + c] -= k;
        rows[to * side + r][from * side + c] -= k;
      }
  };
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const int node = y * width + x;
      const double stiffness = 1 + 0.9 * std::sin(0.7 * x) * std::cos(0.4 * y);
      const double h = std::sqrt(0.5);
      if (y == 0) tie(node, node, {0, 1, 0}, 10, true);
      if (x + 1 < width) tie(node, node + 1, {1, 0, 0}, stiffness, false);
      if (y + 1 < height) tie(node, node + width, {0, 1, 0}, stiffness, false);
      if (x + 1 < width && y + 1 < height)
        tie(node, node + width + 1, {h, h, 0}, stiffness / 2, false);
      if (x > 0 && y + 1 < height) tie(node, node + width - 1, {-h, h, 0}, stiffness / 2, false);
    }
  return rows;
}

// The factors of A = L D L' where A has elements; row i of the result ends with D(i).
Csr incomplete_factor(const Rows& a) {
  Rows factor(a.size());
  for (size_t i = 0; i < a.size(); ++i) {
    auto& row = factor[i];
    for (const auto& [j, value] : a[i]) {
      if (j > jex_int(i)) break;
      double sum = value;
      for (const auto& [k, l] : row) {  // k < j: row i so far times row j
        const auto other = factor[j].find(k);
        if (k < j && (j == jex_int(i) || other != factor[j].end()))
          sum -= l * factor[k].rbegin()->second * (j == jex_int(i) ? l : other->second);
      }
      row[j] = j == jex_int(i) ? sum : sum / factor[j].rbegin()->second;
    }
  }
  return compress(factor);
}

double dot(const Vector& x, const Vector& y) {
  const jex_int n = x.size();
  return module().jex_blas_ddot(&n, x.data(), &one, y.data(), &one);
}
void axpy(double alpha, const Vector& x, Vector& y) {
  const jex_int n = x.size();
  module().jex_blas_daxpy(&n, &alpha, x.data(), &one, y.data(), &one);
}

using Map = std::function<void(const Vector&, Vector&)>;

// Steps until |r| <= 1e-10 |b|.
int conjugate_gradients(const Map& product, const Map& precondition, const Vector& b, Vector& x) {
  Vector r = b, z(b.size()), p(b.size()), q(b.size());
  std::fill(x.begin(), x.end(), 0.0);
  const double stop = 1e-10 * std::sqrt(dot(b, b));
  double before = 1;
  int steps = 0;
  for (; std::sqrt(dot(r, r)) > stop && steps < 5000; ++steps) {
    precondition(r, z);
    const double rz = dot(r, z);
    for (size_t i = 0; i < p.size(); ++i) p[i] = z[i] + (steps ? rz / before : 0) * p[i];
    before = rz;
    product(p, q);
    const double length = rz / dot(p, q);
    axpy(length, p, x);
    axpy(-length, q, r);
  }
  return steps;
}

}  // namespace

int main() {
  if (jex_core_load() != 0) return fprintf(stderr, "%s\n", jex_core_error()), EXIT_FAILURE;
  const Rows rows = elastic_grid(48, 40);
  Csr csr = compress(rows);
  const Csr factor = incomplete_factor(rows);
  const jex_sparse_matrix a = csr.view();
  jex_sparse_matrix blocks{};
  if (const jex_int status = jex_dsparse_convert(&a, 'B', 1, side, &blocks))
    return fprintf(stderr, "%s\n", jex_sparse_message(status)), EXIT_FAILURE;
  const jex_int m = csr.m / side, *const begin = blocks.pointers;
  printf("%d unknowns, %zu elements in %d blocks of %d x %d\n", csr.m, csr.values.size(),
         blocks.count, side, side);

  const Map product = [&](const Vector& x, Vector& y) {
    module().jex_spblas_dbsr1ng__f__gemvout_par(&one, &m, &m, &side, nullptr, blocks.values,
                                                blocks.indices, begin, begin + 1, x.data(),
                                                y.data());
  };
  Vector inverse(size_t(m) * side * side);
  jex_int info;
  module().jex_spblas_dbsr_invdiag(&m, &side, blocks.values, blocks.indices, begin, begin + 1,
                                   inverse.data(), &info);
  if (info != 0) return fprintf(stderr, "block row %d is singular\n", info), EXIT_FAILURE;

  const std::pair<const char*, Map> preconditioners[] = {
      {"none", [](const Vector& r, Vector& z) { z = r; }},
      {"block Gauss-Seidel",
       [&](const Vector& r, Vector& z) {
         std::fill(z.begin(), z.end(), 0.0);
         module().jex_spblas_dbsr_gauss("S", &m, &side, blocks.values, blocks.indices, begin,
                                        begin + 1, inverse.data(), r.data(), z.data());
       }},
      {"incomplete LDL'", [&](const Vector& r, Vector& z) {
         z = r;
         module().jex_spblas_jex_ildlt_sv(&factor.m, factor.values.data(), factor.columns.data(),
                                          factor.rows.data(), z.data());
       }}};

  Vector b(csr.m), x(csr.m);
  for (jex_int i = 0; i < csr.m; ++i) b[i] = std::sin(0.1 * i);
  const double length = std::sqrt(dot(b, b));
  bool good = true;
  int plain = 0;
  for (const auto& [name, map] : preconditioners) {
    const int steps = conjugate_gradients(product, map, b, x);
    Vector r = b;
    const double minus = -1;
    module().jex_spblas_dcsr1ng__f__mvout_par(&one, &csr.m, &csr.m, &minus, csr.values.data(),
                                              csr.columns.data(), csr.rows.data(),
                                              csr.rows.data() + 1, x.data(), r.data());
    const double residual = std::sqrt(dot(r, r)) / length;
    if (!plain) plain = steps;
    const bool fine = residual <= 1e-9 && (steps == plain || steps < plain / 2);
    printf("  %-20s %5d iterations   |b - A x| / |b| %.1e   %s\n", name, steps, residual,
           fine ? "good" : "BAD");
    good = good && fine;
  }
  jex_sparse_release(&blocks);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
