// Sparse times sparse, sums and conversions, over the hook library: dense models, sizes first or
// all at once, too little room, refused scratch, nothing lost.

#include "blas/level1/arithmetic.h"
#include "serv/memory_fixture.h"
#include "spblas/csr_matrix.h"

#include <functional>

namespace jex::test {
namespace {

using Int = const jex_int*;

template <class T>
class SparseSparse : public Memory {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(SparseSparse, Element4);

template <class T>
struct Routines;
#define JEX_TEST_SPARSE(E, T)                                       \
  template <>                                                       \
  struct Routines<T> {                                              \
    static constexpr auto multiply = jex_spblas_##E##mcsr_notr;     \
    static constexpr auto multiply_tr = jex_spblas_##E##multcsr_tr; \
    static constexpr auto add = jex_spblas_##E##mcsradd_notr;       \
    static constexpr auto add_tr = jex_spblas_##E##mcsradd_tr;      \
  };
JEX_TEST_SPARSE(s, float)
JEX_TEST_SPARSE(d, double)
JEX_TEST_SPARSE(c, jex_scomplex)
JEX_TEST_SPARSE(z, jex_dcomplex)

// Rows with columns in any order, some twice; three arrays from 1.
template <class T>
CsrMatrix<T> random_matrix(Random& random, int m, int n) {
  CsrMatrix<T> a;
  a.base = 1;
  a.rows.resize(m);
  for (auto& row : a.rows)
    for (int count = random.pick({0, 1, 2, 4, 9, 40}); count > 0; --count)
      row.push_back({random.between(0, n - 1), random_value<T>(random, Values::plain)});
  a.store(random, false);
  return a;
}

template <class T>
using Rows = std::vector<std::vector<Entry<T>>>;

template <class T>
Rows<T> transposed(const Rows<T>& rows, int n) {
  Rows<T> t(n);
  for (int i = 0; i < int(rows.size()); ++i)
    for (const auto& entry : rows[i]) t[entry.column].push_back({i, entry.value});
  return t;
}

// The rows of a result: chains that begin with their first term.
template <class T>
struct Sums {
  Rows<T> rows;
  void term(int i, int j, T value) {
    auto& row = rows[i];
    auto at = std::lower_bound(row.begin(), row.end(), j,
                               [](const Entry<T>& e, int j) { return e.column < j; });
    if (at != row.end() && at->column == j)
      at->value = add(at->value, value);
    else
      row.insert(at, {j, value});
  }
};

// One operation on random matrices and its model.
template <class T>
struct Operation {
  int m, k, n;
  bool product, transposes;
  CsrMatrix<T> a, b;
  T beta;
  Sums<T> model;

  Operation(Random& random, bool product, bool transposes)
      : m(random.between(1, 12)),
        k(random.between(1, 12)),
        n(columns_of(random, product && !transposes)),
        product(product),
        transposes(transposes),
        a(random_matrix<T>(random, m, product ? k : n)),
        b(product      ? random_matrix<T>(random, transposes ? m : k, n)
          : transposes ? random_matrix<T>(random, n, m)
                       : random_matrix<T>(random, m, n)),
        beta(random_value<T>(random, Values::plain)) {
    model.rows.resize(rows());
    const Rows<T> left = product && transposes ? transposed(a.rows, k) : a.rows;
    const Rows<T> right = !product && transposes ? transposed(b.rows, m) : b.rows;
    for (int i = 0; i < rows(); ++i) {
      for (const auto& entry : left[i])
        if (product)
          for (const auto& other : right[entry.column])
            model.term(i, other.column, multiply(entry.value, other.value));
        else
          model.term(i, entry.column, entry.value);
      if (!product)
        for (const auto& entry : right[i]) model.term(i, entry.column, multiply(beta, entry.value));
    }
  }
  // Few, now and then many: rows are sorted in other ways the farther they are spread.
  static int columns_of(Random& random, bool may_be_many) {
    const int few = random.between(1, 60);
    return may_be_many ? random.pick({few, few, few, 3000, 1000000}) : few;
  }
  int rows() const { return product && transposes ? k : m; }
  jex_int entries() const {
    jex_int count = 0;
    for (const auto& row : model.rows) count += row.size();
    return count;
  }
  jex_int run(jex_int job, T* c, jex_int* jc, jex_int* ic, jex_int room) {
    using R = Routines<T>;
    jex_int info = -7;
    if (product)
      (transposes ? R::multiply_tr : R::multiply)(&job, &m, &k, &n, a.values().data(), a.columns(),
                                                  a.begin(), b.values().data(), b.columns(),
                                                  b.begin(), c, jc, ic, &room, &info);
    else
      (transposes ? R::add_tr : R::add)(&job, &m, &n, a.values().data(), a.columns(), a.begin(),
                                        &beta, b.values().data(), b.columns(), b.begin(), c, jc, ic,
                                        &room, &info);
    return info;
  }
  void expect_rows(int last, const std::vector<T>& c, const std::vector<jex_int>& jc,
                   const std::vector<jex_int>& ic) const {
    ASSERT_EQ(ic[0], 1);
    size_t at = 0;
    for (int i = 0; i < last; ++i) {
      for (const auto& entry : model.rows[i]) {
        ASSERT_EQ(jc[at], entry.column + 1) << "row " << i;
        ASSERT_TRUE(same_bits(c[at], entry.value)) << "row " << i;
        ++at;
      }
      ASSERT_EQ(ic[i + 1], jex_int(at) + 1) << "row " << i;
    }
  }
};

TYPED_TEST(SparseSparse, IsTheDenseOne) {
  using T = TypeParam;
  for (const bool product : {false, true})
    for (const bool transposes : {false, true})
      for (const unsigned seed : case_seeds(40)) {
        Random random(seed);
        Operation<T> o(random, product, transposes);
        const jex_int count = o.entries();
        const std::string text = "JEX_CASE=" + std::to_string(seed) + (product ? " *" : " +") +
                                 (transposes ? " transposed" : "");
        Operand<jex_int> sizes(random, std::vector<jex_int>(o.rows() + 1));
        EXPECT_EQ(o.run(0, nullptr, nullptr, sizes.data(), -1), 0) << text;
        EXPECT_EQ(sizes.values().back() - 1, count) << text;

        for (const jex_int room : {count, count - random.between(1, count + 1)}) {
          Operand<T> c(random, std::vector<T>(std::max(room, 0)));
          Operand<jex_int> jc(random, std::vector<jex_int>(std::max(room, 0)));
          Operand<jex_int> ic(random, std::vector<jex_int>(o.rows() + 1));
          const jex_int info = o.run(1, c.data(), jc.data(), ic.data(), std::max(room, 0));
          int fits = 0;
          for (int sum = 0; fits < o.rows(); ++fits)
            if ((sum += o.model.rows[fits].size()) > std::max(room, 0)) break;
          EXPECT_EQ(info, fits == o.rows() ? 0 : fits + 1) << text;
          o.expect_rows(fits, c.values(), jc.values(), ic.values());
          if (testing::Test::HasFailure()) FAIL() << text << " room " << room << " of " << count;
        }
      }
}

TYPED_TEST(SparseSparse, RefusedScratchIsTold) {
  using T = TypeParam;
  for (const bool product : {false, true})
    for (const bool transposes : {false, true})
      for (const jex_int job : {0, 1}) {
        Random random(3);
        Operation<T> o(random, product, transposes);
        std::vector<T> c(o.entries());
        std::vector<jex_int> jc(o.entries()), ic(o.rows() + 1);
        const int requests = (transposes ? 4 : 1) + job;  // a whole result is sorted as well
        for (int fail = 1; fail <= requests + 1; ++fail) {
          xmalloc.fail_in = fail;
          const jex_int info = o.run(job, c.data(), jc.data(), ic.data(), o.entries());
          EXPECT_EQ(info, fail <= requests ? -1 : 0) << product << transposes << fail;
          EXPECT_EQ(xmalloc.fail_in, fail <= requests ? 0 : 1);
          xmalloc.fail_in = 0;
        }
        if (job) o.expect_rows(o.rows(), c, jc, ic);
      }
}

// No rows, or no columns: an empty result, from operands that need not exist.
TYPED_TEST(SparseSparse, SizesBelowOne) {
  using T = TypeParam;
  using R = Routines<T>;
  const jex_int one[] = {1}, empty[] = {1, 1, 1}, room = 0;
  const T beta = {};
  for (const jex_int job : {0, 1})
    for (const auto& [m, n] : {std::pair(0, 2), std::pair(-3, -3), std::pair(2, -5)})
      for (const bool transposes : {false, true}) {
        const jex_int* ia = m > 0 ? empty : one;
        jex_int ic[3] = {-9, -9, -9}, info = -7;
        (transposes ? R::add_tr : R::add)(&job, &m, &n, nullptr, nullptr, ia, &beta, nullptr,
                                          nullptr, transposes ? empty : ia, nullptr, nullptr, ic,
                                          &room, &info);
        EXPECT_EQ(info, 0);
        EXPECT_EQ(ic[0], 1);
        EXPECT_EQ(ic[1], m > 0 ? 1 : -9);
        info = -7;
        (transposes ? R::multiply_tr : R::multiply)(&job, &m, &m, &n, nullptr, nullptr, ia, nullptr,
                                                    nullptr, ia, nullptr, nullptr, ic, &room,
                                                    &info);
        EXPECT_EQ(info, 0);
      }
}

// --- conversions

struct Conversion {
  enum Format { bsr, coo, csc, dia, lower, upper, dense, formats };
  int format, m, n, lb, csr_base, base, lval;
  std::vector<double> values;
  std::vector<jex_int> first, second;
  jex_int count = 0;

  static constexpr jex_int unread = -1;

  // Of the triangles, and of the others with unsorted rows where the format keeps their order.
  Rows<double> rows(Random& random) const {
    Rows<double> rows(m);
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j)
        if (random.between(0, 3) == 0 && !(format == lower && j > i) && !(format == upper && j < i))
          rows[i].push_back(
              {j, random.between(0, 9) ? random_real<double>(random, Values::special) : 1.5});
    for (auto& row : rows) {
      for (auto& entry : row)
        if (entry.value == 0 || std::isnan(entry.value)) entry.value = 5e-324;
      if (format == coo && row.size() > 1) std::swap(row.front(), row.back());
    }
    return rows;
  }

  // Elements of the other side, once its sizes are known.
  void make_room() {
    const auto entries = [](const std::vector<jex_int>& p) { return p.back() - p.front(); };
    switch (format) {
      case bsr:
        values.assign(entries(second) * lb * lb, NAN);
        first.assign(entries(second), -9);
        break;
      case csc:
        values.assign(entries(second), NAN);
        first.assign(entries(second), -9);
        break;
      case coo:
        values.assign(count, NAN);
        first = second = std::vector<jex_int>(count, -9);
        break;
      case dia:
        values.assign(std::max(0, (count - 1) * lval + m), NAN);
        first.assign(count, -9);
        break;
      case lower:
      case upper:
        values.assign(entries(second), NAN);
        break;
      default:
        values.assign(base ? (n - 1) * lval + m : (m - 1) * lval + n, NAN);
    }
  }
  jex_int needed() const {
    return format == coo || format == dia ? count
           : format == dense              ? 0
                                          : second.back() - second.front();
  }

  // Either direction, with the arrays of the CSR side and the room on the side that is made.
  jex_int run(bool back, bool whole, double* a, jex_int* ja, jex_int* ia, jex_int room) {
    const jex_int job[] = {format == dense ? !back : back, csr_base, base, whole, format == upper};
    jex_int info = -7;
    switch (format) {
      case bsr:
        jex_spblas_jex_dcsrbsr(job, &m, &n, &lb, a, ja, ia, values.data(), first.data(),
                               second.data(), &room, &info);
        break;
      case coo:
        jex_spblas_jex_dcsrcoo(job, &m, a, ja, ia, &count, values.data(), first.data(),
                               second.data(), &room, &info);
        break;
      case csc:
        jex_spblas_jex_dcsrcsc(job, &m, &n, a, ja, ia, values.data(), first.data(), second.data(),
                               &room, &info);
        break;
      case dia: {
        if (!back && whole) count = room;
        jex_spblas_jex_dcsrdia(job, &m, &n, a, ja, ia, values.data(), &lval, first.data(), &count,
                               &room, &info);
        break;
      }
      case dense:
        jex_spblas_jex_ddnscsr(job, &m, &n, values.data(), &lval, a, ja, ia, &room, &info);
        break;
      default:
        jex_spblas_jex_dcsrsky(job, &m, a, ja, ia, values.data(), second.data(), &room, &info);
    }
    return info;
  }

  // Element (i, j) as the format tells it.
  double at(int i, int j) const {
    switch (format) {
      case bsr:
        for (int k = second[i / lb] - base; k < second[i / lb + 1] - base; ++k)
          if (first[k] - base == j / lb) return values[(k * lb + j % lb) * lb + i % lb];
        return 0;
      case coo:
        for (int k = 0; k < count; ++k)
          if (first[k] - base == i && second[k] - base == j) return values[k];
        return 0;
      case csc:
        for (int k = second[j] - base; k < second[j + 1] - base; ++k)
          if (first[k] - base == i) return values[k];
        return 0;
      case dia:
        for (int d = 0; d < count; ++d)
          if (first[d] == j - i) return values[d * lval + i];
        return 0;
      case lower:
      case upper: {
        if (format == upper) std::swap(i, j);
        const int k = second[i + 1] - base - 1 - (i - j);
        return j <= i && k >= second[i] - base ? values[k] : 0;
      }
      default:
        return base ? values[j * lval + i] : values[i * lval + j];
    }
  }
};

class Conversions : public Memory {};

// There, as the format tells it, and back bit for bit; sizes, too little room, refused scratch.
TEST_F(Conversions, GoThereAndBack) {
  for (int format = 0; format < Conversion::formats; ++format)
    for (const unsigned seed : case_seeds(40)) {
      Random random(seed);
      Conversion c{.format = format,
                   .m = random.between(1, 20),
                   .n = random.between(1, 20),
                   .lb = random.between(1, 12),
                   .csr_base = random.between(0, 1),
                   .base = random.between(0, 1),
                   .lval = 0,
                   .values = {},
                   .first = {},
                   .second = {}};
      const std::string text = "JEX_CASE=" + std::to_string(seed) + " format " +
                               std::to_string(format) + " lb=" + std::to_string(c.lb);
      if (format == Conversion::lower || format == Conversion::upper) c.n = c.m;
      c.lval = (format == Conversion::dense && !c.base ? c.n : c.m) + random.between(0, 2);
      CsrMatrix<double> a;
      a.base = c.csr_base;
      a.rows = c.rows(random);
      std::vector<double> values;
      std::vector<jex_int> columns, rows{c.csr_base};
      for (const auto& row : a.rows) {
        for (const auto& entry : row)
          values.push_back(entry.value), columns.push_back(entry.column + c.csr_base);
        rows.push_back(columns.size() + c.csr_base);
      }
      Operand<double> p(random, values);
      Operand<jex_int> ja(random, columns), ia(random, rows);

      const int lines = format == Conversion::bsr   ? (c.m + c.lb - 1) / c.lb
                        : format == Conversion::csc ? c.n
                                                    : c.m;
      c.second.assign(lines + 1, -9);
      if (format != Conversion::dense) {
        EXPECT_EQ(c.run(false, false, p.data(), ja.data(), ia.data(), -1), 0) << text;
      }
      const jex_int needed = c.needed();
      c.make_room();
      if (format == Conversion::bsr || format == Conversion::dia) {
        jex_serv_jex_thread_free_buffers();
        xmalloc.fail_in = 1;
        EXPECT_EQ(c.run(false, true, p.data(), ja.data(), ia.data(), needed), -1) << text;
        jex_serv_jex_thread_free_buffers();
        xmalloc.fail_in = 0;
      }
      if (needed > 0) {
        EXPECT_EQ(c.run(false, true, p.data(), ja.data(), ia.data(), needed - 1), needed) << text;
      }
      EXPECT_EQ(c.run(false, true, p.data(), ja.data(), ia.data(), needed), 0) << text;
      EXPECT_EQ(c.needed(), needed) << text;

      std::vector<double> there(c.m * c.n);
      for (int i = 0; i < c.m; ++i)
        for (const auto& entry : a.rows[i]) there[i * c.n + entry.column] = entry.value;
      for (int i = 0; i < c.m; ++i)
        for (int j = 0; j < c.n; ++j)
          ASSERT_TRUE(same_bits(c.at(i, j), there[i * c.n + j])) << text << " " << i << "," << j;

      const jex_int count = columns.size();
      Operand<double> back(random, std::vector<double>(count, NAN));
      Operand<jex_int> back_columns(random, std::vector<jex_int>(count, -9)),
          back_rows(random, std::vector<jex_int>(c.m + 1, -9));
      EXPECT_EQ(c.run(true, false, nullptr, nullptr, back_rows.data(), -1), 0) << text;
      EXPECT_EQ(back_rows.values(), rows) << text;
      if (count > 0) {
        EXPECT_EQ(c.run(true, true, back.data(), back_columns.data(), back_rows.data(), count - 1),
                  count)
            << text;
      }
      EXPECT_EQ(c.run(true, true, back.data(), back_columns.data(), back_rows.data(), count), 0)
          << text;
      EXPECT_EQ(back_rows.values(), rows) << text;
      EXPECT_EQ(back_columns.values(), columns) << text;
      EXPECT_EQ(first_difference(back.values(), values), "") << text;
      if (testing::Test::HasFailure()) return;
    }
}

}  // namespace
}  // namespace jex::test
