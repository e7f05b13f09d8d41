// How trmv and trsv are put together, and how complex diagonals divide.

#include "blas/level2/triangular.h"

namespace jex::test {
namespace {

template <class T>
struct TriangularBlocks : testing::Test {};
TYPED_TEST_SUITE(TriangularBlocks, Element4);

template <class T>
T real_value(Real<T> real) {
  T value = {};
  memcpy(&value, &real, sizeof real);
  return value;
}

// The same steps through the exports, block by block: one call for each diagonal block, one gemv
// for the rectangle beside it. The bits must be those of the single call.
template <class T>
void run_blocks(Triangle<T>& a, Task task, int block, T* x, int inc) {
  using E = TriangularEntries<T>;
  const bool solve = task == Task::solve;
  const bool forward = a.lower() == solve;
  const T alpha = real_value<T>(solve ? -1 : 1), one = real_value<T>(1);
  T* const first = x + (inc < 0 ? (1 - a.n) * inc : 0);
  const auto part = [&](int i, int n) { return first + (inc < 0 ? i + n - 1 : i) * inc; };
  for (int done = 0; done < a.n; done += block) {
    const int width = std::min(block, a.n - done);
    const int j = forward ? done : a.n - done - width;
    const int row = a.upper() ? 0 : j + width;
    const int rows = a.upper() ? j : a.n - row;
    T* const column = a.data() + ptrdiff_t(j) * a.lda;
    const auto couple = [&] {
      if (rows == 0) return;
      T *const inside = part(j, width), *const beside = part(row, rows);
      E::gemv(&a.trans, &rows, &width, &alpha, column + row, &a.lda, a.plain() ? inside : beside,
              &inc, &one, a.plain() ? beside : inside, &inc);
    };
    const bool diagonal_first = a.plain() == solve;
    if (!diagonal_first) couple();
    (solve ? E::trsv : E::trmv)(&a.uplo, &a.trans, &a.diag, &width, column + j, &a.lda,
                                part(j, width), &inc);
    if (diagonal_first) couple();
  }
}

template <class T>
void expect_blocks(Task task, int block) {
  for_triangles<T>(60, {Storage::full}, [=](Random&, Triangle<T>& a, Vector<T>& x) {
    const std::vector<T> before = results(x, a.n);
    a.run(task, x.data(), x.inc());
    const std::vector<T> once = results(x, a.n);
    const int inc = x.inc();
    for (int i = 0; i < a.n; ++i) x.data()[(inc < 0 ? (1 - a.n) * inc : 0) + i * inc] = before[i];
    run_blocks(a, task, block, x.data(), inc);
    const std::vector<T> blocks = results(x, a.n);
    for (int i = 0; i < a.n; ++i)
      if (!same_bits(once[i], blocks[i])) FAIL() << "element " << i << " of " << a.n;
  });
}

TYPED_TEST(TriangularBlocks, SolveIsMadeOfBlocksOf32) { expect_blocks<TypeParam>(Task::solve, 32); }

TYPED_TEST(TriangularBlocks, ProductIsMadeOfBlocks) {
  const bool wide = letter<TypeParam> == 'd' || letter<TypeParam> == 'c';
  expect_blocks<TypeParam>(Task::product, wide ? 64 : 32);
}

template <class T>
struct ComplexDivision : testing::Test {};
using ComplexTypes = testing::Types<jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(ComplexDivision, ComplexTypes);

// One equation: the quotient is near even where the square of the divisor would overflow or vanish,
// in every octant of the divisor.
TYPED_TEST(ComplexDivision, IsScaled) {
  using T = TypeParam;
  using R = Real<T>;
  using limits = std::numeric_limits<R>;
  const R extreme[] = {R(std::sqrt(limits::max())) * 4, R(std::sqrt(limits::min())) / 4, R(1)};
  Random random(7);
  for (int k = 0; k < 600; ++k) {
    const R scale = extreme[k % 3];
    // On both axes, too: one part of the divisor is 0.
    const T a = {k % 5 == 0 ? R(0) : R(random.real(-2, 2)) * scale,
                 k % 5 == 1 ? R(0) : R(random.real(-2, 2)) * scale};
    const T b = {R(random.real(-2, 2)) * scale, R(random.real(-2, 2)) * scale};
    const int n = 1, inc = 1;
    for (const char* trans : {"N", "T", "C"}) {
      T x = b;
      TriangularEntries<T>::trsv("U", trans, "N", &n, &a, &n, &x, &inc);
      const Exact quotient = exact(b) / (*trans == 'C' ? std::conj(exact(a)) : exact(a));
      const long double error = size_of(exact(x) - quotient);
      ASSERT_TRUE(error <= 8 * limits::epsilon() * size_of(quotient))
          << b.re << " " << b.im << " / " << a.re << " " << a.im << ": error " << error;
    }
  }
}

}  // namespace
}  // namespace jex::test
