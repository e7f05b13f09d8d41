#include "tour/series.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "tour/text.h"

namespace jex::tour {
namespace {

std::string_view trimmed(std::string_view s) {
  const size_t begin = s.find_first_not_of(" \t\r");
  if (begin == s.npos) return {};
  return s.substr(begin, s.find_last_not_of(" \t\r") - begin + 1);
}

// The fields of a line, without blanks round them and without their quotes; nothing for a line
// with unbalanced quotes.
std::optional<std::vector<std::string>> split(std::string_view line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"' && quoted && line.substr(i, 2) == "\"\"")
      fields.back() += line[i++];
    else if (line[i] == '"')
      quoted = !quoted;
    else if (line[i] == ',' && !quoted)
      fields.emplace_back();
    else
      fields.back() += line[i];
  }
  if (quoted) return {};
  for (std::string& field : fields) field = std::string(trimmed(field));
  return fields;
}

// Nothing for text that is no decimal number; infinity for a number that no double holds.
std::optional<double> number(std::string_view field) {
  if (field.starts_with('+')) {
    field.remove_prefix(1);
    if (field.starts_with('-')) return {};
  }
  double value = 0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
  if (error == std::errc::invalid_argument || end != field.data() + field.size()) return {};
  return error == std::errc() ? value : HUGE_VAL;
}

// The rows of a file with the line number of each, for messages.
struct Rows {
  std::string file, x_name = "abscissa", y_name = "value";
  std::vector<double> x, y;
  std::vector<int> lines;
  int last_line = 1;

  void add(std::string_view line, int at);
  double step() const;
};

void Rows::add(std::string_view line, int at) {
  if (line.find('\0') != line.npos) fail(file, at, "a zero byte: this is no plain text");
  const auto fields = split(line);
  if (!fields) fail(file, at, "a quote is not closed");
  if (fields->size() != 2) fail(file, at, text("%zu column(s) instead of 2", fields->size()));
  const std::optional<double> numbers[] = {number((*fields)[0]), number((*fields)[1])};
  const bool header = lines.empty() && !numbers[0] && !numbers[1];
  for (int k = 0; k < 2; ++k) {
    const std::string shown = printable((*fields)[k]);
    if (shown.empty()) fail(file, at, text("column %d is empty", k + 1));
    if (header) {
      (k ? y_name : x_name) = shown;
      continue;
    }
    if (!numbers[k]) fail(file, at, "'" + shown + "' is not a number");
    if (!(std::fabs(*numbers[k]) <= largest_magnitude))
      fail(file, at, "'" + shown + "' is out of range: finite numbers up to 1e150");
    (k ? y : x).push_back(*numbers[k]);
  }
  if (!header) lines.push_back(at);
}

// The mean step, once each is found close to the median one.
double Rows::step() const {
  const size_t n = x.size();
  std::vector<double> steps(n - 1);
  for (size_t i = 0; i + 1 < n; ++i) steps[i] = x[i + 1] - x[i];
  std::vector<double> sorted = steps;
  std::nth_element(sorted.begin(), sorted.begin() + n / 2 - 1, sorted.end());
  const double median = sorted[n / 2 - 1];
  if (!(median >= smallest_step)) fail(file, lines[1], "the abscissa does not increase");
  for (size_t i = 0; i + 1 < n; ++i)
    if (!(std::fabs(steps[i] - median) <= 0.02 * median))
      fail(file, lines[i + 1],
           text("unequal steps: the abscissa goes from %.10g to %.10g, elsewhere by %.10g", x[i],
                x[i + 1], median));
  return (x[n - 1] - x[0]) / (n - 1);
}

Rows read_rows(const std::string& path) {
  Rows rows;
  rows.file = path;
  const std::string content = content_of(path);
  std::string_view rest = content;
  if (rest.starts_with("\xef\xbb\xbf")) rest.remove_prefix(3);
  bool header_seen = false;
  for (int line = 1; !rest.empty(); ++line) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view row = trimmed(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (row.empty()) continue;
    rows.last_line = line;
    rows.add(row, line);
    if (rows.lines.empty() && header_seen) fail(path, line, "a second header line");
    header_seen = true;
    if (rows.x.size() > most_values) fail(path, line, text("more than %zu values", most_values));
  }
  return rows;
}

}  // namespace

Series read_series(const std::string& path) {
  Rows rows = read_rows(path);
  if (rows.x.size() < fewest_values)
    fail(path, rows.last_line,
         text("%zu value(s), at least %zu are needed", rows.x.size(), fewest_values));
  const double step = rows.step();
  const auto [least, greatest] = std::minmax_element(rows.y.begin(), rows.y.end());
  if (*least == *greatest) fail(path, rows.last_line, "all values are equal: there is no period");
  if (*greatest - *least < smallest_spread)
    fail(path, rows.last_line, "the values differ by less than 1e-140");
  return {path, rows.x_name, rows.y_name, rows.x[0], step, std::move(rows.y)};
}

svg::Panel plot_of(const Series& series) {
  svg::Panel panel{series.y_name, series.x_name, series.y_name};
  panel.curves = {{"series", series.first, series.step, series.values}};
  return panel;
}

std::string sunspots_file() { return data_file("sunspots.csv"); }

}  // namespace jex::tour
