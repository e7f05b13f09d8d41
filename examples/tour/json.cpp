#include "tour/results.h"
#include "tour/text.h"

namespace jex::tour {
namespace {

std::string quoted(const std::string& raw) {
  std::string result = "\"";
  for (const char c : raw) {
    if (c == '"' || c == '\\') result += '\\';
    if (static_cast<unsigned char>(c) < 0x20)
      result += text("\\u%04x", c);
    else
      result += c;
  }
  return result + '"';
}

// JSON has no number that is not finite.
std::string number(double value) { return std::isfinite(value) ? text("%.17g", value) : "null"; }

// [element, element, ..], one a line.
template <class T, class Element>
std::string list(const T& items, const char* indent, Element element) {
  std::string out = "[";
  const char* separator = "";
  for (const auto& item : items) {
    out += separator + std::string(indent) + element(item);
    separator = ",";
  }
  return out + "]";
}

std::string of(const Fact& fact) {
  return "{\"name\": " + quoted(fact.name) + ", \"text\": " + quoted(fact.text) + "}";
}

std::string of(const Check& check) {
  return "{\"quantity\": " + quoted(check.quantity) + ", \"value\": " + quoted(check.value) +
         ", \"condition\": " + number(check.condition) + ", \"error\": " + number(check.error) +
         ", \"bound\": " + number(check.bound) + ", \"unit\": " + quoted(check.unit) +
         ", \"holds\": " + (check.holds() ? "true" : "false") + "}";
}

std::string of(const Rate& rate) {
  return "{\"what\": " + quoted(rate.what) + ", \"value\": " + number(rate.value) +
         ", \"unit\": " + quoted(rate.unit) + "}";
}

std::string of(const Picture& picture) { return quoted(picture.file); }

std::string of(const Result& result) {
  const auto part = [](const char* name, const auto& items) {
    return text(",\n     \"%s\": ", name) +
           list(items, "\n      ", [](const auto& item) { return of(item); });
  };
  const Report& report = result.report;
  return "{\"family\": " + quoted(result.family.name) +
         ", \"title\": " + quoted(result.family.title) +
         ", \"seconds\": " + number(result.seconds) + part("problem", report.problem) +
         part("checks", report.checks) + part("findings", report.findings) +
         part("rates", report.rates) + part("pictures", report.pictures) + "}";
}

}  // namespace

std::string json(std::span<const Result> results) {
  return text("{\n  \"threads\": %d,\n  \"families\": ", jex_get_num_threads()) +
         list(results, "\n    ", [](const Result& result) { return of(result); }) + "\n}\n";
}

}  // namespace jex::tour
