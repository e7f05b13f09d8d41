// Block matrices beside CSR products of the same elements, and products of two sparse matrices.
//
// Blocks lie as the entries of a grid's Laplacian; peers get the elements in CSR, made before the
// clock starts. A sparse product is asked for its sizes first and makes its result in new memory,
// as the peer does.

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "blocks_call.h"
#include "case.h"
#include "operands.h"
#include "sparse_patterns.h"

namespace jex::bench {
namespace {

std::vector<jex_int> from_one(std::vector<jex_int> indices) {
  for (auto& index : indices) ++index;
  return indices;
}

void set_random(std::vector<double>& v) {
  uint32_t state = 7;
  for (double& element : v) element = double(next_random(state) >> 8) / (1 << 23) - 1;
}

class BlockProblem : public Problem {
 public:
  BlockProblem(int grid, int side)
      : p_(laplacian(grid)),
        lb_(side),
        columns_(from_one(p_.columns)),
        values_(p_.columns.size() * side * side),
        csr_values_(values_.size()),
        x_(size_t(p_.m) * side),
        y_(x_.size()) {
    rows_.push_back(0);
    for (jex_int i = 0; i < p_.m; ++i)
      for (int r = 0; r < lb_; ++r) {
        for (jex_int k = p_.rows[i]; k < p_.rows[i + 1]; ++k)
          for (int c = 0; c < lb_; ++c) {
            place_.push_back((k * lb_ + c) * lb_ + r);
            csr_columns_.push_back(p_.columns[k] * lb_ + c);
          }
        rows_.push_back(place_.size());
      }
  }

  void fill() override {
    set_random(values_);
    set_random(x_);
    for (size_t k = 0; k < place_.size(); ++k) csr_values_[k] = values_[place_[k]];
  }

  void run(const Entry& entry, long calls) override {
    const jex_int first = 1;
    const BlockCall call = {jex_int(x_.size()), csr_values_.data(), csr_columns_.data(),
                            rows_.data(),       x_.data(),          y_.data()};
    using Int = const jex_int*;
    for (; calls > 0; --calls)
      if (entry.abi == Abi::module)
        entry.as<void(Int, Int, Int, Int, const void*, const double*, Int, Int, Int, const double*,
                      double*)>()(&first, &p_.m, &p_.m, &lb_, nullptr, values_.data(),
                                  columns_.data(), p_.rows.data(), p_.rows.data() + 1, x_.data(),
                                  y_.data());
      else
        entry.as<void(const BlockCall*)>()(&call);
  }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const BlockProblem&>(problem);
    return largest_difference(y_.data(), other.y_.data(), y_.size()) / 1e-12;
  }

 private:
  Pattern p_;
  const jex_int lb_;
  std::vector<jex_int> columns_, rows_, csr_columns_, place_;
  std::vector<double> values_, csr_values_, x_, y_;
};

class SquareProblem : public Problem {
 public:
  explicit SquareProblem(const Pattern& pattern)
      : p_(pattern),
        columns_(from_one(p_.columns)),
        rows_(from_one(p_.rows)),
        a_(p_.columns.size()) {}

  void fill() override { set_random(a_); }

  void run(const Entry& entry, long calls) override {
    for (; calls > 0; --calls, first_ = false) {
      if (first_ && !result_size_) result_size_ = count();
      if (first_) values_.resize(result_size_);
      if (entry.abi == Abi::module) {
        multiply(entry);
      } else {
        const SquareCall call = {p_.m, a_.data(), p_.columns.data(), p_.rows.data(),
                                 first_ ? values_.data() : nullptr};
        entry.as<void(const SquareCall*)>()(&call);
      }
    }
  }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const SquareProblem&>(problem);
    return largest_difference(values_.data(), other.values_.data(), values_.size()) / 1e-12;
  }

 private:
  using Int = const jex_int*;
  using Product = void(Int, Int, Int, Int, const double*, Int, Int, const double*, Int, Int,
                       double*, jex_int*, jex_int*, Int, jex_int*);

  void multiply(const Entry& entry) {
    const jex_int sizes = 0, all = 1;
    jex_int info;
    std::vector<jex_int> rows(p_.m + 1);
    const auto call = [&](const jex_int* job, double* c, jex_int* columns, jex_int room) {
      entry.as<Product>()(job, &p_.m, &p_.m, &p_.m, a_.data(), columns_.data(), rows_.data(),
                          a_.data(), columns_.data(), rows_.data(), c, columns, rows.data(), &room,
                          &info);
    };
    call(&sizes, nullptr, nullptr, 0);
    const jex_int count = rows[p_.m] - 1;
    double* const c = static_cast<double*>(malloc(count * sizeof(double)));
    jex_int* const columns = static_cast<jex_int*>(malloc(count * sizeof(jex_int)));
    call(&all, c, columns, count);
    if (first_) std::copy_n(c, count, values_.begin());
    free(columns);
    free(c);
  }

  // Entries of the square.
  size_t count() const {
    std::vector<jex_int> last(p_.m, -1);
    size_t count = 0;
    for (jex_int i = 0; i < p_.m; ++i)
      for (jex_int k = p_.rows[i]; k < p_.rows[i + 1]; ++k)
        for (jex_int l = p_.rows[p_.columns[k]]; l < p_.rows[p_.columns[k] + 1]; ++l) {
          count += last[p_.columns[l]] != i;
          last[p_.columns[l]] = i;
        }
    return count;
  }

  Pattern p_;
  std::vector<jex_int> columns_, rows_;
  std::vector<double> a_, values_;
  size_t result_size_ = 0;
  bool first_ = true;
};

struct Blocks {
  const char* name;
  int grid, side;
  bool quick;
};
const Blocks blocks[] = {{"dbsr1ng__f__gemvout_par/blocks3/900", 30, 3, true},
                         {"dbsr1ng__f__gemvout_par/blocks4/900", 30, 4, true},
                         {"dbsr1ng__f__gemvout_par/blocks6/900", 30, 6, true},
                         {"dbsr1ng__f__gemvout_par/blocks9/900", 30, 9, false},
                         {"dbsr1ng__f__gemvout_par/blocks3/1e5", 316, 3, false},
                         {"dbsr1ng__f__gemvout_par/blocks4/1e5", 316, 4, false},
                         {"dbsr1ng__f__gemvout_par/blocks6/1e5", 316, 6, false}};

Work block_work(const Blocks& b) {
  const double rows = double(b.grid) * b.grid, count = 5 * rows, elements = count * b.side * b.side;
  const double matrix = elements * 8 + 4 * count + 4 * rows, vector = 8 * rows * b.side;
  return {.read_bytes = matrix + vector,
          .written_bytes = vector,
          .flops = 2 * elements,
          .footprint = matrix + 2 * vector,
          .is_double = true,
          .in_place = false};
}

struct Square {
  const char* name;
  Pattern (*pattern)();
  double products, entries, result;  // of the matrix, and of the whole product, for a row
  double rows;
  bool quick;
};
const Square squares[] = {
    {"dmcsr_notr/laplace1e4", [] { return laplacian(100); }, 25, 5, 13, 1e4, true},
    {"dmcsr_notr/laplace1e6", [] { return laplacian(1000); }, 25, 5, 13, 1e6, false},
    {"dmcsr_notr/banded", [] { return banded(100000, 10); }, 441, 21, 41, 1e5, false},
    {"dmcsr_notr/random1e5", [] { return scattered(100000, 10); }, 100, 10, 100, 1e5, false}};

}  // namespace

void add_blocks(std::vector<Case>& cases) {
  for (const Blocks& b : blocks)
    cases.push_back({b.name, "dbsr1ng__f__gemvout_par", "sparse", block_work(b), b.quick,
                     [&b] { return std::make_unique<BlockProblem>(b.grid, b.side); }});
  for (const Square& s : squares) {
    const double read = s.rows * (2 * 12 * s.entries + 4), written = s.rows * (12 * s.result + 4);
    cases.push_back({s.name,
                     "dmcsr_notr",
                     "sparse",
                     {.read_bytes = read,
                      .written_bytes = written,
                      .flops = 2 * s.products * s.rows,
                      .footprint = read + written,
                      .is_double = true,
                      .in_place = false},
                     s.quick,
                     [&s] { return std::make_unique<SquareProblem>(s.pattern()); }});
  }
}

}  // namespace jex::bench
