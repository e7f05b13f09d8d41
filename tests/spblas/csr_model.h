// Scalar models of the CSR kernels, one column at a time in the told order of sums, and the dense
// matrix op(A) in long double, which knows nothing of orders.
#pragma once

#include "spblas/csr_matrix.h"
#include "support/exact.h"

namespace jex::test {

enum class Way { vector, down_columns, along_rows };  // of a product

template <class T>
struct CsrModel {
  const KernelName& name;
  const CsrMatrix<T>& a;

  static T conj_if(bool conj, T a) { return conj ? conjugate(a) : a; }

  // term(k) for entries k of a row that take part, in the given order.
  template <class Takes, class Term>
  static T sum(int n, bool four, T start, Takes takes, Term term) {
    T s[4] = {start, start, start, start};
    int k = 0;
    for (; four && k < n / 4 * 4; ++k)
      if (takes(k)) s[k % 4] = add(s[k % 4], term(k));
    T total = four && k ? add(add(add(s[0], s[1]), s[2]), s[3]) : start;
    for (; k < n; ++k)
      if (takes(k)) total = add(total, term(k));
    return total;
  }

  // y := y + alpha op(A) x for rows first .. last - 1, counted from 0.
  void product(Way way, int first, int last, T alpha, const std::vector<T>& x,
               std::vector<T>& y) const {
    if (name.kind == 'a' && name.op == 'c') alpha = negate(alpha);
    for (int i = first; i < last; ++i) {
      if (name.kind == 'd' && name.unit())
        y[i] = add(y[i], multiply(alpha, x[i]));
      else if (way == Way::vector && name.goes_twice())
        twice(i, alpha, x, y);
      else
        once(way, i, alpha, x, y);
    }
  }

  void once(Way way, int i, T alpha, const std::vector<T>& x, std::vector<T>& y) const {
    const auto& row = a.rows[i];
    const int n = row.size();
    const bool scatters = name.transposed() && (name.kind == 'g' || name.kind == 't');
    const bool in_terms = way == Way::down_columns || name.kind == 'd';
    const bool four = way == Way::along_rows || !name.mirrors();
    const auto takes = [&](int k) { return name.holds(i, row[k].column); };
    if (!scatters) {
      const bool conj = name.kind == 'h' ? name.op == 't' : name.conjugated();
      const auto value = [&](int k) { return conj_if(conj, row[k].value); };
      if (in_terms)
        y[i] = sum(n, false, y[i], takes,
                   [&](int k) { return multiply(multiply(value(k), alpha), x[row[k].column]); });
      else
        y[i] = add(multiply(sum(n, four, T{}, takes,
                                [&](int k) { return multiply(value(k), x[row[k].column]); }),
                            alpha),
                   y[i]);
    }
    if (scatters || name.mirrors())
      for (int k = 0; k < n; ++k)
        if (takes(k) && (scatters || row[k].column != i)) {
          T& to = y[row[k].column];
          to = add(to, mirror(row[k].value, alpha, x[i], in_terms));
        }
    if (name.unit()) y[i] = add(y[i], multiply(alpha, x[i]));
  }

  T mirror(T value, T alpha, T xi, bool in_terms) const {
    const bool conj = name.kind == 'h' ? name.op == 'n' : name.conjugated();
    value = conj_if(conj, value);
    if (name.kind == 's' && !in_terms) return multiply(multiply(xi, alpha), value);
    const T part = multiply(multiply(value, alpha), xi);
    return name.kind == 'a' ? negate(part) : part;
  }

  void twice(int i, T alpha, const std::vector<T>& x, std::vector<T>& y) const {
    const auto& row = a.rows[i];
    const bool conj = name.kind == 'h' ? name.op == 't' : name.conjugated();
    const auto value = [&](int k) { return conj_if(conj, row[k].value); };
    const T s = sum(
        row.size(), true, T{}, [](int) { return true; },
        [&](int k) { return multiply(value(k), x[row[k].column]); });
    y[i] = add(multiply(s, alpha), y[i]);
    T outside = {};
    for (size_t k = 0; k < row.size(); ++k) {
      const int j = row[k].column;
      if (name.uplo == 'l' ? j < i : j > i)
        y[j] = add(y[j], mirror(row[k].value, alpha, x[i], false));
      else
        outside = add(outside, multiply(multiply(value(k), alpha), x[j]));
    }
    if (name.unit()) y[i] = add(y[i], multiply(alpha, x[i]));
    y[i] = subtract(y[i], outside);
  }

  // y := inverse(op(A)) y.
  void solve(std::vector<T>& y) const {
    const int m = y.size();
    const bool forward = (name.uplo == 'l') != name.transposed();
    for (int step = 0; step < m; ++step) {
      const int i = name.kind == 'd' || forward ? step : m - 1 - step;
      T d = {};
      std::vector<Entry<T>> beside;
      for (const auto& entry : a.rows[i]) {
        const T value = conj_if(name.conjugated(), entry.value);
        if (entry.column == i)
          d = value;
        else if (name.kind != 'd' && name.holds(i, entry.column))
          beside.push_back({entry.column, value});
      }
      const int n = beside.size();
      if (name.kind != 'd' && !name.transposed())
        y[i] = subtract(y[i], sum(
                                  places(i), name.uplo == 'u', T{},
                                  [&](int k) { return place(i, k, beside) >= 0; },
                                  [&](int k) {
                                    const auto& entry = beside[place(i, k, beside)];
                                    return multiply(entry.value, y[entry.column]);
                                  }));
      if (!name.unit()) y[i] = quotient(y[i], d);
      if (name.kind == 'd' || !name.transposed()) continue;
      const T t = subtract(T{}, y[i]);
      for (int k = 0; k < n; ++k) {
        const auto& entry = beside[name.uplo == 'l' ? n - 1 - k : k];
        y[entry.column] = add(multiply(entry.value, t), y[entry.column]);
      }
    }
  }

  // An upper row counts its places from the first entry behind the diagonal; a unit diagonal that
  // stands behind that one leaves a gap. Places of a chain do not matter.
  int places(int i) const { return a.rows[i].size() - lead(i); }
  int lead(int i) const {
    const auto& row = a.rows[i];
    size_t p = 0;
    if (name.uplo == 'l') return 0;
    while (p < row.size() && row[p].column < i) ++p;
    return p + (p < row.size() && row[p].column == i);
  }
  int place(int i, int k, const std::vector<Entry<T>>& beside) const {
    const int column = a.rows[i][lead(i) + k].column;
    for (size_t n = 0; n < beside.size(); ++n)
      if (beside[n].column == column) return n;
    return -1;
  }

  static T quotient(T x, T d) {
    if constexpr (is_complex<T>) {
      const bool wide = std::fabs(d.re) >= std::fabs(d.im);
      const auto large = wide ? d.re : d.im, small = wide ? d.im : d.re;
      const auto q = small / large, divisor = large + small * q;
      const T t = multiply(x, wide ? T{1, -q} : T{q, -1});
      return {t.re / divisor, t.im / divisor};
    } else {
      return x / d;
    }
  }

  // op(A) as a dense matrix, row after row, or the sizes of all that is added for an element.
  std::vector<Exact> dense(int columns, bool sizes) const {
    const int m = a.rows.size();
    // The transpose of a Hermitian matrix is its conjugate, complex elements on its diagonal too.
    const bool turned = name.transposed() && name.kind != 'h';
    const bool conj = name.kind == 'h' ? name.op == 't' : name.conjugated();
    const int width = turned ? m : columns;
    std::vector<Exact> matrix((turned ? columns : m) * size_t(width));
    const auto put = [&](int i, int j, Exact value) {
      if (turned) std::swap(i, j);
      if (conj) value = std::conj(value);
      matrix[i * size_t(width) + j] += sizes ? size_of(value) : value;
    };
    for (int i = 0; i < m; ++i) {
      for (const auto& entry : a.rows[i]) {
        const int j = entry.column;
        const Exact value = exact(entry.value);
        if (name.holds(i, j)) {
          put(i, j, value);
          if (name.mirrors() && i != j)
            put(j, i, name.kind == 'h' ? std::conj(value) : name.kind == 'a' ? -value : value);
        } else if (sizes && name.goes_twice()) {
          for (int twice = 0; twice < 2; ++twice) put(i, j, value), put(j, i, value);
        }
      }
      if (name.unit()) put(i, i, 1);
    }
    return matrix;
  }
};

}  // namespace jex::test
