// A random matrix by its diagonals, its kernels' calls, and their scalar models.
#pragma once

#include "spblas/format_problem.h"

namespace jex::test {

template <class T>
struct DiaFormat {
  using Element = T;
  static constexpr const char* letters = "dia";
  int m, columns, ld;
  std::vector<jex_int> distances;
  std::vector<T> values;

  // For a product any distances, some twice, some beyond the matrix. For a solve they ascend, and
  // the main one is away from zero. Places that the kernel ignores, and those outside the matrix,
  // are NaN.
  DiaFormat(Random& random, const KernelName& name, int m, int columns)
      : m(m), columns(columns), ld(m + random.between(0, 3)) {
    const bool solve = name.is("s");
    const int density = random.pick({0, 1, 3, 9});
    for (int distance = -m - 2; distance <= columns + 2; ++distance)
      if (random.between(0, 9) < density || (solve && distance == 0 && !name.unit()))
        distances.push_back(distance);
    if (!solve) {
      for (size_t d = distances.size(); d > 1; --d)
        if (random.between(0, 1)) std::swap(distances[d - 1], distances[random.between(0, d - 1)]);
      if (!distances.empty() && random.between(0, 1)) distances.push_back(distances[0]);
    }
    fill(random, name);
    store(random);
  }

  void fill(Random& random, const KernelName& name) {
    const int count = distances.size();
    values.assign(count ? (count - 1) * ld + m : 0, not_a_number<T>());
    for (int d = 0; d < count; ++d)
      for (int i = 0; i < m; ++i) {
        const int64_t j = int64_t(i) + distances[d];
        if (j < 0 || j >= columns || !name.holds(i, j)) continue;
        T& value = values[d * ld + i];
        value = random_value<T>(random, Values::plain);
        if (!name.is("s")) continue;
        if (i != j) value = multiply(value, Real<T>(0.25));
        Real<T> parts[Parts<T>::count];
        memcpy(parts, &value, sizeof value);
        for (auto& part : parts) part += i != j ? 0 : part < 0 ? -2 : 2;
        memcpy(&value, parts, sizeof value);
      }
  }
  void store(Random& random) {
    values_.emplace(random, values);
    distances_.emplace(random, distances);
  }

  // The range words of a vector product are not read.
  jex_int range() const { return 1; }

  template <class Problem>
  void run(Problem& p, jex_int first, jex_int last) {
    using Int = const jex_int*;
    const T *b = p.b.operand.data(), *alpha = &p.alpha, *values = values_->data();
    const jex_int count = distances.size();
    const Int l = &ld, d = distances_->data(), nd = &count, m = &p.m, n = &p.n, k = &p.columns;
    const Int ldb = &p.b.ld, ldc = &p.c.ld;
    T* c = p.c.operand.data();
    const T* unread = nullptr;
    if (p.name.is("svout_seq"))
      p.call(m, unread, values, l, d, nd, c);
    else if (p.name.is("smout_par"))
      p.call(Int(&first), Int(&last), m, n, unread, values, l, d, nd, c, ldc);
    else if (p.name.is("smout_seq"))
      p.call(m, n, unread, values, l, d, nd, c, ldc);
    else if (p.name.is("mmout_par"))
      p.call(Int(&first), Int(&last), m, n, k, alpha, values, l, d, nd, b, ldb, c, ldc);
    else
      p.call(unread, unread, m, k, alpha, values, l, d, nd, b, c);
  }

  // Blocks of rows, of columns, then the diagonals; the mirror parts of a block after its row
  // parts.
  void product(const KernelName& name, int, int, T alpha, const std::vector<T>& x,
               std::vector<T>& y) const {
    const bool scatters = name.transposed() && (name.kind == 'g' || name.kind == 't');
    const bool conj = name.kind == 'h' ? name.op == 't' : name.conjugated();
    const T scale = name.kind == 'a' && name.transposed() ? negate(alpha) : alpha;
    const auto blocks = [](int n, int size, auto block) {
      size = std::min(n, size);
      for (int b = 0; b < n / size; ++b) block(b * size, b + 1 < n / size ? (b + 1) * size : n);
    };
    blocks(m, 20000, [&](int r0, int r1) {
      blocks(columns, 5000, [&](int c0, int c1) {
        for (const bool mirror : {false, true})
          for (size_t d = 0; d < distances.size(); ++d)
            for (int64_t i = std::max<int64_t>(r0, int64_t(c0) - distances[d]);
                 i < std::min<int64_t>(r1, int64_t(c1) - distances[d]); ++i) {
              const int j = i + distances[d];
              if (!name.holds(i, j)) continue;
              if (mirror ? !scatters && (!name.mirrors() || i == j) : scatters) continue;
              const bool turns = mirror && name.kind == 'h' ? !conj : conj;
              T value = values[d * ld + i];
              if (turns) value = conjugate(value);
              const T by = mirror && name.kind == 'a' ? negate(scale) : scale;
              T& to = y[mirror ? j : i];
              to = add(to, multiply(multiply(x[mirror ? i : j], by), value));
            }
      });
    });
    if (name.unit())
      for (int i = 0; i < m; ++i) y[i] = add(y[i], multiply(alpha, x[i]));
  }

  // The farthest diagonal first.
  void solve(const KernelName& name, std::vector<T>& y) const {
    const bool forward = (name.uplo == 'l') != name.transposed();
    const int count = distances.size();
    const auto value = [&](int d, int i) {
      return name.conjugated() ? conjugate(values[d * ld + i]) : values[d * ld + i];
    };
    for (int step = 0; step < m; ++step) {
      const int i = forward ? step : m - 1 - step;
      T d = {};
      for (int n = 0; n < count; ++n)
        if (distances[n] == 0) d = value(n, i);
      const auto divide = [&] {
        if (!name.unit()) y[i] = CsrModel<T>::quotient(y[i], d);
      };
      if (name.transposed()) divide();
      for (int n = 0; n < count; ++n) {
        const int at = name.uplo == 'l' ? n : count - 1 - n, j = i + distances[at];
        if (j < 0 || j >= m || i == j || !name.holds(i, j)) continue;
        if (name.transposed())
          y[j] = subtract(y[j], multiply(value(at, i), y[i]));
        else
          y[i] = subtract(y[i], multiply(value(at, i), y[j]));
      }
      if (!name.transposed()) divide();
    }
  }

  CsrMatrix<T> rows() const {
    CsrMatrix<T> csr;
    csr.base = 1;
    csr.rows.resize(m);
    for (size_t d = 0; d < distances.size(); ++d)
      for (int i = 0; i < m; ++i)
        if (const int j = i + distances[d]; j >= 0 && j < columns)
          csr.rows[i].push_back({j, values[d * ld + i]});
    return csr;
  }

 private:
  std::optional<Operand<T>> values_;
  std::optional<Operand<jex_int>> distances_;
};

}  // namespace jex::test
