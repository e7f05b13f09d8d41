// Every DIA kernel by name: bits of the told order, values of the dense matrix, blocks, runs,
// scans.

#include "spblas/dia_matrix.h"

#include <limits.h>

namespace jex::test {
namespace {

template <class T>
class Dia : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(Dia, Element4);

TYPED_TEST(Dia, HasTheBitsOfTheToldOrder) { expect_told_bits<DiaFormat<TypeParam>>(); }
TYPED_TEST(Dia, IsTheDenseMatrix) { expect_dense_results<DiaFormat<TypeParam>>(); }

// A problem of another size and other diagonals than the random ones.
template <class T>
void reshape(Problem<DiaFormat<T>>& p, Random& random, int m, int columns,
             std::vector<jex_int> distances) {
  p.m = p.a.m = m, p.columns = p.a.columns = columns, p.a.ld = m;
  p.n = p.vector ? 1 : 3;
  p.a.distances = distances;
  p.a.fill(random, p.name);
  p.a.store(random);
  p.b = DenseMatrix<T>(random, p.turned() ? m : columns, p.n, false, 0);
  p.c = DenseMatrix<T>(random, p.turned() ? columns : m, p.n, false, 0);
}

// Sizes with short and long last blocks; diagonals that cross blocks, meet none, or lie so far out
// that sums with their distance overflow.
TEST(DiaBlocks, ShowInTheOrderOfTheSums) {
  const std::vector<jex_int> distances = {7000,  0,      -1,      1,       -20001,     4999,
                                          -4999, 1,      -44999,  11999,   12000,      -45000,
                                          300,   -12345, INT_MAX, INT_MIN, INT_MAX - 3};
  for (const char type : {'d', 's', 'z'})
    for (const auto& kernel : kernels_of("dia", type, "m")) {
      const auto expect_bits = [&](auto element) {
        using T = decltype(element);
        Random random(1);
        Problem<DiaFormat<T>> p(random, kernel);
        for (const auto& [m, k] : {std::pair{45000, 12000}, {20001, 10001}, {4999, 9999}}) {
          reshape(p, random, m, k, distances);
          p.whole();
          p.model(1, p.n);
          EXPECT_EQ(p.difference(), "") << kernel.name.text << " " << m << " x " << k;
        }
      };
      if (kernel.name.kind != 'g') continue;
      if (type == 'd')
        expect_bits(double());
      else if (type == 's')
        expect_bits(float());
      else
        expect_bits(jex_dcomplex());
    }
}

// Runs around the shortest wide one, a stretch, and several diagonals that cover different rows.
TYPED_TEST(Dia, RunsOfAllLengths) {
  for_problems<DiaFormat<TypeParam>>({"mv", "sv", "smout_par"}, 1, [](Random& random, auto& p) {
    for (const int m : {1, 7, 8, 9, 10, 16, 17, 25, 40, 1023, 2100}) {
      if (m > 500 && p.name.mirrors()) continue;  // their order is that of stretches
      std::vector<jex_int> distances = {-2000, -30, -17, -9, 0, 9, 11, 16, 31};
      reshape(p, random, m, m, distances);
      p.whole();
      p.model(1, p.n);
      EXPECT_EQ(p.difference(), "") << m;
    }
  });
}

TYPED_TEST(Dia, AMissingDiagonalIsZero) {
  for_problems<DiaFormat<TypeParam>>({"sv", "sm"}, 1, [](Random& random, auto& p) {
    if (p.name.unit()) return;
    for (const int near : {1, 12}) {
      reshape(p, random, 20, 20, {-near, near});
      p.whole();
      for (int i = 0; i < p.m; ++i) {
        const Exact value = exact(p.c.operand.data()[i]);
        EXPECT_FALSE(std::isfinite(value.real()) && std::isfinite(value.imag()));
      }
    }
  });
}

// Sizes below 1 and empty ranges: no operand need exist.
TYPED_TEST(Dia, EmptyTouchesNothing) {
  for_empty<TypeParam>("dia", 4, [](const auto& o) {
    const auto l = o.one, d = o.count;
    if (o.is("mv") && (o.empty == 1 || o.empty == 3))
      o.call(o.none, o.none, o.m, o.k, o.alpha, o.values, l, o.none, d, o.values, o.y);
    else if (o.is("mm"))
      o.call(l, o.last, o.m, o.n, o.k, o.alpha, o.values, l, o.none, d, o.values, l, o.y, l);
    else if (o.is("svout_seq") && o.empty == 1)
      o.call(o.m, o.values, o.values, l, o.none, d, o.y);
    else if (o.is("smout_par") && o.empty < 3)
      o.call(l, o.last, o.m, o.n, o.values, o.values, l, o.none, d, o.y, l);
    else if (o.is("smout_seq") && (o.empty == 1 || o.empty == 2))
      o.call(o.m, o.n, o.values, o.values, l, o.none, d, o.y, l);
  });
}

// first, last, step, main, flag
TEST(DiaScan, FindsTheTriangles) {
  using Found = std::vector<jex_int>;
  const struct {
    std::vector<jex_int> distances;
    Found lower, upper;
  } table[] = {
      {{-2, -1, 0, 1}, {1, 2, 1, 3, 0}, {4, 4, 1, 3, 0}},
      {{-2, -1, 1}, {1, 2, 1, 3, -1}, {3, 3, 1, 2, -1}},
      {{0, 3}, {1, 0, 1, 1, 0}, {2, 2, 1, 1, 0}},
      {{1, 3, 4}, {1, 0, 1, 1, -1}, {1, 3, 1, 0, -1}},
      {{-3, -1}, {1, 2, 1, 3, -1}, {3, 2, 1, 2, -1}},
      {{0}, {1, 0, 1, 1, 0}, {2, 1, 1, 1, 0}},
      {{}, {1, 0, 1, 1, -1}, {1, 0, 1, 0, -1}},
  };
  Random random(1);
  for (const auto& row : table) {
    Operand<jex_int> distances(random, row.distances);
    const jex_int count = row.distances.size();
    const auto expect = [&](auto scan, const Found& found) {
      Found out(5, 77);
      scan(distances.data(), &count, &out[0], &out[1], &out[2], &out[3], &out[4]);
      EXPECT_EQ(out, found) << count;
    };
    expect(jex_spblas_find_diag_par_ln, row.lower);
    expect(jex_spblas_find_diag_par_lu, row.lower);
    expect(jex_spblas_find_diag_par_un, row.upper);
    expect(jex_spblas_find_diag_par_uu, row.upper);
  }
}

}  // namespace
}  // namespace jex::test
