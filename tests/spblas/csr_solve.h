// One triangular or diagonal solve: the kernel, a matrix for it and the right-hand sides.
#pragma once

#include "spblas/csr_model.h"

#include <gtest/gtest.h>

namespace jex::test {

template <class T>
struct Solve {
  using Int = const jex_int*;
  const Kernel& kernel;
  const KernelName& name = kernel.name;
  const bool vector = name.is("sv");
  int m, n;
  CsrMatrix<T> a;
  DenseMatrix<T> c;

  Solve(Random& random, const Kernel& kernel, int m)
      : kernel(kernel),
        m(m),
        n(vector ? 1 : random.between(1, 19)),
        a(solve_matrix<T>(random, name, m)),
        c(random, m, n, !vector && name.by_rows, vector ? 0 : random.between(0, 3)) {}

  void run(jex_int first, jex_int last) {
    T *y = c.operand.data(), *values = a.values().data();
    if (vector)
      reinterpret_cast<void (*)(Int, const T*, T*, Int, Int, Int, T*)>(kernel.address)(
          &m, nullptr, values, a.columns(), a.begin(), a.end(), y);
    else
      reinterpret_cast<void (*)(Int, Int, Int, Int, const T*, T*, Int, Int, Int, T*, Int)>(
          kernel.address)(&first, &last, &m, &n, nullptr, values, a.columns(), a.begin(), a.end(),
                          y, &c.ld);
  }
  void model(int first, int last) {
    const CsrModel<T> model{name, a};
    for (int j = first - 1; j < last; ++j) {
      std::vector<T> y = c.column(j);
      model.solve(y);
      c.set_column(j, y);
    }
  }
  std::string difference() { return first_difference(c.operand.values(), c.model); }
};

template <class T, class Body>
void for_solves(const char* suffix, unsigned cases, Body body) {
  const auto kernels = kernels_of("csr", letter<T>, suffix);
  ASSERT_FALSE(kernels.empty());
  for (const auto& kernel : kernels)
    for (const unsigned seed : case_seeds(cases)) {
      Random random(seed);
      Solve<T> solve(random, kernel, random.between(1, 28));
      body(random, solve);
      if (testing::Test::HasFailure())
        FAIL() << "JEX_CASE=" << seed << " " << kernel.name.text << " m=" << solve.m
               << " n=" << solve.n;
    }
}

}  // namespace jex::test
