// The users' BSR products against dense matrices, for every descriptor and operation; malformed
// input; any number of threads.

#include "core_front/sparse_entries.h"
#include "spblas/bsr_matrix.h"

namespace jex::test {
namespace {

template <class T>
class BsrFront : public testing::Test {};
TYPED_TEST_SUITE(BsrFront, Element4);

TYPED_TEST(BsrFront, Products) {
  using T = TypeParam;
  for (const char kind : {'G', 'S', 'A', 'T', 'D', 'H'})
    for (const char uplo : {'L', 'U'})
      for (const char diag : {'N', 'U'})
        for (const char op : {'N', 'T', 'c'})
          for (const int base : {0, 1})
            for (const unsigned seed : case_seeds(4)) {
              Random random(seed);
              const int m = random.between(1, 6), k = kind == 'G' ? random.between(1, 6) : m;
              BsrMatrix<T> a(random, random.between(1, 7), base, m, k);
              for (int i = 0; i < m && kind != 'G'; ++i) a.add(random, a.rows[i], i);
              a.store(random, true);
              const bool vector = random.between(0, 1);
              const int n = vector ? 1 : random.between(1, 4), more = vector ? 0 : 2;
              DenseMatrix<T> x(random, op == 'N' ? a.width() : a.height(), n, false, more);
              DenseMatrix<T> y(random, op == 'N' ? a.height() : a.width(), n, false, more);
              const T alpha = random_value<T>(random, Values::plain), beta = {};
              const auto before = y.operand.values();
              y.operand.data()[0] = not_a_number<T>();  // beta is zero
              const jex_sparse_descriptor d = {kind, uplo, diag, base, 0};
              const jex_bsr bsr = {m, k, a.lb, a.values().data(), a.numbers(), a.begin(), a.end()};
              const jex_int status =
                  vector ? Entries<T, jex_bsr>::mv(op, &alpha, &bsr, &d, x.operand.data(), &beta,
                                                   y.operand.data())
                         : Entries<T, jex_bsr>::mm(op, n, &alpha, &bsr, &d, x.operand.data(), x.ld,
                                                   &beta, y.operand.data(), y.ld);
              const bool there_is_none =
                  (kind == 'H' && is_complex<T>) || ((kind == 'S' || kind == 'H') && diag == 'U');
              ASSERT_EQ(status, there_is_none ? JEX_SPARSE_WRONG_DESCRIPTOR : JEX_SPARSE_OK);
              if (there_is_none) continue;
              for (int j = 0; j < n; ++j)
                for (int i = 0; i < y.rows; ++i) y.at(i, j) = T{};
              const bool unit = diag == 'U' && (kind == 'T' || kind == 'D');
              const char letter = kind == 'H' ? 's' : char(tolower(kind));
              const auto dense = [&](bool sizes) {
                return a.dense(letter, uplo, unit, char(toupper(op)), sizes);
              };
              // The diagonal blocks of symmetric matrices stand as they are under a transpose too.
              expect_sum(dense(false), dense(true), exact(alpha), x, y);
              if (testing::Test::HasFailure())
                FAIL() << "JEX_CASE=" << seed << " " << kind << uplo << diag << op << base;
            }
}

TEST(BsrFrontThreads, DoNotShowInTheBits) {
  Random random(1);
  const int m = 8000, side = 4, columns = 5;
  std::vector<double> values, x(m * side * columns), start(x.size()), results[3];
  std::vector<jex_int> numbers, rows{0};
  for (int i = 0; i < m; ++i, rows.push_back(numbers.size()))
    for (const int j : {i - 90, i - 1, i, i + 1, i + 90})
      if (j >= 0 && j < m) numbers.push_back(j);
  values.resize(numbers.size() * side * side);
  for (auto* v : {&values, &x, &start})
    for (auto& value : *v) value = random.real(-1, 1);
  const jex_bsr a = {m, m, side, values.data(), numbers.data(), rows.data(), rows.data() + 1};
  const double alpha = 0.75, beta = 0.5;
  for (const char kind : {'G', 'S', 'A', 'T'})
    for (const int n : {1, columns})
      for (int threads = 1; threads <= 3; ++threads) {
        auto& y = results[threads - 1] = start;
        const jex_sparse_descriptor d = {kind, 'L', 'N', 0, 0};
        jex_set_num_threads(threads);
        ASSERT_EQ(jex_dbsrmm('N', n, &alpha, &a, &d, x.data(), m * side, &beta, y.data(), m * side),
                  JEX_SPARSE_OK);
        EXPECT_EQ(first_difference(y, results[0]), "") << kind << n << threads;
      }
  jex_set_num_threads(0);
}

TEST(BsrFrontChecks, NameWhatIsWrong) {
  const double values[16] = {1}, one = 1;
  double y[4] = {1, 2, 3, 4};
  const jex_int numbers[] = {0, 1, 1}, rows[] = {0, 1, 2}, far[] = {0, 2}, back[] = {0, 2, 1};
  const jex_sparse_descriptor g = {'G', 0, 0, 0, 0}, bad_kind = {'Q', 0, 0, 0, 0};
  const jex_bsr good = {2, 2, 2, values, numbers, rows, rows + 1};
  const auto call = [&](auto spoil) {
    jex_bsr a = good;
    spoil(a);
    return jex_dbsrmv('N', &one, &a, &g, y, &one, y);
  };
  EXPECT_EQ(call([](jex_bsr& a) { a.block = 0; }), JEX_SPARSE_WRONG_SIZE);
  EXPECT_EQ(call([](jex_bsr& a) { a.m = -1; }), JEX_SPARSE_WRONG_SIZE);
  EXPECT_EQ(call([](jex_bsr& a) { a.block = 1 << 30; }), JEX_SPARSE_WRONG_SIZE);
  EXPECT_EQ(call([](jex_bsr& a) { a.row_end = nullptr; }), JEX_SPARSE_NULL_ARGUMENT);
  EXPECT_EQ(call([&](jex_bsr& a) { a.columns = far; }), JEX_SPARSE_WRONG_COLUMN);
  EXPECT_EQ(call([&](jex_bsr& a) { a.row_begin = back, a.row_end = back + 1; }),
            JEX_SPARSE_WRONG_ROW_POINTER);
  EXPECT_EQ(jex_dbsrmv('x', &one, &good, &g, y, &one, y), JEX_SPARSE_WRONG_OPERATION);
  EXPECT_EQ(jex_dbsrmv('N', &one, &good, &bad_kind, y, &one, y), JEX_SPARSE_WRONG_DESCRIPTOR);
  EXPECT_EQ(jex_dbsrmv('N', &one, &good, &g, nullptr, &one, y), JEX_SPARSE_NULL_ARGUMENT);
  EXPECT_EQ(jex_dbsrmm('N', 1, &one, &good, &g, y, 3, &one, y, 4),
            JEX_SPARSE_WRONG_LEADING_DIMENSION);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(y[i], i + 1);
}

}  // namespace
}  // namespace jex::test
