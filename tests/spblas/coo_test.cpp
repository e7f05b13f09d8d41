// Every COO kernel by name: bits of the told order, values of the dense matrix, order of the list.

#include "spblas/coo_matrix.h"

namespace jex::test {
namespace {

template <class T>
class Coo : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(Coo, Element4);

TYPED_TEST(Coo, HasTheBitsOfTheToldOrder) { expect_told_bits<CooFormat<TypeParam>>(); }
TYPED_TEST(Coo, IsTheDenseMatrix) { expect_dense_results<CooFormat<TypeParam>>(); }

// A solve sees a list row by row: sorted by rows it gives the same bits, in any order a solution.
TYPED_TEST(Coo, OrderOfTheListDoesNotMatterToASolve) {
  for_problems<CooFormat<TypeParam>>({"sv", "sm"}, 4, [](Random& random, auto& p) {
    p.whole();
    const auto scrambled = p.c.operand.values();
    auto& entries = p.a.entries;
    const auto solve_again = [&] {
      p.a.store(random);
      std::copy(p.c.model.begin(), p.c.model.end(), p.c.operand.data());
      p.whole();
    };
    std::stable_sort(entries.begin(), entries.end(),
                     [](auto& a, auto& b) { return a.row < b.row; });
    solve_again();
    EXPECT_EQ(first_difference(p.c.operand.values(), scrambled), "");
    std::reverse(entries.begin(), entries.end());
    solve_again();
    const auto rows = p.a.rows();
    expect_solved(CsrModel<TypeParam>{p.name, rows}.dense(p.m, false), p.c, p.c.operand.values());
  });
}

// Ranges of the list onto vectors of their own, summed, are the product; empty ones do nothing.
TYPED_TEST(Coo, RangesMakeTheWhole) {
  for_problems<CooFormat<TypeParam>>({"mvout_par"}, 3, [](Random& random, auto& p) {
    const int count = p.range(), cut = random.between(0, count);
    p.run(cut + 1, count);
    p.run(count + 1, count);
    p.run(1, cut);
    p.model(cut + 1, count);
    p.model(1, cut);
    EXPECT_EQ(p.difference(), "") << "cut " << cut << " of " << count;
  });
}

// Without a diagonal a solve divides by zero.
TYPED_TEST(Coo, AMissingDiagonalIsZero) {
  for_problems<CooFormat<TypeParam>>({"sv", "sm"}, 2, [](Random& random, auto& p) {
    if (p.name.unit()) return;
    p.a.entries.clear();
    p.a.store(random);
    p.whole();
    for (int i = 0; i < p.m; ++i) {
      const Exact value = exact(p.c.operand.data()[p.c.place(i, 0)]);
      EXPECT_FALSE(std::isfinite(value.real()) && std::isfinite(value.imag()));
    }
  });
}

// Sizes below 1 and empty ranges: no operand need exist.
TYPED_TEST(Coo, EmptyTouchesNothing) {
  for_empty<TypeParam>("coo", 3, [](const auto& o) {
    if (o.is("mvout_par") && o.empty < 2)
      o.call(o.one, o.last, o.m, o.n, o.alpha, o.values, o.none, o.none, o.count, o.values, o.y);
    else if (o.is("mvout_seq") && o.empty == 1)
      o.call(o.m, o.n, o.alpha, o.values, o.none, o.none, o.count, o.values, o.y);
    else if (o.is("mmout_par"))
      o.call(o.one, o.last, o.m, o.n, o.alpha, o.values, o.none, o.none, o.count, o.values, o.one,
             o.y, o.one);
    else if (o.is("svout_seq") && o.empty == 1)
      o.call(o.m, o.none, o.none, o.values, o.none, o.none, o.count, o.none, o.y);
    else if (o.is("smout_par"))
      o.call(o.one, o.last, o.m, o.n, o.alpha, o.values, o.none, o.none, o.count, o.y, o.one);
  });
}

}  // namespace
}  // namespace jex::test
