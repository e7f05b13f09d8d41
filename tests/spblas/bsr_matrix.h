// Random block matrices for the tests, in guarded memory, and what they stand for as dense ones.
#pragma once

#include "spblas/csr_matrix.h"
#include "support/exact.h"

#include <gtest/gtest.h>

namespace jex::test {

template <class T>
struct Block {
  int column;  // from 0
  std::vector<T> values;
};

// The rows of blocks, and the arrays. With gaps, blocks of NaN that nobody may follow lie between
// the rows.
template <class T>
struct BsrMatrix {
  int lb, base, columns;
  std::vector<std::vector<Block<T>>> rows;

  BsrMatrix(Random& random, int lb, int base, int m, int columns)
      : lb(lb), base(base), columns(columns), rows(m) {
    for (auto& row : rows)
      for (int count = random.pick({0, 0, 1, 2, 3, 5}); count > 0; --count)
        add(random, row, random.between(0, columns - 1));
  }
  void add(Random& random, std::vector<Block<T>>& row, int column) {
    row.push_back({column, std::vector<T>(lb * lb)});
    for (T& value : row.back().values) value = random_value<T>(random, Values::plain);
  }

  void store(Random& random, bool gaps) {
    const jex_int start = random.pick({0, 1, 5, -3});
    std::vector<T> values;
    std::vector<jex_int> numbers, begin, end;
    for (const auto& row : rows) {
      begin.push_back(start + numbers.size());
      for (const auto& block : row) {
        values.insert(values.end(), block.values.begin(), block.values.end());
        numbers.push_back(block.column + base);
      }
      end.push_back(start + numbers.size());
      if (gaps && random.between(0, 3) == 0 && &row != &rows.back()) {
        values.insert(values.end(), lb * lb, not_a_number<T>());
        numbers.push_back(1 << 20);
      }
    }
    begin.push_back(start + numbers.size());
    values_.emplace(random, values);
    numbers_.emplace(random, numbers);
    begin_.emplace(random, begin);
    end_.emplace(random, end);
  }
  Operand<T>& values() { return *values_; }
  const jex_int* numbers() { return numbers_->data(); }
  const jex_int* begin() { return begin_->data(); }
  const jex_int* end() { return end_->data(); }

  int height() const { return rows.size() * lb; }
  int width() const { return columns * lb; }

  // The matrix of a kind: g as stored, s symmetric, a skew-symmetric, t triangular, d the diagonal
  // blocks. op: N, T, C. Element (i, j) at i columns + j; sizes: what is added for it.
  std::vector<Exact> dense(char kind, char uplo, bool unit, char op, bool sizes) const {
    const int result_columns = op == 'N' ? width() : height();
    std::vector<Exact> matrix(size_t(height()) * width());
    const auto put = [&](int i, int j, Exact value) {
      if (op != 'N') std::swap(i, j);
      if (op == 'C') value = std::conj(value);
      matrix[size_t(i) * result_columns + j] += sizes ? Exact(size_of(value)) : value;
    };
    for (int i = 0; i < int(rows.size()); ++i)
      for (const auto& block : rows[i])
        for (int k = 0; k < lb * lb; ++k) {
          const int j = block.column, r = i * lb + k % lb, c = j * lb + k / lb;
          const Exact value = exact(block.values[k]);
          const bool beside = uplo == 'L' ? j < i : j > i;
          if (kind == 'g' || (kind == 'd' && i == j && !unit) || (kind != 'd' && beside))
            put(r, c, value);
          if ((kind == 's' || kind == 'a') && beside) put(c, r, kind == 's' ? value : -value);
          // Diagonal blocks stand as they are; op takes the matrix to itself, or to its negative.
          if ((kind == 's' || kind == 'a') && i == j)
            op == 'N' ? put(r, c, value) : put(c, r, kind == 's' ? value : -value);
          if (kind == 't' && i == j && (uplo == 'L' ? r > c : r < c)) put(r, c, value);
          if (kind == 't' && r == c && !unit) put(r, c, value);
        }
    if (unit && (kind == 't' || kind == 'd'))
      for (int r = 0; r < height(); ++r) put(r, r, 1);
    return matrix;
  }

 private:
  std::optional<Operand<T>> values_;
  std::optional<Operand<jex_int>> numbers_, begin_, end_;
};

// |after - before - alpha A x| within rounding, for all columns; A of rows x x.rows.
template <class T>
void expect_sum(const std::vector<Exact>& a, const std::vector<Exact>& sizes, Exact alpha,
                DenseMatrix<T>& x, DenseMatrix<T>& y) {
  const auto after = y.operand.values();
  for (int j = 0; j < y.columns; ++j)
    for (int i = 0; i < y.rows; ++i) {
      Exact sum = exact(y.at(i, j));
      long double size = size_of(sum);
      for (int k = 0; k < x.rows; ++k) {
        sum += alpha * a[size_t(i) * x.rows + k] * exact(x.at(k, j));
        size +=
            size_of(alpha) * size_of(sizes[size_t(i) * x.rows + k]) * size_of(exact(x.at(k, j)));
      }
      const long double error = size_of(exact(after[y.place(i, j)]) - sum);
      const long double bound =
          4 * (x.rows + 4) * (long double)(std::numeric_limits<Real<T>>::epsilon()) * size;
      if (!(error <= bound)) FAIL() << i << "," << j << ": " << error << " of " << bound;
      y.at(i, j) = after[y.place(i, j)];
    }
  EXPECT_EQ(first_difference(after, y.model), "") << "beside the result";
}

using Int = const jex_int*;

}  // namespace jex::test
