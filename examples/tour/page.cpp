#include "tour/results.h"
#include "tour/text.h"

namespace jex::tour {
namespace {

constexpr const char* style = R"(
body { font: 16px/1.45 sans-serif; color: #222; max-width: 62rem; margin: 2rem auto; padding: 0 1rem }
h1 { font-size: 1.7rem } h2 { font-size: 1.3rem; margin-top: 3rem; border-top: 1px solid #ccc; padding-top: 1rem }
table { border-collapse: collapse; margin: 1rem 0 }
th, td { text-align: left; vertical-align: top; padding: 0.2rem 1.2rem 0.2rem 0 }
thead th { border-bottom: 1px solid #888 } tbody th { font-weight: normal; color: #666 }
td.number, th.number { text-align: right; font-variant-numeric: tabular-nums }
.fails { color: #b00020; font-weight: bold }
.note { color: #666; font-size: 0.85rem }
figure { margin: 1rem 0 } svg { display: block; max-width: 100%; height: auto }
)";

std::string cell(const std::string& content, const char* kind = "") {
  return text("<td%s>", kind) + escaped(content) + "</td>";
}
std::string number_cell(const char* format, double value) {
  return cell(text(format, value), " class=\"number\"");
}

std::string verdict_cell(bool holds, const std::string& content) {
  return cell(content, holds ? "" : " class=\"fails\"");
}

std::string facts_table(const std::vector<Fact>& facts) {
  if (facts.empty()) return "";
  std::string out = "<table><tbody>\n";
  for (const Fact& fact : facts)
    out += "<tr><th>" + escaped(fact.name) + "</th>" + cell(fact.text) + "</tr>\n";
  return out + "</tbody></table>\n";
}

std::string checks_table(const std::vector<Check>& checks) {
  std::string out =
      "<table><thead><tr><th>quantity</th><th>value</th><th class=\"number\">condition</th>"
      "<th class=\"number\">error</th><th class=\"number\">bound</th><th>unit</th><th>check</th>"
      "</tr></thead><tbody>\n";
  for (const Check& check : checks)
    out += "<tr>" + cell(check.quantity) + cell(check.value) +
           number_cell("%.3g", check.condition) + number_cell("%.3g", check.error) +
           number_cell("%.3g", check.bound) + cell(check.unit) +
           verdict_cell(check.holds(), check.holds() ? "holds" : "fails") + "</tr>\n";
  return out + "</tbody></table>\n";
}

std::string summary_table(std::span<const Result> results) {
  std::string out =
      "<table><thead><tr><th>family</th><th>problem</th><th>checks hold</th><th class=\"number\">"
      "seconds</th><th>rate</th></tr></thead><tbody>\n";
  for (const Result& result : results) {
    const Report& report = result.report;
    out += text("<tr><td><a href=\"#%s\">%s</a></td>", result.family.name, result.family.name) +
           cell(result.family.title) +
           verdict_cell(result.held() == report.checks.size(),
                        text("%zu of %zu", result.held(), report.checks.size())) +
           number_cell("%.2f", result.seconds) +
           cell(report.rates.empty() ? "" : in_words(report.rates.front())) + "</tr>\n";
  }
  return out + "</tbody></table>\n";
}

// A picture as an element: without the declaration of a document of its own.
std::string figure(const Picture& picture) {
  return "<figure>" + picture.svg.substr(picture.svg.find("<svg")) + "</figure>\n";
}

std::string section(const Result& result) {
  const Report& report = result.report;
  std::string out = text("<h2 id=\"%s\">", result.family.name) + escaped(result.family.title) +
                    "</h2>\n" + facts_table(report.problem) + checks_table(report.checks);
  out += facts_table(outcome_of(report));
  for (const Picture& picture : report.pictures) out += figure(picture);
  return out;
}

}  // namespace

std::string page(std::span<const Result> results) {
  std::string out =
      "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n<head>\n"
      "<meta charset=\"utf-8\"/>\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
      "<title>jex-tour</title>\n<style>" +
      std::string(style) + "</style>\n</head>\n<body>\n<h1>The kernel families at work</h1>\n";
  out +=
      text("<p>%zu famil%s, %d thread%s.</p>\n", results.size(), results.size() == 1 ? "y" : "ies",
           jex_get_num_threads(), jex_get_num_threads() == 1 ? "" : "s");
  out += summary_table(results) + "<p class=\"note\">" + escaped(unit_note) + ".</p>\n";
  for (const Result& result : results) out += section(result);
  return out + "</body>\n</html>\n";
}

}  // namespace jex::tour
