// Every CSR solve by name: bits of the told order, residuals, ranges, diagonals that are missing.

#include "spblas/csr_solve.h"
#include "spblas/expectations.h"

namespace jex::test {
namespace {

template <class T>
class CsrSolve : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(CsrSolve, Element4);

TYPED_TEST(CsrSolve, HasTheBitsOfTheToldOrder) {
  for (const char* suffix : {"sv", "sm"})
    for_solves<TypeParam>(suffix, 12, [](Random& random, auto& s) {
      const int first = s.vector ? 1 : random.between(1, s.n);
      const int last = s.vector ? 1 : random.between(first - 1, s.n);
      s.run(first, last);
      s.model(first, last);
      EXPECT_EQ(s.difference(), "") << first << ".." << last;
    });
}

// op(A) times the solution is the right-hand side.
TYPED_TEST(CsrSolve, LeavesASmallResidual) {
  using T = TypeParam;
  for (const char* suffix : {"sv", "sm"})
    for_solves<T>(suffix, 3, [](Random&, auto& s) {
      const auto matrix = CsrModel<T>{s.name, s.a}.dense(s.m, false);
      s.run(1, s.n);
      expect_solved(matrix, s.c, s.c.operand.values());
    });
}

// More rows than a block holds, and a last block longer than the others.
TEST(CsrSolveBlocks, DoNotShowInTheBits) {
  for (const char* suffix : {"sv", "sm"})
    for (const auto& kernel : kernels_of("csr", 'd', suffix)) {
      if (kernel.name.kind != 't') continue;
      Random random(7);
      Solve<double> s(random, kernel, 1);
      s.m = kernel.name.uplo == 'l' ? 25000 : 4500;
      s.n = 2 - s.vector;
      s.a.rows.assign(s.m, {});
      for (int i = 0; i < s.m; ++i)
        for (const int j : {i - 7, i - 1, i, i + 1, i + 3})
          if (j >= 0 && j < s.m && (j == i || s.name.holds(i, j)))
            s.a.rows[i].push_back({j, i == j ? 3 : random.real(-1, 1)});
      s.a.store(random);
      s.c = DenseMatrix<double>(random, s.m, s.n, !s.vector && s.name.by_rows, 0);
      s.run(1, s.n);
      s.model(1, s.n);
      EXPECT_EQ(s.difference(), "") << kernel.name.text;
    }
}

// A row that ends before its diagonal divides by zero, and reads nothing behind the row.
TYPED_TEST(CsrSolve, AMissingDiagonalIsZero) {
  using T = TypeParam;
  for (const char* suffix : {"sv", "sm"})
    for_solves<T>(suffix, 2, [](Random& random, auto& s) {
      if (s.name.unit()) return;
      for (auto& row : s.a.rows) row.clear();
      s.a.store(random);
      s.run(1, s.n);
      for (const T& y : s.c.operand.values()) {
        const Exact value = exact(y);
        EXPECT_FALSE(std::isfinite(value.real()) && std::isfinite(value.imag()));
      }
    });
}

TYPED_TEST(CsrSolve, EmptyTouchesNothing) {
  using T = TypeParam;
  using Int = const jex_int*;
  const jex_int none = 0, one = 1;
  for (const auto& kernel : kernels_of("csr", letter<T>, "sv"))
    reinterpret_cast<void (*)(Int, const T*, T*, Int, Int, Int, T*)>(kernel.address)(
        &none, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  for (const auto& kernel : kernels_of("csr", letter<T>, "sm"))
    for (const int which : {0, 1, 2})
      reinterpret_cast<void (*)(Int, Int, Int, Int, const T*, T*, Int, Int, Int, T*, Int)>(
          kernel.address)(&one, which == 0 ? &none : &one, which == 1 ? &none : &one,
                          which == 2 ? &none : &one, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr, &one);
}

}  // namespace
}  // namespace jex::test
