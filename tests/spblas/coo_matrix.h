// A random matrix as a list of entries, its kernels' calls, and their scalar models.
#pragma once

#include "spblas/format_problem.h"

namespace jex::test {

template <class T>
struct CooFormat {
  using Element = T;
  static constexpr const char* letters = "coo";
  struct Place {
    int row, column;
    T value;
  };
  int m, base;
  std::vector<Place> entries;

  // Any order, some places twice; those that the kernel ignores are NaN. For a solve every row has
  // something on the diagonal, away from zero.
  CooFormat(Random& random, const KernelName& name, int m, int columns) : m(m), base(name.base) {
    const bool solve = name.is("s");
    const int count = random.pick({0, 1, 2, 3, 7, 20, 3 * m, 9 * m});
    const auto add = [&](int i, int j, T value) {
      entries.push_back({i, j, name.holds(i, j) ? value : not_a_number<T>()});
    };
    for (int k = 0; k < count; ++k) {
      const int i = random.between(0, m - 1);
      const int j = random.between(0, 5) ? random.between(0, columns - 1) : i;
      if (j >= columns || (solve && i == j)) continue;
      const T value = random_value<T>(random, Values::plain);
      add(i, j, solve ? multiply(value, Real<T>(0.25)) : value);
      if (random.between(0, 3) == 0) add(i, j, value);
    }
    for (int i = 0; solve && i < m; ++i) {
      T parts[] = {random_value<T>(random, Values::plain)};
      for (auto* part = reinterpret_cast<Real<T>*>(parts);
           part < reinterpret_cast<Real<T>*>(parts + 1); ++part)
        *part += *part < 0 ? -2 : 2;
      for (int pieces = random.pick({1, 1, 2, 3}); pieces > 0; --pieces) add(i, i, parts[0]);
    }
    for (size_t k = entries.size(); k > 1; --k)
      if (random.between(0, 2)) std::swap(entries[k - 1], entries[random.between(0, k - 1)]);
    store(random);
  }

  void store(Random& random) {
    std::vector<T> values;
    std::vector<jex_int> rows, columns;
    for (const auto& entry : entries) {
      values.push_back(entry.value);
      rows.push_back(entry.row + base);
      columns.push_back(entry.column + base);
    }
    values_.emplace(random, values);
    rows_.emplace(random, rows);
    columns_.emplace(random, columns);
  }

  jex_int range() const { return entries.size(); }

  template <class Problem>
  void run(Problem& p, jex_int first, jex_int last) {
    using Int = const jex_int*;
    const T *b = p.b.operand.data(), *alpha = &p.alpha, *values = values_->data();
    const jex_int count = entries.size();
    const Int i = rows_->data(), j = columns_->data(), k = &count, m = &p.m, n = &p.n;
    T* c = p.c.operand.data();
    const void* nobody = nullptr;
    if (p.name.is("svout_seq"))
      p.call(m, nobody, nobody, values, i, j, k, nobody, c);
    else if (p.name.is("smout_par"))
      p.call(Int(&first), Int(&last), m, n, (const T*)nullptr, values, i, j, k, c, Int(&p.c.ld));
    else if (p.name.is("mmout_par"))
      p.call(Int(&first), Int(&last), m, n, alpha, values, i, j, k, b, Int(&p.b.ld), c,
             Int(&p.c.ld));
    else if (p.name.is("mvout_par"))
      p.call(Int(&first), Int(&last), m, Int(&p.columns), alpha, values, i, j, k, b, c);
    else
      p.call(m, Int(&p.columns), alpha, values, i, j, k, b, c);
  }

  // Entries first .. last, counted from 1, in their order; the first one brings a unit diagonal. A
  // diagonal vector product and the products of columns take them all.
  void product(const KernelName& name, int first, int last, T alpha, const std::vector<T>& x,
               std::vector<T>& y) const {
    if (!name.is("mvout_par")) first = 1, last = entries.size();
    const bool empty = name.is("mvout_par") && last < first;
    if (name.unit() && first == 1 && !empty)
      for (int i = 0; i < m; ++i) y[i] = add(y[i], multiply(alpha, x[i]));
    for (int k = first - 1; k < last; ++k) {
      const auto& [i, j, value] = entries[k];
      if (!name.holds(i, j)) continue;
      const bool conj = name.conjugated();
      y[i] = add(y[i], multiply(multiply(conj ? conjugate(value) : value, alpha), x[j]));
      if (!name.mirrors() || i == j) continue;
      const T mirror = conj != (name.kind == 'h') ? conjugate(value) : value;
      const T part = multiply(multiply(mirror, alpha), x[i]);
      y[j] = add(y[j], name.kind == 'a' ? negate(part) : part);
    }
  }

  // Four partial sums over each row's entries in the order of the list; diagonal entries add up.
  void solve(const KernelName& name, std::vector<T>& y) const {
    for (int step = 0; step < m; ++step) {
      const int i = name.uplo == 'u' ? m - 1 - step : step;
      std::vector<T> terms;
      std::optional<T> d;
      for (const auto& entry : entries) {
        if (entry.row != i) continue;
        const T value = name.conjugated() ? conjugate(entry.value) : entry.value;
        if (entry.column == i)
          d = d ? add(*d, value) : value;
        else if (name.holds(i, entry.column))
          terms.push_back(multiply(value, y[entry.column]));
      }
      y[i] = subtract(y[i], CsrModel<T>::sum(
                                terms.size(), true, T{}, [](int) { return true; },
                                [&](int k) { return terms[k]; }));
      if (!name.unit()) y[i] = CsrModel<T>::quotient(y[i], d.value_or(T{}));
    }
  }

  CsrMatrix<T> rows() const {
    CsrMatrix<T> csr;
    csr.base = base;
    csr.rows.resize(m);
    for (const auto& entry : entries) csr.rows[entry.row].push_back({entry.column, entry.value});
    return csr;
  }

 private:
  std::optional<Operand<T>> values_;
  std::optional<Operand<jex_int>> rows_, columns_;
};

}  // namespace jex::test
