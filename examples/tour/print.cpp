#include <algorithm>
#include <cstdio>

#include "tour/results.h"
#include "tour/text.h"

namespace jex::tour {

const char* const unit_note =
    "error and bound in eps: against long double, in units of eps x condition x |value|, "
    "eps = 2^-52";

namespace {

// The rows of one table below each other; a column as wide as its longest cell, the first one and
// the last one on the left of theirs.
void print_table(const std::vector<std::vector<std::string>>& rows) {
  std::vector<int> widths(rows.front().size());
  for (const auto& row : rows)
    for (size_t k = 0; k < row.size(); ++k) widths[k] = std::max(widths[k], int(row[k].size()));
  for (const auto& row : rows) {
    std::printf("  %-*s", widths[0], row[0].c_str());
    for (size_t k = 1; k + 1 < row.size(); ++k) std::printf("  %*s", widths[k], row[k].c_str());
    std::printf("  %s\n", row.back().c_str());
  }
}

void print_facts(const std::vector<Fact>& facts) {
  std::vector<std::vector<std::string>> rows;
  rows.reserve(facts.size());
  for (const Fact& fact : facts) rows.push_back({fact.name, fact.text});
  if (!rows.empty()) print_table(rows);
}

void print_checks(const std::vector<Check>& checks) {
  std::vector<std::vector<std::string>> rows = {
      {"quantity", "value", "condition", "error", "bound", "unit", "check"}};
  bool in_eps = false;
  for (const Check& check : checks) {
    rows.push_back({check.quantity, check.value, text("%.3g", check.condition),
                    text("%.3g", check.error), text("%.3g", check.bound), check.unit,
                    check.holds() ? "holds" : "FAILS"});
    in_eps |= check.unit == "eps";
  }
  print_table(rows);
  if (in_eps) std::printf("  %s\n", unit_note);
}

}  // namespace

std::string in_words(const Rate& rate) {
  const char* const format = rate.value < 1000 ? "%.3g %s, %s" : "%.0f %s, %s";
  return text(format, rate.value, rate.unit.c_str(), rate.what.c_str());
}

std::vector<Fact> outcome_of(const Report& report) {
  std::vector<Fact> facts = report.findings;
  for (const Rate& rate : report.rates) facts.push_back({"rate", in_words(rate)});
  return facts;
}

void print(const Result& result) {
  const Report& report = result.report;
  std::printf("%s: %s\n\n", result.family.name, result.family.title);
  print_facts(report.problem);
  std::printf("\n");
  print_checks(report.checks);
  std::printf("\n");
  print_facts(outcome_of(report));
  std::printf("\n");
}

void print_summary(std::span<const Result> results) {
  std::vector<std::vector<std::string>> rows = {{"family", "checks hold", "seconds", "rate"}};
  for (const Result& result : results)
    rows.push_back({result.family.name,
                    text("%zu of %zu", result.held(), result.report.checks.size()),
                    text("%.2f", result.seconds),
                    result.report.rates.empty() ? "-" : in_words(result.report.rates.front())});
  print_table(rows);
}

}  // namespace jex::tour
