// One matrix in CSR, COO and DIA storage through the users' entries: the same product and the same
// solution for every descriptor and operation; large ones in pieces; malformed input.

#include "core_front/sparse_entries.h"
#include "spblas/dia_matrix.h"

#include <functional>
#include <limits.h>

namespace jex::test {
namespace {

// The diagonals of a matrix, and the same as rows and as a list, by a base.
template <class T>
struct Formats {
  DiaFormat<T> diagonals;
  CsrMatrix<T> rows;
  std::vector<jex_int> list_rows, list_columns;
  std::vector<T> list_values;
  jex_csr csr;
  jex_coo coo;
  jex_dia dia;

  Formats(Random& random, const KernelName& name, int m, int columns, int base, bool shuffle)
      : Formats(random, name, DiaFormat<T>(random, name, m, columns), base, shuffle) {}

  Formats(Random& random, const KernelName& name, DiaFormat<T> of, int base, bool shuffle)
      : diagonals(std::move(of)), rows(diagonals.rows()) {
    const int m = diagonals.m;
    rows.base = base;
    if (name.kind == 'h') make_diagonal_real();
    std::vector<std::pair<int, Entry<T>>> list;
    for (int i = 0; i < m; ++i)
      for (const auto& entry : rows.rows[i]) list.push_back({i, entry});
    rows = taken(std::move(rows), name);  // CSR products of two passes read what they ignore
    for (size_t k = list.size(); shuffle && k > 1; --k)
      std::swap(list[k - 1], list[random.between(0, k - 1)]);
    for (const auto& [i, entry] : list) {
      list_rows.push_back(i + base), list_columns.push_back(entry.column + base);
      list_values.push_back(entry.value);
    }
    rows.store(random);
    const int columns = diagonals.columns, count = diagonals.distances.size();
    csr = {m, columns, rows.values().data(), rows.columns(), rows.begin(), rows.end()};
    coo = {m,
           columns,
           list_values.data(),
           list_rows.data(),
           list_columns.data(),
           jex_int(list_values.size())};
    dia = {m, columns, diagonals.values.data(), diagonals.ld, diagonals.distances.data(), count};
  }

  void make_diagonal_real() {
    const auto real = [](T& a) {
      if constexpr (is_complex<T>) a.im = 0;
    };
    for (int i = 0; i < diagonals.m; ++i) {
      for (auto& entry : rows.rows[i])
        if (entry.column == i) real(entry.value);
      for (size_t d = 0; d < diagonals.distances.size(); ++d)
        if (diagonals.distances[d] == 0) real(diagonals.values[d * diagonals.ld + i]);
    }
  }
};

KernelName name_of(char type, char kind, char uplo, char diag, bool solve) {
  return KernelName(std::string("jex_spblas_") + type + "dia1" + kernel_letters(kind, uplo, diag) +
                    "f__" + (solve ? "svout_seq" : "mvout_par"));
}

// op(A) of the dense A, row after row.
std::vector<Exact> applied(char op, const std::vector<Exact>& a, int m, int columns) {
  std::vector<Exact> result(a.size());
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < columns; ++j) {
      const Exact value = a[i * columns + j];
      (op == 'N' ? result[i * columns + j] : result[j * m + i]) =
          op == 'C' ? std::conj(value) : value;
    }
  return result;
}

template <class T>
class FormatsFront : public testing::Test {};
TYPED_TEST_SUITE(FormatsFront, Element4);

template <class T>
void expect_agreement(unsigned seed, char kind, char uplo, char diag, char op, int base,
                      bool solve) {
  Random random(seed);
  const KernelName name = name_of(letter<T>, kind, uplo, diag, solve);
  const int m = random.between(1, 20), columns = kind == 'G' ? random.between(1, 20) : m;
  Formats<T> a(random, name, m, columns, base, true);
  const jex_sparse_descriptor descriptor = {kind, uplo, diag, base, 0};
  const CsrModel<T> model{name, a.rows};
  const auto matrix = applied(op, model.dense(columns, false), m, columns);
  const auto sizes = applied('N' == op ? 'N' : 'T', model.dense(columns, true), m, columns);
  const bool vector = random.between(0, 1), by_rows = !vector && base == 0;
  const int n = vector ? 1 : random.between(1, 9);
  const T alpha = solve ? number<T>(1) : random_value<T>(random, Values::plain);
  const T beta = number<T>(random.between(0, 1));
  const auto check = [&](const auto& storage) {
    using E = Entries<T, std::decay_t<decltype(storage)>>;
    DenseMatrix<T> x(random, op == 'N' ? columns : m, n, by_rows, vector ? 0 : 2);
    DenseMatrix<T> y(random, op == 'N' ? m : columns, n, by_rows, vector ? 0 : 1);
    T* const to = y.operand.data();
    const T* const from = x.operand.data();
    if (solve) {
      ASSERT_EQ(vector ? E::sv(op, &alpha, &storage, &descriptor, to, to)
                       : E::sm(op, n, &alpha, &storage, &descriptor, to, y.ld, to, y.ld),
                JEX_SPARSE_OK);
      return expect_solved(matrix, y, y.operand.values());
    }
    if (exact(beta) == Exact(0))
      for (int i = 0; i < y.rows; ++i)
        for (int j = 0; j < n; ++j) to[y.place(i, j)] = not_a_number<T>(), y.at(i, j) = T{};
    ASSERT_EQ(vector ? E::mv(op, &alpha, &storage, &descriptor, from, &beta, to)
                     : E::mm(op, n, &alpha, &storage, &descriptor, from, x.ld, &beta, to, y.ld),
              JEX_SPARSE_OK);
    expect_added(matrix, sizes, alpha, x, y, y.operand.values(), 2 * (m + columns));
  };
  check(a.csr);
  check(a.coo);
  if (base == 1) check(a.dia);
}

TYPED_TEST(FormatsFront, Agree) {
  for (const bool solve : {false, true})
    for_letters(solve, [&](const CallLetters& l) {
      if (l.kind == 'D' && l.diag == 'U' && l.base == 1) return;  // no such diagonals
      expect_agreement<TypeParam>(l.seed, l.kind, l.uplo, l.diag, l.op, l.base, solve);
    });
}

// Matrices for several pieces, in the order of the rows and in none: the bits are those of one
// thread, the values those of CSR.
TEST(FormatsFrontThreads, DoNotShowInTheBits) {
  using Z = jex_dcomplex;
  const int m = 45000;  // three pieces of diagonals
  for (const char kind : {'G', 'S', 'H', 'A', 'T', 'D'})
    for (const char uplo : {'L', 'U'})
      for (const char diag : {'N', 'U'}) {
        if ((kind == 'G' && uplo == 'U') || (diag == 'U' && kind != 'T' && kind != 'S')) continue;
        Random random(1);
        const KernelName name = name_of('z', kind, uplo, diag, false);
        const auto diagonals = [&] {
          Random random(2);
          DiaFormat<Z> a(random, name, 1, 1);
          a.m = a.columns = a.ld = m;
          a.distances = {-30000, -300, -200, -7, -1, 0, 1, 5, 300, 17000};
          a.fill(random, name);
          return a;
        };
        Formats<Z> sorted(random, name, diagonals(), 1, false);
        Formats<Z> mixed(random, name, diagonals(), 1, true);
        const jex_sparse_descriptor d = {kind, uplo, diag, 1, 1};
        const Z alpha = {0.75, 0.5}, beta = {1, 0};
        DenseMatrix<Z> x(random, m, 1, false, 0), y(random, m, 1, false, 0);
        for (const char op : {'N', 'T', 'C'}) {
          std::vector<Z> csr = y.model;
          jex_zcsrmv(op, &alpha, &sorted.csr, &d, x.model.data(), &beta, csr.data());
          const auto check = [&](const auto& storage) {
            std::vector<Z> results[2];
            for (const int threads : {1, 3}) {
              auto& result = results[threads > 1] = y.model;
              jex_set_num_threads(threads);
              EXPECT_EQ((Entries<Z, std::decay_t<decltype(storage)>>::mv(
                            op, &alpha, &storage, &d, x.model.data(), &beta, result.data())),
                        JEX_SPARSE_OK);
              EXPECT_EQ(first_difference(result, results[0]), "") << threads << " threads";
            }
            for (int i = 0; i < m; ++i)
              if (!(size_of(exact(results[0][i]) - exact(csr[i])) <= 1e-12)) {
                ADD_FAILURE() << "row " << i;
                break;
              }
          };
          check(sorted.coo);
          check(mixed.coo);
          check(sorted.dia);
          ASSERT_FALSE(testing::Test::HasFailure()) << kind << uplo << diag << op;
        }
      }
  jex_set_num_threads(0);
}

using D = jex_sparse_descriptor;
using V = std::vector<jex_int>;

// One thing wrong at a time, in a solve with 2 1 . 2 . . 2 or with 2 1 . on its diagonals.
TEST(FormatsFrontChecks, NameWhatIsWrongWithAList) {
  const struct {
    const char* what;
    jex_int status;
    std::function<void(D&, jex_coo&, V& rows, V& columns)> spoil;
  } table[] = {
      {"nothing", JEX_SPARSE_OK, [](D&, jex_coo&, V&, V&) {}},
      {"kind", JEX_SPARSE_WRONG_DESCRIPTOR, [](D& d, jex_coo&, V&, V&) { d.kind = 'Q'; }},
      {"kind to solve", JEX_SPARSE_WRONG_SIZE, [](D& d, jex_coo&, V&, V&) { d.kind = 'G'; }},
      {"square", JEX_SPARSE_WRONG_SIZE, [](D&, jex_coo& a, V&, V&) { a.n = 4; }},
      {"count", JEX_SPARSE_WRONG_SIZE, [](D&, jex_coo& a, V&, V&) { a.count = -1; }},
      {"rows", JEX_SPARSE_NULL_ARGUMENT, [](D&, jex_coo& a, V&, V&) { a.rows = 0; }},
      {"columns", JEX_SPARSE_NULL_ARGUMENT, [](D&, jex_coo& a, V&, V&) { a.columns = 0; }},
      {"values", JEX_SPARSE_NULL_ARGUMENT, [](D&, jex_coo& a, V&, V&) { a.values = 0; }},
      {"low row", JEX_SPARSE_WRONG_ROW, [](D&, jex_coo&, V& r, V&) { r[1] = 0; }},
      {"high row", JEX_SPARSE_WRONG_ROW, [](D&, jex_coo&, V& r, V&) { r[1] = 4; }},
      {"low column", JEX_SPARSE_WRONG_COLUMN, [](D&, jex_coo&, V&, V& c) { c[1] = 0; }},
      {"high column", JEX_SPARSE_WRONG_COLUMN, [](D&, jex_coo&, V&, V& c) { c[1] = INT_MIN; }},
      {"diagonal", JEX_SPARSE_MISSING_DIAGONAL, [](D&, jex_coo&, V&, V& c) { c[3] = 1; }},
  };
  for (const auto& bad : table) {
    std::vector<double> values = {2, 1, 2, 2}, y = {1, 2, 3};
    V rows = {1, 2, 2, 3}, columns = {1, 1, 2, 3};
    jex_coo a = {3, 3, values.data(), rows.data(), columns.data(), 4};
    D d = {'T', 'L', 'N', 1, 0};
    const double one = 1;
    bad.spoil(d, a, rows, columns);
    const jex_int status = jex_dcoosv('N', &one, &a, &d, y.data(), y.data());
    EXPECT_EQ(status, bad.status) << bad.what << ": " << jex_sparse_message(status);
    EXPECT_EQ(y == (std::vector<double>{1, 2, 3}), bad.status != JEX_SPARSE_OK) << bad.what;
    EXPECT_STRNE(jex_sparse_message(status), "unknown status");
  }
}

TEST(FormatsFrontChecks, NameWhatIsWrongWithDiagonals) {
  const struct {
    const char* what;
    jex_int status;
    std::function<void(D&, jex_dia&, V& distances)> spoil;
  } table[] = {
      {"nothing", JEX_SPARSE_OK, [](D&, jex_dia&, V&) {}},
      {"base", JEX_SPARSE_WRONG_DESCRIPTOR, [](D& d, jex_dia&, V&) { d.base = 0; }},
      {"kind to solve", JEX_SPARSE_WRONG_SIZE, [](D& d, jex_dia&, V&) { d.kind = 'A'; }},
      {"square", JEX_SPARSE_WRONG_SIZE, [](D&, jex_dia& a, V&) { a.n = 4; }},
      {"count", JEX_SPARSE_WRONG_SIZE, [](D&, jex_dia& a, V&) { a.count = -1; }},
      {"ld", JEX_SPARSE_WRONG_LEADING_DIMENSION, [](D&, jex_dia& a, V&) { a.ld = 2; }},
      {"distances", JEX_SPARSE_NULL_ARGUMENT, [](D&, jex_dia& a, V&) { a.distances = 0; }},
      {"values", JEX_SPARSE_NULL_ARGUMENT, [](D&, jex_dia& a, V&) { a.values = 0; }},
      {"order", JEX_SPARSE_UNSORTED_DISTANCES,
       [](D&, jex_dia&, V& d) {
         d = {0, -1};
       }},
      {"twice", JEX_SPARSE_UNSORTED_DISTANCES,
       [](D&, jex_dia&, V& d) {
         d = {0, 0};
       }},
      {"diagonal", JEX_SPARSE_MISSING_DIAGONAL,
       [](D&, jex_dia&, V& d) {
         d = {-2, -1};
       }},
  };
  for (const auto& bad : table) {
    std::vector<double> values = {1, 1, 1, 2, 2, 2}, y = {1, 2, 3};
    V distances = {-1, 0};
    jex_dia a = {3, 3, values.data(), 3, distances.data(), 2};
    D d = {'T', 'L', 'N', 1, 0};
    const double one = 1;
    bad.spoil(d, a, distances);
    if (a.distances) a.distances = distances.data();
    const jex_int status = jex_ddiasv('N', &one, &a, &d, y.data(), y.data());
    EXPECT_EQ(status, bad.status) << bad.what << ": " << jex_sparse_message(status);
    EXPECT_EQ(y == (std::vector<double>{1, 2, 3}), bad.status != JEX_SPARSE_OK) << bad.what;
    EXPECT_STRNE(jex_sparse_message(status), "unknown status");
  }
}

}  // namespace
}  // namespace jex::test
