// A sparse matrix: its structure as a picture, a product, and a system solved. A symmetric matrix
// with a positive diagonal by conjugate gradients, preconditioned with its own triangle:
//
//   M = L D^-1 L', L the lower triangle with its diagonal D      M^-1 r: two triangular solves
//
// Other square matrices with a whole diagonal: their lower triangle by substitution.
#include <algorithm>
#include <chrono>
#include <map>
#include <optional>

#include "families/kernels.h"
#include "tour/family.h"
#include "tour/input.h"
#include "tour/matrix_market.h"
#include "tour/svg.h"
#include "tour/text.h"

namespace jex::tour {
namespace {

template <class Kernel>
Kernel of_kind(const SparseMatrix& a, Kernel general, Kernel symmetric, Kernel skew) {
  return a.symmetry == Symmetry::symmetric ? symmetric
         : a.symmetry == Symmetry::skew    ? skew
                                           : general;
}

struct Operator {
  const Module& module;
  const SparseMatrix& a;

  // y := y + A x
  void add_product(const Vector& x, Vector& y) const {
    const jex_int one = 1;
    const double unit = 1;
    const auto kernel =
        of_kind(a, module.jex_spblas_dcsr1ng__f__mvout_par, module.jex_spblas_dcsr1nslnf__mvout_par,
                module.jex_spblas_dcsr1nal_f__mvout_par);
    kernel(&one, &a.m, &a.m, &unit, a.values.data(), a.columns.data(), a.rows.data(),
           a.rows.data() + 1, x.data(), y.data());
  }
  // y := L^-1 y or L'^-1 y
  void solve(bool transposed, Vector& y) const {
    const double unread = 0;
    const auto kernel = transposed ? module.jex_spblas_dcsr1ttlnf__svout_seq
                                   : module.jex_spblas_dcsr1ntlnf__svout_seq;
    kernel(&a.m, &unread, a.values.data(), a.columns.data(), a.rows.data(), a.rows.data() + 1,
           y.data());
  }
};

// Calls entry(i, j, value) for all elements, or those of the lower triangle alone, from 0.
template <class Call>
void for_entries(const SparseMatrix& a, bool lower, Call entry) {
  for (jex_int i = 0; i < a.m; ++i)
    for (jex_int k = a.rows[i] - 1; k < a.rows[i + 1] - 1; ++k) {
      const jex_int j = a.columns[k] - 1;
      if (!lower || j <= i) entry(i, j, a.values[k]);
      if (!lower && a.symmetry != Symmetry::general && i != j)
        entry(j, i, a.symmetry == Symmetry::skew ? -a.values[k] : a.values[k]);
    }
}

// max |A x - y| over the rows, in units of eps times the row's sum of magnitudes; NaN stays NaN.
double distance(const SparseMatrix& a, bool lower, const Vector& x, const Vector& y) {
  std::vector<long double> sum(a.m), size(a.m);
  for (jex_int i = 0; i < a.m; ++i) sum[i] = -y[i], size[i] = std::fabs(y[i]);
  for_entries(a, lower, [&](jex_int i, jex_int j, double value) {
    const long double term = static_cast<long double>(value) * x[j];
    sum[i] += term, size[i] += fabsl(term);
  });
  long double worst = 0;
  for (jex_int i = 0; i < a.m; ++i) {
    const long double error = size[i] > 0 ? fabsl(sum[i]) / size[i] : fabsl(sum[i]);
    if (!(error <= worst)) worst = error;
  }
  return static_cast<double>(worst / DBL_EPSILON);
}

// The diagonal, or nothing where an element of it is missing or zero.
std::optional<Vector> diagonal_of(const SparseMatrix& a) {
  if (a.m != a.n) return {};
  Vector d(a.m, 0.0);
  for_entries(a, true, [&](jex_int i, jex_int j, double value) {
    if (i == j) d[i] = value;
  });
  if (std::count(d.begin(), d.end(), 0.0)) return {};
  return d;
}

struct Solution {
  Vector x;
  std::vector<double> residuals;  // log10 of |r| / |b|, of each step
};

Solution conjugate_gradients(const Kernels& kernels, const Operator& op, const Vector& diagonal,
                             const Vector& b) {
  const size_t most_steps = 10 * b.size();
  const jex_int m = b.size();
  Solution s{Vector(b.size(), 0.0), {}};
  Vector r = b, z(b.size()), p(b.size(), 0.0), q(b.size());
  const double length = kernels.nrm2(b);
  for (double before = 1; s.residuals.size() < most_steps;) {
    const double now = kernels.nrm2(r) / length;
    s.residuals.push_back(std::log10(std::max(now, 1e-18)));
    if (!(now > 1e-15)) break;
    z = r;
    op.solve(false, z);
    for (size_t i = 0; i < z.size(); ++i) z[i] *= diagonal[i];
    op.solve(true, z);
    const double rz = kernels.dot(m, r.data(), z.data());
    kernels.scal(rz / before, p);
    kernels.axpy(1, z, p);
    before = rz;
    std::fill(q.begin(), q.end(), 0.0);
    op.add_product(p, q);
    const double step = rz / kernels.dot(m, p.data(), q.data());
    kernels.axpy(step, p, s.x);
    kernels.axpy(-step, q, r);
  }
  return s;
}

// A x from the same matrix as a list of entries.
Vector list_product(const Operator& op, const Vector& x) {
  const SparseMatrix& a = op.a;
  const jex_int one = 1, count = a.values.size();
  const double unit = 1;
  std::vector<jex_int> rows;
  for (jex_int i = 0; i < a.m; ++i) rows.resize(a.rows[i + 1] - 1, i + 1);
  Vector y(a.m, 0.0);
  of_kind(a, op.module.jex_spblas_dcoo1ng__f__mvout_par, op.module.jex_spblas_dcoo1nslnf__mvout_par,
          op.module.jex_spblas_dcoo1nal_f__mvout_par)(&one, &count, &a.m, &a.n, &unit,
                                                      a.values.data(), rows.data(),
                                                      a.columns.data(), &count, x.data(), y.data());
  return y;
}

// A x from the same matrix by its diagonals, if there are not too many.
struct DiagonalProduct {
  size_t diagonals;
  Vector y;
};
std::optional<DiagonalProduct> diagonal_product(const Operator& op, const Vector& x) {
  const SparseMatrix& a = op.a;
  std::map<jex_int, Vector> stored;
  for (jex_int i = 0; i < a.m; ++i)
    for (jex_int k = a.rows[i] - 1; k < a.rows[i + 1] - 1; ++k) {
      Vector& diagonal = stored[a.columns[k] - 1 - i];
      if (stored.size() > 100) return {};
      diagonal.resize(a.m, 0.0);
      diagonal[i] += a.values[k];
    }
  Vector values;
  std::vector<jex_int> distances;
  for (const auto& [distance, diagonal] : stored) {
    distances.push_back(distance);
    values.insert(values.end(), diagonal.begin(), diagonal.end());
  }
  const jex_int count = distances.size();
  const double unit = 1;
  Vector y(a.m, 0.0);
  of_kind(a, op.module.jex_spblas_ddia1ng__f__mvout_par, op.module.jex_spblas_ddia1nslnf__mvout_par,
          op.module.jex_spblas_ddia1nal_f__mvout_par)(nullptr, nullptr, &a.m, &a.n, &unit,
                                                      values.data(), &a.m, distances.data(), &count,
                                                      x.data(), y.data());
  return DiagonalProduct{stored.size(), y};
}

double product_rate(const Operator& op, const Vector& x, Vector& y) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  double seconds = 0, flops = 0, entries = 0;
  for_entries(op.a, false, [&](jex_int, jex_int, double) { ++entries; });
  for (; seconds < 0.05; seconds = std::chrono::duration<double>(Clock::now() - start).count())
    for (int i = 0; i < 16; ++i, flops += 2 * entries) op.add_product(x, y);
  return flops / seconds;
}

}  // namespace

Report sparse(const Context& context) {
  const SparseMatrix a =
      read_matrix(context.file.empty() ? data_file("membrane.mtx") : context.file);
  const Kernels kernels{context.kernels};
  const Operator op{context.kernels, a};
  Vector x(a.n), y(a.m, 0.0);
  for (jex_int j = 0; j < a.n; ++j) x[j] = 1 + 0.5 * std::sin(j);
  op.add_product(x, y);

  Report report;
  report.problem = {{"file", a.file},
                    {"matrix", text("%d x %d, %zu stored entries%s", a.m, a.n, a.values.size(),
                                    a.symmetry == Symmetry::symmetric ? ", symmetric"
                                    : a.symmetry == Symmetry::skew    ? ", skew-symmetric"
                                                                      : "")}};
  const double bound = 64 + 4.0 * a.values.size() / a.m;
  report.checks.push_back({"A times x", text("%d rows", a.m), 1, distance(a, false, x, y), bound});
  report.checks.push_back({"the same, as a list", text("%zu entries", a.values.size()), 1,
                           distance(a, false, x, list_product(op, x)), bound});
  if (const auto product = diagonal_product(op, x))
    report.checks.push_back({"and by diagonals", text("%zu of them", product->diagonals), 1,
                             distance(a, false, x, product->y), bound});
  const std::optional<Vector> diagonal = diagonal_of(a);
  const Vector load(a.m, 1.0);
  const bool definite =
      a.symmetry == Symmetry::symmetric && diagonal &&
      std::all_of(diagonal->begin(), diagonal->end(), [](double d) { return d > 0; });
  if (diagonal) {
    Vector z = load;
    op.solve(false, z);
    report.checks.push_back(
        {"L z - b", text("%d rows", a.m), 1, distance(a, true, z, load), bound});
  } else {
    report.findings.push_back({"solve", "none: the diagonal is not whole"});
  }
  if (definite) {
    const Solution s = conjugate_gradients(kernels, op, *diagonal, load);
    report.checks.push_back({"A x - b", text("%zu steps", s.residuals.size() - 1), 1,
                             distance(a, false, s.x, load), 100});
    report.findings.push_back({"largest", text("%.6g", *std::max_element(s.x.begin(), s.x.end()))});
    svg::Panel panel{"Conjugate gradients", "step", "log10 of |r| / |b|", {}, {}, {}};
    panel.curves.push_back({"residual", 0, 1, s.residuals});
    if (s.residuals.size() > 1)
      report.pictures.push_back({"residual.svg", svg::draw("Residual", {panel})});
  }
  report.findings.push_back({"rate", text("%.2f GFLOP/s product", product_rate(op, x, y) / 1e9)});
  std::vector<int> rows, columns;
  for_entries(a, false,
              [&](jex_int i, jex_int j, double) { rows.push_back(i), columns.push_back(j); });
  report.pictures.push_back(
      {"structure.svg", svg::draw_structure("Structure of the matrix", a.m, a.n, rows, columns)});
  return report;
}

}  // namespace jex::tour
