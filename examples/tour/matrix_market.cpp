#include "tour/matrix_market.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "tour/input.h"
#include "tour/text.h"

namespace jex::tour {
namespace {

constexpr int most_rows = 1000000;

struct Entry {
  jex_int row, column;
  double value;
};

std::vector<std::string> words_of(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// The lines of a file that are neither empty nor comments, and their numbers.
class Lines {
 public:
  explicit Lines(const std::string& path) : path_(path), stream_(content_of(path)) {}

  bool next(std::vector<std::string>& words) {
    for (std::string line; std::getline(stream_, line);) {
      ++number_;
      words = words_of(line);
      if (!words.empty() && words[0][0] != '%') return true;
    }
    return false;
  }
  std::string first() {
    std::string line;
    std::getline(stream_, line);
    ++number_;
    return line;
  }
  [[noreturn]] void refuse(const std::string& what) const {
    fail(path_, std::max(number_, 1), what);
  }

  template <class Number>
  Number number(const std::string& word) const {
    Number value{};
    const char* const end = word.data() + word.size();
    const auto result = std::from_chars(word.data() + (word[0] == '+'), end, value);
    if (result.ec != std::errc() || result.ptr != end)
      refuse(text("'%s' is not a number that fits", printable(word, 40).c_str()));
    return value;
  }

 private:
  std::string path_;
  std::istringstream stream_;
  int number_ = 0;
};

struct Header {
  bool pattern;
  Symmetry symmetry;
};

Header read_header(Lines& lines) {
  std::string first = lines.first();
  std::transform(first.begin(), first.end(), first.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  const auto words = words_of(first);
  if (words.size() != 5 || words[0] != "%%matrixmarket" || words[1] != "matrix")
    lines.refuse("no Matrix Market header");
  if (words[2] != "coordinate") lines.refuse("the matrix is not stored by coordinates");
  const bool pattern = words[3] == "pattern";
  if (!pattern && words[3] != "real" && words[3] != "integer")
    lines.refuse(text("the elements are not real: %s", printable(words[3], 40).c_str()));
  if (words[4] == "general") return {pattern, Symmetry::general};
  if (words[4] == "symmetric") return {pattern, Symmetry::symmetric};
  if (words[4] == "skew-symmetric" && !pattern) return {pattern, Symmetry::skew};
  lines.refuse(text("a symmetry that is not known: %s", printable(words[4], 40).c_str()));
}

Entry read_entry(const Lines& lines, const std::vector<std::string>& words, const Header& header,
                 const SparseMatrix& a) {
  if (words.size() != (header.pattern ? 2u : 3u)) lines.refuse("not an entry");
  const Entry entry = {lines.number<jex_int>(words[0]), lines.number<jex_int>(words[1]),
                       header.pattern ? 1.0 : lines.number<double>(words[2])};
  if (entry.row < 1 || entry.row > a.m || entry.column < 1 || entry.column > a.n)
    lines.refuse("an entry outside the matrix");
  if (!(std::fabs(entry.value) < 1e100)) lines.refuse("a value out of range");
  if (header.symmetry != Symmetry::general && entry.column > entry.row)
    lines.refuse("an entry above the diagonal");
  if (header.symmetry == Symmetry::skew && entry.column == entry.row)
    lines.refuse("an entry on the diagonal of a skew-symmetric matrix");
  return entry;
}

void compress(std::vector<Entry>& entries, SparseMatrix& a) {
  std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return std::pair(a.row, a.column) < std::pair(b.row, b.column);
  });
  a.rows.assign(a.m + 1, 1);
  jex_int row = 0;
  for (const Entry& entry : entries) {
    if (row == entry.row && a.columns.back() == entry.column) {
      a.values.back() += entry.value;
      continue;
    }
    row = entry.row;
    a.columns.push_back(entry.column);
    a.values.push_back(entry.value);
    a.rows[row] = a.columns.size() + 1;
  }
  for (jex_int i = 0; i < a.m; ++i) a.rows[i + 1] = std::max(a.rows[i], a.rows[i + 1]);
}

}  // namespace

SparseMatrix read_matrix(const std::string& path) {
  Lines lines(path);
  const Header header = read_header(lines);
  SparseMatrix a;
  a.file = path;
  a.symmetry = header.symmetry;
  std::vector<std::string> words;
  if (!lines.next(words) || words.size() != 3) lines.refuse("no line of sizes");
  a.m = lines.number<jex_int>(words[0]), a.n = lines.number<jex_int>(words[1]);
  const jex_int count = lines.number<jex_int>(words[2]);
  if (a.m < 1 || a.n < 1 || a.m > most_rows || a.n > most_rows || count < 1)
    lines.refuse(text("sizes out of range: 1 to %d rows and columns, an entry or more", most_rows));
  if (header.symmetry != Symmetry::general && a.m != a.n) lines.refuse("not a square matrix");
  std::vector<Entry> entries;
  while (lines.next(words)) {
    if (jex_int(entries.size()) == count) lines.refuse("more entries than announced");
    entries.push_back(read_entry(lines, words, header, a));
  }
  if (jex_int(entries.size()) != count) lines.refuse("fewer entries than announced");
  compress(entries, a);
  return a;
}

}  // namespace jex::tour
