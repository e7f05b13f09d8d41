// Random CSR matrices and dense operands for the tests, in guarded memory.
#pragma once

#include "blas/level1/arithmetic.h"
#include "spblas/kernel_name.h"
#include "support/cases.h"
#include "support/guarded.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace jex::test {

// An array between guard pages.
template <class T>
class Operand {
 public:
  Operand(Random& random, const std::vector<T>& values)
      : count_(values.size()),
        memory_(new Guarded(count_ * sizeof(T) + 32)),
        p_(static_cast<T*>(memory_->place(count_ * sizeof(T), 4 * random.between(0, 3),
                                          random.pick({Against::front, Against::back})))) {
    std::copy(values.begin(), values.end(), p_);
  }
  T* data() { return p_; }
  std::vector<T> values() const { return {p_, p_ + count_}; }

 private:
  size_t count_;
  std::unique_ptr<Guarded> memory_;
  T* p_;
};

template <class T>
struct Entry {
  int column;  // from 0
  T value;
};

template <class T>
T not_a_number() {
  T value;
  memset(&value, 0xff, sizeof value);
  return value;
}

// The rows of a matrix, and the four arrays. Between the rows lie gaps of NaN with columns that
// nobody may follow; row pointers begin anywhere.
template <class T>
struct CsrMatrix {
  std::vector<std::vector<Entry<T>>> rows;
  int base;

  Operand<T>& values() { return *values_; }
  const jex_int* columns() { return columns_->data(); }
  const jex_int* begin() { return begin_->data(); }
  const jex_int* end() { return classic_ ? begin() + 1 : end_->data(); }

  // Without gaps in the classic form of three arrays.
  void store(Random& random, bool gaps = true) {
    classic_ = !gaps;
    const jex_int start = random.pick({0, 1, 5, -3, 1000});
    std::vector<T> values;
    std::vector<jex_int> columns, begin, end;
    for (const auto& row : rows) {
      begin.push_back(start + values.size());
      for (const auto& entry : row) {
        values.push_back(entry.value);
        columns.push_back(entry.column + base);
      }
      end.push_back(start + values.size());
      if (gaps && random.between(0, 3) == 0 && &row != &rows.back()) {
        values.push_back(not_a_number<T>());
        columns.push_back(1 << 30);
      }
    }
    if (!gaps) begin.push_back(end.empty() ? start : end.back());
    values_.emplace(random, values);
    columns_.emplace(random, columns);
    begin_.emplace(random, begin);
    end_.emplace(random, end);
  }

 private:
  std::optional<Operand<T>> values_;
  std::optional<Operand<jex_int>> columns_, begin_, end_;
  bool classic_ = false;
};

// Rows for a product: any columns in any order, some twice, empty and full rows. Entries that the
// kernel ignores are NaN, unless it adds them and takes them away again.
template <class T>
CsrMatrix<T> product_matrix(Random& random, const KernelName& name, int m, int columns) {
  CsrMatrix<T> a;
  a.base = name.base;
  a.rows.resize(m);
  for (int i = 0; i < m; ++i) {
    const int count = random.pick({0, 1, 2, 3, 4, 5, 7, 8, 13, columns});
    for (int k = 0; k < count; ++k) {
      const int j =
          random.between(0, 5) ? random.between(0, columns - 1) : std::min(i, columns - 1);
      const bool taken = name.holds(i, j) || name.goes_twice();
      a.rows[i].push_back({j, taken ? random_value<T>(random, Values::plain) : not_a_number<T>()});
    }
  }
  a.store(random);
  return a;
}

// Rows for a solve: ascending columns, each once, a diagonal away from zero; a unit diagonal is
// stored anywhere, or not. The other triangle is NaN.
template <class T>
CsrMatrix<T> solve_matrix(Random& random, const KernelName& name, int m) {
  CsrMatrix<T> a;
  a.base = name.base;
  a.rows.resize(m);
  for (int i = 0; i < m; ++i) {
    auto& row = a.rows[i];
    const int density = random.pick({0, 1, 3, 8});
    for (int j = 0; j < m; ++j) {
      if (i == j && !name.unit()) {
        T d = random_value<T>(random, Values::plain);
        Real<T> parts[Parts<T>::count];
        memcpy(parts, &d, sizeof d);
        for (auto& part : parts) part += part < 0 ? -2 : 2;
        memcpy(&d, parts, sizeof d);
        row.push_back({j, d});
      } else if (i != j && random.between(0, 7) < density) {
        const T a = multiply(random_value<T>(random, Values::plain), Real<T>(0.25));
        row.push_back({j, name.holds(i, j) ? a : not_a_number<T>()});
      }
    }
    if (name.unit() && random.between(0, 1)) {
      const int size = row.size();
      row.insert(row.begin() + random.between(0, size), {i, not_a_number<T>()});
    }
  }
  a.store(random);
  return a;
}

// A dense operand of rows x columns with a leading dimension; gaps are NaN and must stay so. At
// least one side of a guard page is near.
template <class T>
struct DenseMatrix {
  int rows, columns, ld;
  bool by_rows;
  std::vector<T> model;
  Operand<T> operand;

  DenseMatrix(Random& random, int rows, int columns, bool by_rows, int more)
      : rows(rows),
        columns(columns),
        ld((by_rows ? columns : rows) + more),
        by_rows(by_rows),
        model(fill(random)),
        operand(random, model) {}

  size_t place(int i, int j) const { return by_rows ? size_t(i) * ld + j : i + size_t(j) * ld; }
  T& at(int i, int j) { return model[place(i, j)]; }
  std::vector<T> column(int j) const {
    std::vector<T> column(rows);
    for (int i = 0; i < rows; ++i) column[i] = model[place(i, j)];
    return column;
  }
  void set_column(int j, const std::vector<T>& column) {
    for (int i = 0; i < rows; ++i) model[place(i, j)] = column[i];
  }

 private:
  std::vector<T> fill(Random& random) const {
    if (rows < 1 || columns < 1) return {};
    std::vector<T> values(place(rows - 1, columns - 1) + 1, not_a_number<T>());
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < columns; ++j)
        values[place(i, j)] = random_value<T>(random, Values::plain);
    return values;
  }
};

template <class T>
std::string first_difference(const std::vector<T>& ours, const std::vector<T>& model) {
  for (size_t i = 0; i < ours.size(); ++i)
    if (!same_bits(ours[i], model[i])) return "differs at " + std::to_string(i);
  return {};
}

}  // namespace jex::test
