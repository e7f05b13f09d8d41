// A small check that a document is well-formed XML, for the subset that plots and pages use: a
// declaration or the document type of HTML, elements, attributes and text, without comments or
// CDATA.
#pragma once

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

namespace jex::test {

inline bool well_formed(const std::string& document) {
  static const std::regex tag(R"(<(/?)([A-Za-z][\w.-]*)((\s+[\w:-]+="")*)\s*(/?)>)");
  static const std::regex reference("&(?!(amp|lt|gt|quot|apos);)");
  const bool declared = document.starts_with("<?xml ") || document.starts_with("<!DOCTYPE html>");
  size_t at = declared ? document.find('>') + 1 : 0;
  if ((declared && at == 0) || std::regex_search(document, reference)) return false;
  std::vector<std::string> open;
  bool root_seen = false;
  while (at < document.size()) {
    if (document[at] != '<') {
      const bool blank = document.find_first_not_of(" \n", at) >= document.find('<', at);
      if (open.empty() && !blank) return false;
      at = std::min(document.find('<', at), document.size());
      continue;
    }
    const size_t end = document.find('>', at);
    if (end == document.npos) return false;
    // Long attributes overflow the stack of a recursive matcher: their values are left out.
    std::string element;
    bool in_value = false;
    for (size_t i = at; i <= end; ++i) {
      if (document[i] == '"') in_value = !in_value;
      if (in_value && document[i] == '<') return false;
      if (!in_value || document[i] == '"') element += document[i];
    }
    std::smatch match;
    if (!std::regex_match(element, match, tag)) return false;
    const bool closes = match[1].length(), empty = match[5].length();
    if (open.empty() && (closes || root_seen)) return false;
    root_seen = true;
    if (closes && (empty || match[3].length() || open.back() != match[2])) return false;
    if (closes)
      open.pop_back();
    else if (!empty)
      open.push_back(match[2]);
    at = end + 1;
  }
  return root_seen && open.empty();
}

}  // namespace jex::test
