// The users' conversions: round trips bit for bit, every format to every other, malformed input.

#include "spblas/csr_matrix.h"

#include <gtest/gtest.h>
#include <jex/sparse_formats.h>

#include <functional>

namespace jex::test {
namespace {

const std::string all_formats = "RCOBDLUF";

struct Owned : jex_sparse_matrix {
  Owned() : jex_sparse_matrix{} {}
  Owned(const Owned&) = delete;
  ~Owned() { jex_sparse_release(this); }
};

// Ascending columns, no zeros; empty rows and columns. Lower or upper triangles for skylines.
struct Source {
  std::vector<double> values;
  std::vector<jex_int> columns, rows;
  jex_sparse_matrix csr;

  Source(Random& random, char format) {
    const bool triangle = format == 'L' || format == 'U';
    const int m = random.between(0, 25), n = triangle ? m : random.between(0, 25);
    const int base = random.between(0, 1), density = random.pick({0, 1, 3, 10});
    rows.push_back(base);
    for (int i = 0; i < m; ++i) {
      for (int j = 0; j < n; ++j)
        if (random.between(0, 9) < density && !(format == 'L' && j > i) &&
            !(format == 'U' && j < i)) {
          const double value = random_real<double>(random, Values::special);
          values.push_back(value == 0 || std::isnan(value) ? -5e-324 : value);
          columns.push_back(j + base);
        }
      rows.push_back(columns.size() + base);
    }
    csr = {'r', base, m, n, 0, 0, 0, values.data(), columns.data(), rows.data()};
  }
  void expect_equal(const jex_sparse_matrix& other) const {
    ASSERT_EQ(other.format, 'R');
    ASSERT_EQ(other.m, csr.m);
    ASSERT_EQ(other.n, csr.n);
    ASSERT_EQ(other.count, jex_int(values.size()));
    for (size_t i = 0; i < rows.size(); ++i)
      ASSERT_EQ(other.pointers[i] - other.base, rows[i] - csr.base);
    for (size_t k = 0; k < values.size(); ++k) {
      ASSERT_EQ(other.indices[k] - other.base, columns[k] - csr.base);
      ASSERT_EQ(memcmp(&other.values[k], &values[k], 8), 0);
    }
  }
};

TEST(SparseFormats, RoundTripsBitForBit) {
  for (const char format : all_formats)
    for (const unsigned seed : case_seeds(60)) {
      Random random(seed);
      const Source source(random, format);
      const jex_int base = random.between(0, 1), block = random.between(1, 12);
      Owned there, back;
      const std::string text = std::string("JEX_CASE=") + std::to_string(seed) + " " + format;
      ASSERT_EQ(jex_dsparse_convert(&source.csr, tolower(format), base, block, &there),
                JEX_SPARSE_OK)
          << text;
      EXPECT_EQ(there.format, format);
      EXPECT_EQ(there.base, base);
      ASSERT_EQ(jex_dsparse_convert(&there, 'R', source.csr.base, 0, &back), JEX_SPARSE_OK) << text;
      EXPECT_EQ(back.base, source.csr.base);
      source.expect_equal(back);
      if (testing::Test::HasFailure()) FAIL() << text << " block " << block;
    }
}

// Every format to every other, by way of one that holds the lot.
TEST(SparseFormats, EveryFormatToEveryOther) {
  for (const char first : all_formats)
    for (const char second : all_formats)
      for (const unsigned seed : case_seeds(4)) {
        const bool skyline = second == 'L' || second == 'U';
        if (skyline && (first == 'L' || first == 'U') && first != second) continue;
        Random random(seed);
        const Source source(random, skyline ? second : first);
        Owned a, b, back;
        ASSERT_EQ(
            jex_dsparse_convert(&source.csr, first, random.between(0, 1), random.between(1, 5), &a),
            JEX_SPARSE_OK);
        ASSERT_EQ(jex_dsparse_convert(&a, second, random.between(0, 1), random.between(1, 5), &b),
                  JEX_SPARSE_OK);
        ASSERT_EQ(jex_dsparse_convert(&b, 'R', 1, 0, &back), JEX_SPARSE_OK);
        source.expect_equal(back);
        if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed << first << second;
      }
}

// One thing wrong at a time, on 3 x 3 matrices; the target stays as it was.
TEST(SparseFormats, NameWhatIsWrong) {
  using S = jex_sparse_matrix;
  struct Bad {
    const char* what;
    char format, target;
    jex_int status;
    std::function<void(S&)> spoil;
  };
  const Bad table[] = {
      {"nothing", 'R', 'C', JEX_SPARSE_OK, [](S&) {}},
      {"format", 'R', 'C', JEX_SPARSE_WRONG_DESCRIPTOR, [](S& a) { a.format = 'X'; }},
      {"target", 'R', 'Q', JEX_SPARSE_WRONG_DESCRIPTOR, [](S&) {}},
      {"base", 'R', 'C', JEX_SPARSE_WRONG_DESCRIPTOR, [](S& a) { a.base = 2; }},
      {"rows", 'R', 'C', JEX_SPARSE_WRONG_SIZE, [](S& a) { a.m = -1; }},
      {"columns", 'C', 'R', JEX_SPARSE_WRONG_SIZE, [](S& a) { a.n = -1; }},
      {"first", 'R', 'C', JEX_SPARSE_WRONG_ROW_POINTER, [](S& a) { a.pointers[0] = 1; }},
      {"order", 'C', 'R', JEX_SPARSE_WRONG_ROW_POINTER, [](S& a) { a.pointers[1] = 9; }},
      {"low", 'R', 'F', JEX_SPARSE_WRONG_COLUMN, [](S& a) { a.indices[1] = -1; }},
      {"high", 'C', 'F', JEX_SPARSE_WRONG_COLUMN, [](S& a) { a.indices[1] = 3; }},
      {"row", 'O', 'R', JEX_SPARSE_WRONG_COLUMN, [](S& a) { a.indices[2] = 3; }},
      {"column", 'O', 'R', JEX_SPARSE_WRONG_COLUMN, [](S& a) { a.pointers[2] = -1; }},
      {"count", 'O', 'R', JEX_SPARSE_WRONG_SIZE, [](S& a) { a.count = -1; }},
      {"values", 'R', 'C', JEX_SPARSE_NULL_ARGUMENT, [](S& a) { a.values = nullptr; }},
      {"pointers", 'R', 'C', JEX_SPARSE_NULL_ARGUMENT, [](S& a) { a.pointers = nullptr; }},
      {"block", 'B', 'R', JEX_SPARSE_WRONG_SIZE, [](S& a) { a.block = 0; }},
      {"new block", 'R', 'B', JEX_SPARSE_WRONG_SIZE, [](S&) {}},
      {"block column", 'B', 'R', JEX_SPARSE_WRONG_COLUMN, [](S& a) { a.indices[0] = 2; }},
      {"twice", 'D', 'R', JEX_SPARSE_WRONG_COLUMN, [](S& a) { a.indices[0] = a.indices[1]; }},
      {"far", 'D', 'R', JEX_SPARSE_WRONG_COLUMN, [](S& a) { a.indices[0] = -3; }},
      {"lval", 'D', 'R', JEX_SPARSE_WRONG_LEADING_DIMENSION, [](S& a) { a.ld = 2; }},
      {"ld", 'F', 'R', JEX_SPARSE_WRONG_LEADING_DIMENSION, [](S& a) { a.ld = 2; }},
      {"outside", 'R', 'U', JEX_SPARSE_WRONG_SIZE, [](S&) {}},
      {"square", 'R', 'L', JEX_SPARSE_WRONG_SIZE, [](S& a) { a.n = 4; }},
      {"line", 'L', 'R', JEX_SPARSE_WRONG_ROW_POINTER, [](S& a) { a.pointers[1] = 0; }},
      {"long line", 'L', 'R', JEX_SPARSE_WRONG_ROW_POINTER, [](S& a) { a.pointers[1] = 2; }},
  };
  std::vector<double> values = {2, 1, 2, 2};
  std::vector<jex_int> columns = {0, 0, 1, 2}, rows = {0, 1, 3, 4};
  const S csr = {'R', 0, 3, 3, 0, 0, 0, values.data(), columns.data(), rows.data()};
  for (const Bad& bad : table) {
    Owned whole, made;
    ASSERT_EQ(jex_dsparse_convert(&csr, bad.format, 0, 2, &whole), JEX_SPARSE_OK) << bad.what;
    S spoiled = whole;
    bad.spoil(spoiled);
    EXPECT_EQ(jex_dsparse_convert(&spoiled, bad.target, 0, 0, &made), bad.status) << bad.what;
    EXPECT_EQ(made.format != 0, bad.status == JEX_SPARSE_OK) << bad.what;
  }
  Owned made;
  EXPECT_EQ(jex_dsparse_convert(nullptr, 'R', 0, 0, &made), JEX_SPARSE_NULL_ARGUMENT);
  EXPECT_EQ(jex_dsparse_convert(&csr, 'C', 0, 0, nullptr), JEX_SPARSE_NULL_ARGUMENT);
  // Blocks that no address space holds.
  EXPECT_EQ(jex_dsparse_convert(&csr, 'B', 0, 1 << 20, &made), JEX_SPARSE_NO_MEMORY);
  jex_sparse_release(nullptr);
}

}  // namespace
}  // namespace jex::test
