// A sparse matrix: its structure as a picture, a product in four storage formats, and a system
// solved. A symmetric matrix with a positive diagonal by conjugate gradients, preconditioned with
// its own triangle:
//
//   M = L D^-1 L', L the lower triangle with its diagonal D      M^-1 r: two triangular solves
//
// Other square matrices with a whole diagonal: their lower triangle by substitution.
#include <algorithm>
#include <optional>
#include <set>

#include <jex/block_sparse.h>
#include <jex/sparse_formats.h>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/input.h"
#include "tour/matrix_market.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

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
  for (jex_int i = 0; i < a.m; ++i)
    keep_worst(worst, size[i] > 0 ? fabsl(sum[i]) / size[i] : fabsl(sum[i]));
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

// All elements of a matrix as a list of entries, counted from 0: the mirror images of a triangle
// among them.
struct Entries {
  std::vector<jex_int> rows, columns;
  Vector values;

  explicit Entries(const SparseMatrix& a) {
    for_entries(a, false, [&](jex_int i, jex_int j, double value) {
      rows.push_back(i), columns.push_back(j), values.push_back(value);
    });
  }
  size_t diagonals() const {
    std::set<jex_int> distances;
    for (size_t k = 0; k < rows.size(); ++k) distances.insert(columns[k] - rows[k]);
    return distances.size();
  }
};

// A x of a matrix in one of three formats, through the checked front.
jex_int product(const jex_sparse_matrix& a, const Vector& x, Vector& y) {
  const double unit = 1, zero = 0;
  const jex_sparse_descriptor general = {'G', 'L', 'N', a.base, 0};
  switch (a.format) {
    case 'D': {
      const jex_dia diagonals = {a.m, a.n, a.values, a.ld, a.indices, a.count};
      return jex_ddiamv('N', &unit, &diagonals, &general, x.data(), &zero, y.data());
    }
    case 'B': {
      const jex_int side = a.block;
      const jex_bsr blocks = {
          (a.m + side - 1) / side, (a.n + side - 1) / side, side, a.values, a.indices, a.pointers,
          a.pointers + 1};
      return jex_dbsrmv('N', &unit, &blocks, &general, x.data(), &zero, y.data());
    }
    default: {
      const jex_coo list = {a.m, a.n, a.values, a.indices, a.pointers, a.count};
      return jex_dcoomv('N', &unit, &list, &general, x.data(), &zero, y.data());
    }
  }
}

// A x with the matrix converted to a list ('O'), diagonals ('D') or blocks ('B').
struct Converted {
  jex_int parts;  // entries, diagonals or blocks
  Vector y;
};
Converted product_in(char format, const SparseMatrix& a, Entries& entries, Vector x) {
  constexpr jex_int side = 2;
  const auto check = [](jex_int status) {
    if (status != JEX_SPARSE_OK) throw std::runtime_error(jex_sparse_message(status));
  };
  const jex_sparse_matrix list = {'O',
                                  0,
                                  a.m,
                                  a.n,
                                  0,
                                  0,
                                  jex_int(entries.values.size()),
                                  entries.values.data(),
                                  entries.rows.data(),
                                  entries.columns.data()};
  jex_sparse_matrix made;
  check(jex_dsparse_convert(&list, format, format == 'D', side, &made));
  Converted result{made.count, Vector(a.m + side)};  // the last block may reach beyond the matrix
  x.resize(a.n + side);
  const jex_int status = product(made, x, result.y);
  jex_sparse_release(&made);
  check(status);
  return result;
}

Rate rate(const Operator& op, const Entries& entries, const Vector& x, Vector& y) {
  const double products = times_per_second([&] { op.add_product(x, y); });
  return {text("product of %d rows in CSR", op.a.m), 2.0 * entries.values.size() * products / 1e9,
          "GFLOP/s"};
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
  report.problem = {{"file", file_name(a.file)},
                    {"matrix", text("%d x %d, %zu stored entries%s", a.m, a.n, a.values.size(),
                                    a.symmetry == Symmetry::symmetric ? ", symmetric"
                                    : a.symmetry == Symmetry::skew    ? ", skew-symmetric"
                                                                      : "")}};
  const double bound = 64 + 4.0 * a.values.size() / a.m;
  report.checks.push_back({"A times x", text("%d rows", a.m), 1, distance(a, false, x, y), bound});
  Entries entries(a);
  constexpr size_t most_diagonals = 100;
  const auto check_format = [&](char format, const char* name, const char* parts) {
    const Converted product = product_in(format, a, entries, x);
    report.checks.push_back(
        {name, text("%d %s", product.parts, parts), 1, distance(a, false, x, product.y), bound});
  };
  check_format('O', "the same, as a list", "entries");
  if (entries.diagonals() <= most_diagonals)
    check_format('D', "the same, by diagonals", "diagonals");
  check_format('B', "the same, in blocks", "blocks of 2 x 2");
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
    context.progress.tell("conjugate gradients");
    const Solution s = conjugate_gradients(kernels, op, *diagonal, load);
    report.checks.push_back({"A x - b", text("%zu steps", s.residuals.size() - 1), 1,
                             distance(a, false, s.x, load), 100});
    report.findings.push_back({"largest", text("%.6g", *std::max_element(s.x.begin(), s.x.end()))});
    svg::Panel panel{"Conjugate gradients", "step", "log10 of |r| / |b|"};
    panel.curves = {{"residual", 0, 1, s.residuals}};
    if (s.residuals.size() > 1)
      report.pictures.push_back({"residual.svg", svg::draw("Residual", {panel})});
  }
  report.rates = {rate(op, entries, x, y)};
  report.pictures.push_back(
      {"structure.svg",
       svg::draw_structure("Structure of the matrix", a.m, a.n, entries.rows, entries.columns)});
  return report;
}

}  // namespace jex::tour
