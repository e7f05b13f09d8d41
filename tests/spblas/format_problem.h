// One product or solve by a kernel of any storage format: a random matrix in that format, B and C,
// the kernel's result and the model's; and the tests that every format passes.
//
// A format has
//   letters             of its names
//   (random, name, m, columns)
//   range()             what a vector product's range counts to
//   run(problem, first, last)
//   product(name, first, last, alpha, x, y), solve(name, y)
//                       the scalar models
//   rows()              the matrix as CSR
#pragma once

#include "spblas/csr_model.h"
#include "spblas/expectations.h"

namespace jex::test {

template <class Format>
struct Problem {
  using T = typename Format::Element;
  const Kernel& kernel;
  const KernelName& name = kernel.name;
  const bool vector = name.is("mv") || name.is("sv");
  const bool solve = name.is("s");
  int m, columns, n;
  T alpha;
  Format a;
  DenseMatrix<T> b, c;

  Problem(Random& random, const Kernel& kernel)
      : kernel(kernel),
        m(random.between(0, 3) ? random.between(1, 28) : random.between(1, 3)),
        columns(name.kind == 'g' ? random.between(1, 28) : m),
        n(vector ? 1 : random.between(1, 19)),
        alpha(random_value<T>(random, Values::plain)),
        a(random, name, m, columns),
        b(random, turned() ? m : columns, n, !vector && name.by_rows, more(random)),
        c(random, turned() ? columns : m, n, !vector && name.by_rows, more(random)) {}

  bool turned() const { return name.transposed(); }
  int more(Random& random) const { return vector ? 0 : random.between(0, 3); }
  int range() const { return !name.ranged() ? 1 : vector ? a.range() : n; }
  // Calls the kernel with the operands from the type T and those of integers by address.
  template <class... Arguments>
  void call(Arguments... arguments) const {
    reinterpret_cast<void (*)(Arguments...)>(kernel.address)(arguments...);
  }
  void run(jex_int first, jex_int last) { a.run(*this, first, last); }
  void whole() { run(1, range()); }
  void model(int first, int last) {
    if (!name.ranged()) first = 1, last = vector ? range() : n;
    for (int j = vector ? 0 : first - 1; j < (vector ? 1 : last); ++j) {
      std::vector<T> y = c.column(j);
      if (solve)
        a.solve(name, y);
      else
        a.product(name, vector ? first : 1, vector ? last : a.range(), alpha, b.column(j), y);
      c.set_column(j, y);
    }
  }
  std::string difference() { return first_difference(c.operand.values(), c.model); }
};

template <class Format, class Body>
void for_problems(std::initializer_list<const char*> suffixes, unsigned cases, Body body) {
  using T = typename Format::Element;
  for (const char* suffix : suffixes) {
    const auto kernels = kernels_of(Format::letters, letter<T>, suffix);
    ASSERT_FALSE(kernels.empty());
    for (const auto& kernel : kernels)
      for (const unsigned seed : case_seeds(cases)) {
        Random random(seed);
        Problem<Format> problem(random, kernel);
        body(random, problem);
        if (testing::Test::HasFailure())
          FAIL() << "JEX_CASE=" << seed << " " << kernel.name.text << " m=" << problem.m
                 << " columns=" << problem.columns << " n=" << problem.n;
      }
  }
}

// The model's bits on a random range, and nothing else changed.
template <class Format>
void expect_told_bits() {
  for_problems<Format>({"mv", "mm", "sv", "sm"}, 12, [](Random& random, auto& p) {
    const int first = random.between(1, std::max(p.range(), 1));
    const int last = random.between(first - 1, p.range());
    p.run(first, last);
    p.model(first, last);
    EXPECT_EQ(p.difference(), "") << first << ".." << last;
  });
}

// The entries that a kernel takes.
template <class T>
CsrMatrix<T> taken(CsrMatrix<T> a, const KernelName& name) {
  for (int i = 0; i < int(a.rows.size()); ++i)
    std::erase_if(a.rows[i], [&](const auto& entry) { return !name.holds(i, entry.column); });
  return a;
}

template <class Format>
void expect_dense_results() {
  for_problems<Format>({"mv", "mm", "sv", "sm"}, 4, [](Random&, auto& p) {
    const auto rows = taken(p.a.rows(), p.name);
    const CsrModel<typename Format::Element> model{p.name, rows};
    const auto matrix = model.dense(p.columns, false);
    if (p.range() < 1) return;  // an empty range, which does nothing
    p.whole();
    if (p.solve)
      expect_solved(matrix, p.c, p.c.operand.values());
    else
      expect_added(matrix, model.dense(p.columns, true), p.alpha, p.b, p.c, p.c.operand.values(),
                   2 * (p.m + p.columns));
  });
}

// Operands of a call that may touch nothing: only the sizes are there, and one of them is 0.
template <class T>
struct NoOperands {
  using Int = const jex_int*;
  const Kernel& kernel;
  int empty;  // which size: the range, the rows, the columns or those in between

  static constexpr jex_int zero = 0, single = 1, several = 3;
  static constexpr T scalar = {};
  const T* alpha = &scalar;
  const T* values = nullptr;
  T* y = nullptr;
  Int none = nullptr, one = &single, count = &several;
  Int last = size(0), m = size(1), n = size(2), k = size(3);

  bool is(const char* suffix) const { return kernel.name.is(suffix); }
  template <class... Arguments>
  void call(Arguments... arguments) const {
    reinterpret_cast<void (*)(Arguments...)>(kernel.address)(arguments...);
  }

 private:
  Int size(int place) const { return place == empty ? &zero : &single; }
};

template <class T, class Body>
void for_empty(const char* format, int sizes, Body body) {
  for (const auto& kernel : kernels_of(format, letter<T>, ""))
    for (int empty = 0; empty < sizes; ++empty) body(NoOperands<T>{kernel, empty});
}

}  // namespace jex::test
