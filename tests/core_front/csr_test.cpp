// The users' sparse entries against dense matrices in long double, for every descriptor and
// operation; malformed input; any number of threads.

#include "core_front/sparse_entries.h"
#include "spblas/csr_model.h"

#include <functional>

namespace jex::test {
namespace {

template <class T>
class CsrFront : public testing::Test {};
TYPED_TEST_SUITE(CsrFront, Element4);

// A random call. The user's letters become a kernel name for the generator and the dense matrix;
// the transposes of symmetric and skew matrices are taken on the dense one.
template <class T>
struct Call {
  jex_sparse_descriptor descriptor;
  char op;
  KernelName name;
  int m, columns, n;
  CsrMatrix<T> a;
  jex_csr csr;

  Call(Random& random, char op, char kind, char uplo, char diag, int base, bool solve)
      : descriptor{kind, uplo, diag, base, 0},
        op(op),
        name("jex_spblas_dcsr" + std::to_string(base) + kernel_letters(kind, uplo, diag) + "c__" +
             (solve ? "svout_seq" : "mvout_par")),
        m(random.between(1, 20)),
        columns(kind == 'G' ? random.between(1, 20) : m),
        n(random.between(1, 9)),
        a(solve ? sorted(random) : product_matrix<T>(random, name, m, columns)) {
    if (kind == 'H') make_diagonal_real(random);
    csr = {m, columns, a.values().data(), a.columns(), a.begin(), a.end()};
  }

  // A solve's rows ascend, unit diagonals included.
  CsrMatrix<T> sorted(Random& random) {
    auto matrix = solve_matrix<T>(random, name, m);
    for (auto& row : matrix.rows)
      std::sort(row.begin(), row.end(), [](auto& a, auto& b) { return a.column < b.column; });
    matrix.store(random);
    return matrix;
  }

  void make_diagonal_real(Random& random) {
    for (int i = 0; i < m; ++i)
      for (auto& entry : a.rows[i])
        if (entry.column == i) entry.value = number<T>(exact(entry.value).real());
    a.store(random);
  }

  int rows_of_result() const { return op == 'N' ? m : columns; }
  int rows_of_input() const { return op == 'N' ? columns : m; }
  // Element (i, j) of op(A), or the size of all that is added for it.
  Exact at(int i, int j, bool size) {
    if (dense_[size].empty()) dense_[size] = CsrModel<T>{name, a}.dense(columns, size);
    if (op != 'N') std::swap(i, j);
    const Exact value = dense_[size][i * columns + j];
    return op == 'C' && !size ? std::conj(value) : value;
  }

 private:
  std::vector<Exact> dense_[2];
};

template <class T, class Body>
void for_calls(bool solve, Body body) {
  for_letters(solve, [&](const CallLetters& l) {
    Random random(l.seed);
    Call<T> call(random, l.op, l.kind, l.uplo, l.diag, l.base, solve);
    body(random, call);
  });
}

// |got - alpha op(A) x - beta y| within rounding, element by element.
template <class T>
void expect_product(Call<T>& call, T alpha, DenseMatrix<T>& x, T beta, DenseMatrix<T>& y) {
  const auto after = y.operand.values();
  const bool clears = exact(beta) == Exact(0);
  for (int j = 0; j < y.columns; ++j)
    for (int i = 0; i < y.rows; ++i) {
      Exact sum = 0;
      long double size = 0;
      for (int k = 0; k < x.rows; ++k) {
        const Exact term = call.at(i, k, false) * exact(x.at(k, j));
        sum += term;
        size += size_of(call.at(i, k, true)) * size_of(exact(x.at(k, j)));
      }
      const Exact start = clears ? 0 : exact(beta) * exact(y.at(i, j));
      const long double error = size_of(exact(after[y.place(i, j)]) - exact(alpha) * sum - start);
      const long double bound = 8 * (x.rows + y.rows + 4) *
                                (long double)(std::numeric_limits<Real<T>>::epsilon()) *
                                (size_of(start) + size_of(exact(alpha)) * size);
      if (!(error <= bound)) FAIL() << i << "," << j << ": " << error << " of " << bound;
    }
}

TYPED_TEST(CsrFront, Products) {
  using T = TypeParam;
  for_calls<T>(false, [](Random& random, Call<T>& call) {
    const bool vector = random.between(0, 1), by_rows = !vector && call.descriptor.base == 0;
    const int n = vector ? 1 : call.n;
    DenseMatrix<T> x(random, call.rows_of_input(), n, by_rows, vector ? 0 : 2);
    DenseMatrix<T> y(random, call.rows_of_result(), n, by_rows, vector ? 0 : 1);
    const T alpha = random_value<T>(random, Values::plain);
    const T beta =
        random.pick({number<T>(0), number<T>(1), random_value<T>(random, Values::plain)});
    if (exact(beta) == Exact(0)) y.operand.data()[0] = not_a_number<T>();
    const jex_int status =
        vector ? Entries<T, jex_csr>::mv(call.op, &alpha, &call.csr, &call.descriptor,
                                         x.operand.data(), &beta, y.operand.data())
               : Entries<T, jex_csr>::mm(call.op, n, &alpha, &call.csr, &call.descriptor,
                                         x.operand.data(), x.ld, &beta, y.operand.data(), y.ld);
    ASSERT_EQ(status, JEX_SPARSE_OK);
    expect_product(call, alpha, x, beta, y);
  });
}

TYPED_TEST(CsrFront, Solves) {
  using T = TypeParam;
  for_calls<T>(true, [](Random& random, Call<T>& call) {
    const bool vector = random.between(0, 1), by_rows = !vector && call.descriptor.base == 0;
    const int n = vector ? 1 : call.n;
    DenseMatrix<T> b(random, call.m, n, by_rows, vector ? 0 : 2);
    DenseMatrix<T> c(random, call.m, n, by_rows, vector ? 0 : 1);
    const T alpha = number<T>(random.pick({1, 3}));
    const jex_int status =
        vector ? Entries<T, jex_csr>::sv(call.op, &alpha, &call.csr, &call.descriptor,
                                         b.operand.data(), c.operand.data())
               : Entries<T, jex_csr>::sm(call.op, n, &alpha, &call.csr, &call.descriptor,
                                         b.operand.data(), b.ld, c.operand.data(), c.ld);
    ASSERT_EQ(status, JEX_SPARSE_OK);
    const auto after = c.operand.values();
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < call.m; ++i) {
        Exact sum = -exact(alpha) * exact(b.at(i, j));
        long double size = size_of(sum);
        for (int k = 0; k < call.m; ++k) {
          const Exact x = exact(after[c.place(k, j)]);
          sum += call.at(i, k, false) * x;
          size += size_of(call.at(i, k, true)) * size_of(x);
        }
        if (!(size_of(sum) <=
              8 * (call.m + 8) * (long double)(std::numeric_limits<Real<T>>::epsilon()) * size))
          FAIL() << i << "," << j;
      }
  });
}

// A grid large enough for several pieces: the bits are those of one thread.
TEST(CsrFrontThreads, DoNotShowInTheBits) {
  const int m = 60000;
  Random random(1);
  std::vector<double> values;
  std::vector<jex_int> columns, rows{0};
  for (int i = 0; i < m; ++i, rows.push_back(columns.size()))
    for (const int j : {i - 300, i - 200, i - 7, i - 3, i - 2, i - 1, i, i + 1, i + 5, i + 300})
      if (j >= 0 && j < m)
        columns.push_back(j), values.push_back(random.real(-1, 1) + 3 * (j == i));
  const jex_csr a = {m, m, values.data(), columns.data(), rows.data(), rows.data() + 1};
  const double alpha = 0.75, beta = 0.5;
  const int n = 5;
  for (const char kind : {'G', 'S', 'A', 'T'})
    for (const bool many : {false, true}) {
      const jex_sparse_descriptor d = {kind, 'L', 'N', 0, 0};
      std::vector<double> x(m * n), start(m * n), results[3];
      for (auto& value : x) value = random.real(-1, 1);
      for (auto& value : start) value = random.real(-1, 1);
      for (int threads = 1; threads <= 3; ++threads) {
        auto& y = results[threads - 1] = start;
        jex_set_num_threads(threads);
        EXPECT_EQ(many ? jex_dcsrmm('N', n, &alpha, &a, &d, x.data(), n, &beta, y.data(), n)
                       : jex_dcsrmv('N', &alpha, &a, &d, x.data(), &beta, y.data()),
                  JEX_SPARSE_OK);
        if (kind == 'T') {
          EXPECT_EQ(jex_dcsrsm('N', n, &alpha, &a, &d, y.data(), n, y.data(), n), JEX_SPARSE_OK);
        }
        EXPECT_EQ(first_difference(y, results[0]), "") << kind << many << threads;
      }
    }
  jex_set_num_threads(0);
}

// One thing wrong at a time.
TEST(CsrFrontChecks, NameWhatIsWrong) {
  struct Bad {
    const char* what;
    jex_int status;
    std::function<void(jex_sparse_descriptor&, jex_csr&, std::vector<jex_int>&,
                       std::vector<jex_int>&, char&)>
        spoil;
  };
  using D = jex_sparse_descriptor;
  using V = std::vector<jex_int>;
  const Bad table[] = {
      {"nothing", JEX_SPARSE_OK, [](D&, jex_csr&, V&, V&, char&) {}},
      {"operation", JEX_SPARSE_WRONG_OPERATION, [](D&, jex_csr&, V&, V&, char& op) { op = 'X'; }},
      {"kind", JEX_SPARSE_WRONG_DESCRIPTOR, [](D& d, jex_csr&, V&, V&, char&) { d.kind = 'Q'; }},
      {"uplo", JEX_SPARSE_WRONG_DESCRIPTOR, [](D& d, jex_csr&, V&, V&, char&) { d.uplo = 0; }},
      {"diag", JEX_SPARSE_WRONG_DESCRIPTOR, [](D& d, jex_csr&, V&, V&, char&) { d.diag = 'x'; }},
      {"base", JEX_SPARSE_WRONG_DESCRIPTOR, [](D& d, jex_csr&, V&, V&, char&) { d.base = 2; }},
      {"kind to solve", JEX_SPARSE_WRONG_SIZE, [](D& d, jex_csr&, V&, V&, char&) { d.kind = 'S'; }},
      {"rows", JEX_SPARSE_WRONG_SIZE, [](D&, jex_csr& a, V&, V&, char&) { a.m = -1; }},
      {"square", JEX_SPARSE_WRONG_SIZE, [](D&, jex_csr& a, V&, V&, char&) { a.n = 4; }},
      {"pointer", JEX_SPARSE_NULL_ARGUMENT, [](D&, jex_csr& a, V&, V&, char&) { a.row_end = 0; }},
      {"row", JEX_SPARSE_WRONG_ROW_POINTER, [](D&, jex_csr&, V& r, V&, char&) { r[2] = 0; }},
      {"first", JEX_SPARSE_WRONG_ROW_POINTER, [](D&, jex_csr&, V& r, V&, char&) { r[1] = -1; }},
      {"low", JEX_SPARSE_WRONG_COLUMN, [](D&, jex_csr&, V&, V& c, char&) { c[1] = -1; }},
      {"high", JEX_SPARSE_WRONG_COLUMN, [](D&, jex_csr&, V&, V& c, char&) { c[2] = 3; }},
      {"order", JEX_SPARSE_UNSORTED_ROW, [](D&, jex_csr&, V&, V& c, char&) { c[1] = 1, c[2] = 0; }},
      {"diagonal", JEX_SPARSE_MISSING_DIAGONAL, [](D&, jex_csr&, V&, V& c, char&) { c[3] = 1; }},
  };
  for (const Bad& bad : table) {
    std::vector<double> values = {2, 1, 2, 2}, y = {1, 2, 3};
    V columns = {0, 0, 1, 2}, rows = {0, 1, 3, 4};
    jex_csr a = {3, 3, values.data(), columns.data(), rows.data(), rows.data() + 1};
    D d = {'T', 'L', 'N', 0, 0};
    char op = 'N';
    const double one = 1;
    bad.spoil(d, a, rows, columns, op);
    const jex_int status = jex_dcsrsv(op, &one, &a, &d, y.data(), y.data());
    EXPECT_EQ(status, bad.status) << bad.what << ": " << jex_sparse_message(status);
    EXPECT_EQ(y == (std::vector<double>{1, 2, 3}), bad.status != JEX_SPARSE_OK) << bad.what;
    EXPECT_STRNE(jex_sparse_message(status), "unknown status");
    if (std::string(bad.what) == "diagonal") {
      d.trusted = 1;
      EXPECT_EQ(jex_dcsrsv(op, &one, &a, &d, y.data(), y.data()), JEX_SPARSE_OK);
    }
  }
  const double one = 1;
  double c[4] = {};
  const jex_int none[] = {0, 0, 0};
  const jex_csr empty = {2, 2, nullptr, nullptr, none, none + 1};
  const D general = {'G', 0, 0, 0, 0};
  EXPECT_EQ(jex_dcsrmm('N', 2, &one, &empty, &general, c, 1, &one, c, 2),
            JEX_SPARSE_WRONG_LEADING_DIMENSION);
  EXPECT_EQ(jex_dcsrmm('N', -1, &one, &empty, &general, c, 2, &one, c, 2), JEX_SPARSE_WRONG_SIZE);
  EXPECT_EQ(jex_dcsrmv('N', &one, &empty, &general, c, nullptr, c), JEX_SPARSE_NULL_ARGUMENT);
  EXPECT_EQ(jex_dcsrmv('N', &one, nullptr, &general, c, &one, c), JEX_SPARSE_NULL_ARGUMENT);
  EXPECT_STREQ(jex_sparse_message(99), "unknown status");
}

}  // namespace
}  // namespace jex::test
