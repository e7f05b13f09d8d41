// A run as a page of tables: what machine it was, a line for each family, all ratios, what we lose.
#include <algorithm>
#include <cmath>
#include <ctime>
#include <fstream>
#include <map>
#include <sstream>

#include "results.h"

namespace jex::bench {
namespace {

/// "dgemm/200/NN" -> routine and variant "dgemm NN", size "200".
struct Place {
  std::string line, size;

  explicit Place(const std::string& name) {
    std::istringstream parts(name);
    std::getline(parts, line, '/');
    std::getline(parts, size, '/');
    for (std::string more; std::getline(parts, more, '/');) line += ' ' + more;
  }
};

double ratio_of(const Row& row) {
  const auto* peer = row.best();
  return peer && row.our_time() > 0 ? peer->second.time.peer / row.our_time() : 0;
}

std::string number(double value, const char* format = "%.2f") {
  char text[32];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

/// "1.23 (4.5)": ratio, and 1e9 operations a second, or bytes where nothing is computed.
std::string cell(const Row& row) {
  const double time = row.our_time(),
               work = row.c->work.flops > 0 ? row.c->work.flops : row.c->work.bytes();
  if (time == 0) return "";
  const double ratio = ratio_of(row), rate = work / time / 1e9;
  std::string text = ratio > 0 ? number(ratio) : "-";
  if (work > 0) text += " (" + number(rate, rate < 10 ? "%.1f" : "%.0f") + ")";
  return text;
}

using Texts = std::vector<std::string>;

void remember(Texts& texts, const std::string& text) {
  if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
}

void print_line(FILE* file, const std::string& head, const Texts& cells) {
  std::fprintf(file, "| %s |", head.c_str());
  for (const std::string& text : cells) std::fprintf(file, " %s |", text.c_str());
  std::fprintf(file, "\n");
}

/// Sizes are columns where they are few, else lines.
void print_family(FILE* file, const std::string& family, const std::vector<const Row*>& rows) {
  Texts lines, sizes;
  std::map<std::pair<std::string, std::string>, std::string> cells;
  for (const Row* row : rows) {
    const Place place(row->c->name);
    remember(lines, place.line);
    remember(sizes, place.size);
    cells[{place.line, place.size}] = cell(*row);
  }
  const bool is_upright = sizes.size() <= lines.size();
  const Texts &heads = is_upright ? lines : sizes, &columns = is_upright ? sizes : lines;
  std::fprintf(file, "\n## %s\n\n", family.c_str());
  print_line(file, "", columns);
  print_line(file, "---", Texts(columns.size(), "---"));
  for (const std::string& head : heads) {
    Texts texts;
    for (const std::string& column : columns)
      texts.push_back(is_upright ? cells[{head, column}] : cells[{column, head}]);
    print_line(file, head, texts);
  }
}

std::string processor_family() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);)
    if (line.starts_with("cpu family")) return line.substr(line.find(':') + 2);
  return "unknown";
}

void print_machine(FILE* file, const Limits& limits) {
  char date[20];
  const std::time_t now = std::time(nullptr);
  std::strftime(date, sizeof date, "%Y-%m-%d", std::localtime(&now));
  std::fprintf(
      file,
      "# Measurements\n\nMade by `jex-bench --markdown` on %s, on one core of a processor of "
      "family %s; one thread, 32-bit programs,\nall sides held to SSE2 and SSE3. Peak with "
      "128-bit registers: %.1f GFLOP/s double, %.1f single. GB/s reading and\ncopying:",
      date, processor_family().c_str(), limits.peak_double / 1e9, limits.peak_single / 1e9);
  const char* separator = "";
  for (const MemoryLevel& level : limits.levels) {
    std::fprintf(file, "%s %s", separator, level.name.c_str());
    separator = ";";
    if (std::isfinite(level.size)) std::fprintf(file, " (%.0f KiB)", level.size / 1024);
    std::fprintf(file, " %.0f, %.0f", level.read / 1e9, level.copy / 1e9);
  }
  std::fprintf(file,
               ".\n\nEach cell is the ratio of the best peer's time to ours, above 1 where we are "
               "faster, both timed in turn in one\nprocess; in brackets our rate, 1e9 operations a "
               "second, or bytes where nothing is computed.\n");
}

}  // namespace

void write_markdown(const Results& results, FILE* file) {
  Texts names;
  std::map<std::string, std::vector<const Row*>> families;
  std::vector<const Row*> lost;
  for (const Row& row : results.rows) {
    remember(names, row.c->family);
    families[row.c->family].push_back(&row);
    if (const double ratio = ratio_of(row); ratio > 0 && ratio < 0.95) lost.push_back(&row);
  }
  print_machine(file, results.limits);
  std::fprintf(file,
               "\n| family | cases | ratio, geometric mean | at 1.0 or above | lowest |\n"
               "|---|---|---|---|---|\n");
  for (const std::string& name : names) {
    double sum = 0;
    int compared = 0, won = 0;
    const Row* lowest = nullptr;
    for (const Row* row : families[name]) {
      const double ratio = ratio_of(*row);
      if (!(ratio > 0)) continue;
      sum += std::log(ratio);
      ++compared;
      won += ratio >= 1;
      if (!lowest || ratio < ratio_of(*lowest)) lowest = row;
    }
    if (!lowest) continue;
    std::fprintf(file, "| %s | %d | %.2f | %d %% | %.2f, %s |\n", name.c_str(), compared,
                 std::exp(sum / compared), won * 100 / compared, ratio_of(*lowest),
                 lowest->c->name.c_str());
  }
  for (const std::string& name : names) print_family(file, name, families[name]);
  std::sort(lost.begin(), lost.end(),
            [](const Row* a, const Row* b) { return ratio_of(*a) < ratio_of(*b); });
  std::fprintf(file, "\n## Below 0.95\n\n");
  for (const Row* row : lost)
    std::fprintf(file, "- %s: %.2f to %s\n", row->c->name.c_str(), ratio_of(*row),
                 row->best()->first.c_str());
}

}  // namespace jex::bench
