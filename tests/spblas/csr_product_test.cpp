// Every CSR product by name: bits of the told order, values of the dense product, ranges.

#include "spblas/csr_model.h"
#include "spblas/expectations.h"

#include <gtest/gtest.h>

namespace jex::test {
namespace {

using Int = const jex_int*;

template <class T>
class CsrProduct : public testing::Test {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(CsrProduct, Element4);

// One product: the kernel, a matrix for it, B and C. Vectors are matrices of one column.
template <class T>
struct Product {
  const Kernel& kernel;
  const KernelName& name = kernel.name;
  const bool vector = name.is("mv");
  int m, columns, n;
  T alpha;
  CsrMatrix<T> a;
  DenseMatrix<T> b, c;

  Product(Random& random, const Kernel& kernel)
      : kernel(kernel),
        m(random.between(0, 3) ? random.between(1, 24) : random.between(1, 3)),
        columns(name.kind == 'g' ? random.between(1, 24) : m),
        n(vector ? 1 : random.between(1, 19)),
        alpha(random_value<T>(random, Values::plain)),
        a(product_matrix<T>(random, name, m, columns)),
        b(random, name.transposed() ? m : columns, n, !vector && name.by_rows,
          vector ? 0 : random.between(0, 3)),
        c(random, name.transposed() ? columns : m, n, !vector && name.by_rows,
          vector ? 0 : random.between(0, 3)) {}

  // Rows of given lengths in the classic form; column(i) is one of row i.
  template <class Column>
  void reshape(Random& random, const std::vector<int>& lengths, int width, Column column) {
    m = lengths.size(), columns = width;
    a.rows.assign(m, {});
    for (int i = 0; i < m; ++i)
      for (int k = 0; k < lengths[i]; ++k)
        a.rows[i].push_back({column(i), random_value<T>(random, Values::plain)});
    a.store(random, false);
    b = DenseMatrix<T>(random, columns, n, false, 0);
    c = DenseMatrix<T>(random, m, n, false, 0);
  }

  // Rows of a vector product or columns of a matrix product, counted from 1.
  void run(jex_int first, jex_int last) {
    T *x = b.operand.data(), *y = c.operand.data(), *values = a.values().data();
    if (name.kind == 's' || name.kind == 'h') {
      x += vector ? first - 1 : 0;
      y += vector ? first - 1 : 0;
    }
    if (vector && name.ranged())
      reinterpret_cast<void (*)(Int, Int, Int, const T*, T*, Int, Int, Int, T*, T*)>(
          kernel.address)(&first, &last, &m, &alpha, values, a.columns(), a.begin(), a.end(), x, y);
    else if (vector)
      reinterpret_cast<void (*)(Int, const T*, T*, Int, Int, Int, T*, T*)>(kernel.address)(
          &m, &alpha, values, a.columns(), a.begin(), a.end(), x, y);
    else if (name.ranged())
      reinterpret_cast<void (*)(Int, Int, Int, Int, const T*, T*, Int, Int, Int, T*, Int, T*, Int)>(
          kernel.address)(&first, &last, &m, &n, &alpha, values, a.columns(), a.begin(), a.end(), x,
                          &b.ld, y, &c.ld);
    else
      reinterpret_cast<void (*)(Int, Int, const T*, T*, Int, Int, Int, T*, Int, T*, Int)>(
          kernel.address)(&m, &n, &alpha, values, a.columns(), a.begin(), a.end(), x, &b.ld, y,
                          &c.ld);
  }

  void model(int first, int last) {
    const CsrModel<T> model{name, a};
    const Way way = vector ? Way::vector : name.by_rows ? Way::along_rows : Way::down_columns;
    for (int j = vector ? 0 : first - 1; j < (vector ? 1 : last); ++j) {
      std::vector<T> y = c.column(j);
      model.product(way, vector ? first - 1 : 0, vector ? last : m, alpha, b.column(j), y);
      c.set_column(j, y);
    }
  }
  std::string difference() { return first_difference(c.operand.values(), c.model); }
};

template <class T, class Body>
void for_products(const char* suffix, unsigned cases, Body body) {
  const auto kernels = kernels_of("csr", letter<T>, suffix);
  ASSERT_FALSE(kernels.empty());
  for (const auto& kernel : kernels)
    for (const unsigned seed : case_seeds(cases)) {
      Random random(seed);
      Product<T> product(random, kernel);
      body(random, product);
      if (testing::Test::HasFailure())
        FAIL() << "JEX_CASE=" << seed << " " << kernel.name.text << " m=" << product.m
               << " n=" << product.n;
    }
}

// The model's bits on a random range, and nothing else changed.
TYPED_TEST(CsrProduct, HasTheBitsOfTheToldOrder) {
  for (const char* suffix : {"mv", "mm"})
    for_products<TypeParam>(suffix, 12, [](Random& random, auto& p) {
      const int most = p.vector ? p.m : p.n;
      const int first = p.name.ranged() ? random.between(1, most) : 1;
      const int last = p.name.ranged() ? random.between(first - 1, most) : most;
      p.run(first, last);
      p.model(first, last);
      EXPECT_EQ(p.difference(), "") << first << ".." << last;
    });
}

// op(A) x in long double: a wrong triangle, sign or conjugate is far outside the bound.
TYPED_TEST(CsrProduct, IsTheDenseProduct) {
  using T = TypeParam;
  for (const char* suffix : {"mv", "mm"})
    for_products<T>(suffix, 4, [](Random&, auto& p) {
      const CsrModel<T> model{p.name, p.a};
      const auto matrix = model.dense(p.columns, false), sizes = model.dense(p.columns, true);
      p.run(1, p.vector ? p.m : p.n);
      expect_added(matrix, sizes, p.alpha, p.b, p.c, p.c.operand.values(), p.columns + p.m);
    });
}

// Disjoint ranges on a shared result are the whole, bit for bit.
TYPED_TEST(CsrProduct, RangesMakeTheWhole) {
  for (const char* suffix : {"mv", "mm"})
    for_products<TypeParam>(suffix, 3, [](Random& random, auto& p) {
      if (!p.name.ranged() || (p.vector && p.name.mirrors())) return;
      const int most = p.vector ? p.m : p.n, cut = random.between(0, most);
      p.run(cut + 1, most);
      p.run(1, cut);
      p.model(1, most);
      EXPECT_EQ(p.difference(), "") << "cut " << cut;
    });
}

// Rows of one length after each other, few and many, short and long, in a small matrix and in one
// beyond the second level of the caches.
TYPED_TEST(CsrProduct, RowsOfOneLengthHaveTheToldOrder) {
  for_products<TypeParam>("mvout_par", 1, [](Random& random, auto& p) {
    if (p.name.kind != 'g') return;
    for (const int most : {40, 2600}) {
      std::vector<int> lengths = {0, 0};
      for (int length = 0; length < 15; ++length)
        for (const int count : {1, random.between(2, 5), most, 1}) {
          lengths.insert(lengths.end(), count, length);
          lengths.push_back(random.between(0, 14));
        }
      p.reshape(random, lengths, 50, [&](int) { return random.between(0, 49); });
      const int first = random.between(1, 9);
      p.run(first, p.m);
      p.model(first, p.m);
      EXPECT_EQ(p.difference(), "") << most;
    }
  });
}

// Rows that read far from each other.
TYPED_TEST(CsrProduct, ScatteredRowsHaveTheToldOrder) {
  for_products<TypeParam>("mmout_par", 1, [](Random& random, auto& p) {
    if (p.name.kind != 'g' || p.name.transposed() || p.name.by_rows) return;
    std::vector<int> lengths(40);
    for (int& length : lengths) length = random.between(0, 11);
    p.n = 3;
    p.reshape(random, lengths, 300000,
              [&](int i) { return i % 2 * 200000 + random.between(0, 99999); });
    p.run(2, p.n);
    p.model(2, p.n);
    EXPECT_EQ(p.difference(), "");
  });
}

// Sizes below 1 and empty ranges: no operand need exist.
TYPED_TEST(CsrProduct, EmptyTouchesNothing) {
  using T = TypeParam;
  const T alpha = {};
  for (const auto& kernel : kernels_of("csr", letter<T>, "mv"))
    for (const jex_int m : {-1, 0, 5}) {
      const jex_int first = 3, last = m < 1 ? 3 : 2;
      if (kernel.name.ranged())
        reinterpret_cast<void (*)(Int, Int, Int, const T*, T*, Int, Int, Int, T*, T*)>(
            kernel.address)(&first, &last, &m, &alpha, 0, 0, 0, 0, 0, 0);
      else if (m < 1)
        reinterpret_cast<void (*)(Int, const T*, T*, Int, Int, Int, T*, T*)>(kernel.address)(
            &m, &alpha, 0, 0, 0, 0, 0, 0);
    }
  for (const auto& kernel : kernels_of("csr", letter<T>, "mmout_par"))
    for (const int which : {0, 1, 2}) {
      const jex_int first = 1, last = which == 0 ? 0 : 1, m = which != 1, n = which != 2;
      reinterpret_cast<void (*)(Int, Int, Int, Int, const T*, T*, Int, Int, Int, T*, Int, T*, Int)>(
          kernel.address)(&first, &last, &m, &n, &alpha, 0, 0, 0, 0, 0, &m, 0, &m);
    }
}

// The product without alpha: one chain, three arrays, the result overwritten.
TEST(CsrGemv, IsAChainThatOverwrites) {
  const auto kernels = kernels_of("csr", 'd', "gemv");
  ASSERT_EQ(kernels.size(), 1u);
  for (const unsigned seed : case_seeds(30)) {
    Random random(seed);
    const int m = random.between(1, 30), columns = random.between(1, 30), unread = -1;
    auto a = product_matrix<double>(random, kernels[0].name, m, columns);
    a.store(random, false);
    DenseMatrix<double> x(random, columns, 1, false, 0), y(random, m, 1, false, 0);
    const int first = random.between(1, m), last = random.between(first - 1, m);
    jex_spblas_dcsr1ng__f__gemvout_par(&first, &last, &m, &unread, a.values().data(), a.columns(),
                                       a.begin(), nullptr, x.operand.data(), y.operand.data());
    for (int i = first - 1; i < last; ++i) {
      double sum = 0;
      for (const auto& entry : a.rows[i]) sum += entry.value * x.at(entry.column, 0);
      y.at(i, 0) = sum;
    }
    EXPECT_EQ(first_difference(y.operand.values(), y.model), "") << "JEX_CASE=" << seed;
  }
}

}  // namespace
}  // namespace jex::test
