// Sparse cases: products with vectors and with eight columns, symmetric products, and triangular
// solves in the formats, on a grid's Laplacian, a matrix of random columns and a banded one.
//
// Products add to y: calls alternate between opposite alphas. Solves get their right-hand side anew
// before each call, on both sides.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <set>

#include "case.h"
#include "sparse_call.h"
#include "sparse_patterns.h"

namespace jex::bench {
namespace {

uint32_t next(uint32_t& state) { return state = state * 1664525u + 1013904223u; }

}  // namespace

uint32_t next_random(uint32_t& state) { return next(state); }

Pattern laplacian(int side) {
  Pattern p;
  for (int i = 0; i < side; ++i)
    for (int j = 0; j < side; ++j, p.end_row()) {
      const int row = i * side + j;
      if (i > 0) p.columns.push_back(row - side);
      if (j > 0) p.columns.push_back(row - 1);
      p.columns.push_back(row);
      if (j + 1 < side) p.columns.push_back(row + 1);
      if (i + 1 < side) p.columns.push_back(row + side);
    }
  return p;
}

Pattern banded(int m, int half) {
  Pattern p;
  for (int i = 0; i < m; ++i, p.end_row())
    for (int j = std::max(0, i - half); j <= std::min(m - 1, i + half); ++j) p.columns.push_back(j);
  return p;
}

Pattern scattered(int m, int per_row) {
  Pattern p;
  uint32_t state = 1;
  std::vector<jex_int> row(per_row);
  for (int i = 0; i < m; ++i, p.end_row()) {
    row[0] = i;
    for (int k = 1; k < per_row; ++k) row[k] = (uint64_t(next(state)) * m) >> 32;
    std::sort(row.begin(), row.end());
    row.erase(std::unique(row.begin(), row.end()), row.end());
    p.columns.insert(p.columns.end(), row.begin(), row.end());
    row.resize(per_row);
  }
  return p;
}

namespace {

Pattern lower(const Pattern& all) {
  Pattern p;
  for (jex_int i = 0; i < all.m; ++i, p.end_row())
    for (jex_int k = all.rows[i]; k < all.rows[i + 1]; ++k)
      if (all.columns[k] <= i) p.columns.push_back(all.columns[k]);
  return p;
}

Pattern pattern_of(const std::string& matrix) {
  if (matrix == "laplace1e4") return laplacian(100);
  if (matrix == "laplace1e6") return laplacian(1000);
  if (matrix == "random1e7") return scattered(1000000, 10);
  return banded(100000, 10);
}

enum class Kind { product, symmetric, solve };

struct Routine {
  const char *name, *matrix;
  Kind kind;
  int n;         // columns; 0 for a vector
  bool by_rows;  // and base 0
  bool quick;
};

template <class R, int parts>
class SparseProblem : public Problem {
 public:
  explicit SparseProblem(const Routine& routine)
      : routine_(routine), p_(pattern_of(routine.matrix)), n_(std::max(routine.n, 1)) {
    if (routine.kind != Kind::product) p_ = lower(p_);
    base_columns_ = p_.columns;
    if (!routine.by_rows)
      for (auto& column : base_columns_) ++column;
    for (jex_int i = 0; i < p_.m; ++i) entry_rows_.resize(p_.rows[i + 1], i);
    base_rows_ = entry_rows_;
    for (auto& row : base_rows_) ++row;
    if (is("dia")) find_distances();
    values_.resize(p_.columns.size() * parts);
    x_.resize(size_t(p_.m) * n_ * parts);
    y_ = start_ = x_;
  }

  void fill() override {
    uint32_t state = 7;
    const auto random = [&](std::vector<R>& v, R scale) {
      for (auto& element : v) element = scale * (R(next(state) >> 8) / R(1 << 23) - 1);
    };
    random(values_, R(1) / 8);
    if (routine_.kind == Kind::solve)
      for (jex_int i = 0; i < p_.m; ++i) values_[(p_.rows[i + 1] - 1) * parts] = 2;
    random(x_, 1);
    random(y_, 1);
    start_ = y_;
    parity_ = 0;
    for (size_t k = 0; is("dia") && k < entry_rows_.size(); ++k)
      std::copy_n(&values_[k * parts], parts, &diagonals_[place_on_diagonal(k) * parts]);
  }

  void run(const Entry& entry, long calls) override {
    static const R alphas[2][2] = {{R(0.5), 0}, {R(-0.5), 0}};
    const jex_int ld = routine_.by_rows ? n_ : p_.m;
    for (; calls > 0; --calls, parity_ ^= 1) {
      if (routine_.kind == Kind::solve) std::copy(start_.begin(), start_.end(), y_.begin());
      if (entry.abi == Abi::module) {
        call(entry, alphas[parity_], ld);
      } else {
        const SparseCall call = {p_.m,
                                 n_,
                                 alphas[parity_],
                                 values_.data(),
                                 p_.columns.data(),
                                 p_.rows.data(),
                                 x_.data(),
                                 ld,
                                 y_.data(),
                                 ld,
                                 entry_rows_.data(),
                                 diagonals_.data(),
                                 distances_.data(),
                                 jex_int(distances_.size())};
        entry.as<void(const SparseCall*)>()(&call);
      }
    }
  }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const SparseProblem&>(problem);
    double worst = 0;
    for (size_t i = 0; i < y_.size(); ++i) {
      const double d = std::abs(double(y_[i]) - double(other.y_[i]));
      if (!(d <= worst)) worst = std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
    }
    return worst / (64 * std::numeric_limits<R>::epsilon());
  }

 private:
  bool is(const char* format) const { return !strncmp(routine_.name + 1, format, 3); }

  void find_distances() {
    std::set<jex_int> found;
    for (size_t k = 0; k < entry_rows_.size(); ++k) found.insert(p_.columns[k] - entry_rows_[k]);
    distances_.assign(found.begin(), found.end());
    diagonals_.resize(distances_.size() * p_.m * parts);
  }
  size_t place_on_diagonal(size_t k) const {
    const jex_int distance = p_.columns[k] - entry_rows_[k];
    const auto d = std::lower_bound(distances_.begin(), distances_.end(), distance);
    return (d - distances_.begin()) * p_.m + entry_rows_[k];
  }

  void call_list(const Entry& entry, const void* alpha) {
    using Int = const jex_int*;
    const jex_int one = 1, count = entry_rows_.size();
    const Int i = base_rows_.data(), j = base_columns_.data();
    if (routine_.kind == Kind::solve)
      entry.as<void(Int, Int, const void*, const void*, Int, Int, Int, const void*, void*)>()(
          &p_.m, &p_.m, alpha, values_.data(), i, j, &count, nullptr, y_.data());
    else
      entry.as<void(Int, Int, Int, Int, const void*, const void*, Int, Int, Int, const void*,
                    void*)>()(&one, &count, &p_.m, &p_.m, alpha, values_.data(), i, j, &count,
                              x_.data(), y_.data());
  }
  void call_diagonals(const Entry& entry, const void* alpha) {
    using Int = const jex_int*;
    const jex_int count = distances_.size();
    if (routine_.kind == Kind::solve)
      entry.as<void(Int, const void*, const void*, Int, Int, Int, void*)>()(
          &p_.m, alpha, diagonals_.data(), &p_.m, distances_.data(), &count, y_.data());
    else
      entry.as<void(Int, Int, Int, Int, const void*, const void*, Int, Int, Int, const void*,
                    void*)>()(nullptr, nullptr, &p_.m, &p_.m, alpha, diagonals_.data(), &p_.m,
                              distances_.data(), &count, x_.data(), y_.data());
  }
  void call(const Entry& entry, const void* alpha, jex_int ld) {
    using Int = const jex_int*;
    if (is("coo")) return call_list(entry, alpha);
    if (is("dia")) return call_diagonals(entry, alpha);
    const jex_int one = 1, *rows = p_.rows.data(), *columns = base_columns_.data();
    const void *a = values_.data(), *x = x_.data();
    void* y = y_.data();
    if (routine_.kind == Kind::solve && routine_.n == 0)
      entry.as<void(Int, const void*, const void*, Int, Int, Int, void*)>()(
          &p_.m, alpha, a, columns, rows, rows + 1, y);
    else if (routine_.kind == Kind::solve)
      entry.as<void(Int, Int, Int, Int, const void*, const void*, Int, Int, Int, void*, Int)>()(
          &one, &n_, &p_.m, &n_, alpha, a, columns, rows, rows + 1, y, &ld);
    else if (routine_.n == 0)
      entry.as<void(Int, Int, Int, const void*, const void*, Int, Int, Int, const void*, void*)>()(
          &one, &p_.m, &p_.m, alpha, a, columns, rows, rows + 1, x, y);
    else
      entry.as<void(Int, Int, Int, Int, const void*, const void*, Int, Int, Int, const void*, Int,
                    void*, Int)>()(&one, &n_, &p_.m, &n_, alpha, a, columns, rows, rows + 1, x, &ld,
                                   y, &ld);
  }

  const Routine& routine_;
  Pattern p_;
  const jex_int n_;
  std::vector<jex_int> base_columns_, entry_rows_, base_rows_, distances_;
  std::vector<R> values_, diagonals_, x_, y_, start_;
  int parity_ = 0;
};

const Routine routines[] = {
    {"dcsr1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, true},
    {"dcsr1ng__f__mvout_par", "laplace1e6", Kind::product, 0, false, false},
    {"dcsr1ng__f__mvout_par", "random1e7", Kind::product, 0, false, false},
    {"dcsr1ng__f__mvout_par", "banded", Kind::product, 0, false, false},
    {"scsr1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, false},
    {"scsr1ng__f__mvout_par", "laplace1e6", Kind::product, 0, false, false},
    {"scsr1ng__f__mvout_par", "banded", Kind::product, 0, false, false},
    {"zcsr1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, false},
    {"zcsr1ng__f__mvout_par", "laplace1e6", Kind::product, 0, false, false},
    {"dcsr1nslnf__mvout_par", "laplace1e4", Kind::symmetric, 0, false, true},
    {"dcsr1nslnf__mvout_par", "laplace1e6", Kind::symmetric, 0, false, false},
    {"dcsr1nslnf__mvout_par", "random1e7", Kind::symmetric, 0, false, false},
    {"dcsr1nslnf__mvout_par", "banded", Kind::symmetric, 0, false, false},
    {"dcsr1ng__f__mmout_par", "laplace1e4", Kind::product, 8, false, true},
    {"dcsr1ng__f__mmout_par", "laplace1e6", Kind::product, 8, false, false},
    {"dcsr1ng__f__mmout_par", "random1e7", Kind::product, 8, false, false},
    {"dcsr1ng__f__mmout_par", "banded", Kind::product, 8, false, false},
    {"dcsr0ng__c__mmout_par", "laplace1e4", Kind::product, 8, true, true},
    {"dcsr0ng__c__mmout_par", "laplace1e6", Kind::product, 8, true, false},
    {"dcsr0ng__c__mmout_par", "random1e7", Kind::product, 8, true, false},
    {"dcsr0ng__c__mmout_par", "banded", Kind::product, 8, true, false},
    {"dcsr1ntlnf__svout_seq", "laplace1e4", Kind::solve, 0, false, true},
    {"dcsr1ntlnf__svout_seq", "laplace1e6", Kind::solve, 0, false, false},
    {"dcsr1ntlnf__svout_seq", "banded", Kind::solve, 0, false, false},
    {"dcsr1ntlnf__smout_par", "laplace1e4", Kind::solve, 8, false, true},
    {"dcsr1ntlnf__smout_par", "banded", Kind::solve, 8, false, false},
    {"dcoo1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, true},
    {"dcoo1ng__f__mvout_par", "laplace1e6", Kind::product, 0, false, false},
    {"dcoo1ng__f__mvout_par", "random1e7", Kind::product, 0, false, false},
    {"dcoo1ng__f__mvout_par", "banded", Kind::product, 0, false, false},
    {"scoo1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, false},
    {"zcoo1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, false},
    {"dcoo1nslnf__mvout_par", "laplace1e4", Kind::symmetric, 0, false, true},
    {"dcoo1nslnf__mvout_par", "laplace1e6", Kind::symmetric, 0, false, false},
    {"dcoo1ntlnf__svout_seq", "laplace1e4", Kind::solve, 0, false, false},
    {"ddia1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, true},
    {"ddia1ng__f__mvout_par", "laplace1e6", Kind::product, 0, false, false},
    {"ddia1ng__f__mvout_par", "banded", Kind::product, 0, false, false},
    {"sdia1ng__f__mvout_par", "laplace1e6", Kind::product, 0, false, false},
    {"zdia1ng__f__mvout_par", "laplace1e4", Kind::product, 0, false, false},
    {"zdia1ng__f__mvout_par", "laplace1e6", Kind::product, 0, false, false},
    {"ddia1nslnf__mvout_par", "laplace1e4", Kind::symmetric, 0, false, true},
    {"ddia1nslnf__mvout_par", "laplace1e6", Kind::symmetric, 0, false, false},
    {"ddia1ntlnf__svout_seq", "laplace1e4", Kind::solve, 0, false, true},
    {"ddia1ntlnf__svout_seq", "laplace1e6", Kind::solve, 0, false, false},
};

int parts(const Routine& r) { return r.name[0] == 'c' || r.name[0] == 'z' ? 2 : 1; }
bool is_double(const Routine& r) { return r.name[0] == 'd' || r.name[0] == 'z'; }

std::unique_ptr<Problem> make(const Routine& r) {
  if (parts(r) == 2) return std::make_unique<SparseProblem<double, 2>>(r);
  if (is_double(r)) return std::make_unique<SparseProblem<double, 1>>(r);
  return std::make_unique<SparseProblem<float, 1>>(r);
}

Work work(const Routine& r) {
  static std::map<std::string, std::pair<double, double>> sizes;  // rows, entries of the whole
  auto [place, is_new] = sizes.try_emplace(r.matrix);
  if (is_new) {
    const Pattern p = pattern_of(r.matrix);
    place->second = {p.m, p.columns.size()};
  }
  const auto [m, all] = place->second;
  const double stored = r.kind == Kind::product ? all : (all + m) / 2;
  const double element = parts(r) * (is_double(r) ? 8 : 4), n = std::max(r.n, 1);
  const std::string format(r.name + 1, 3);
  const double indices = format == "dia" ? 0 : format == "coo" ? 8 * stored : 4 * (stored + m);
  const double matrix = stored * element + indices;
  return {.read_bytes = matrix + 2 * m * n * element,
          .written_bytes = m * n * element,
          .flops = 2 * (r.kind == Kind::solve ? stored : all) * n * (parts(r) == 2 ? 4 : 1),
          .footprint = matrix + 2 * m * n * element,
          .is_double = is_double(r)};
}

}  // namespace

void add_sparse(std::vector<Case>& cases) {
  for (const Routine& r : routines)
    cases.push_back({std::string(r.name) + "/" + r.matrix, r.name, "sparse", work(r), r.quick,
                     [&r] { return make(r); }});
}

}  // namespace jex::bench
