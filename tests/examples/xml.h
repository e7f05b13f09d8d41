// A small check that a document is well-formed XML, for the subset that plots use: a declaration,
// elements, attributes and text, without comments, CDATA or a document type.
#pragma once

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

namespace jex::test {

inline bool well_formed(const std::string& document) {
  static const std::regex tag(R"(<(/?)([A-Za-z][\w.-]*)((\s+[\w:-]+="[^"<]*")*)\s*(/?)>)");
  static const std::regex reference("&(?!(amp|lt|gt|quot|apos);)");
  size_t at = document.starts_with("<?xml ") ? document.find("?>") : 0;
  if (at == document.npos || std::regex_search(document, reference)) return false;
  if (at) at += 2;
  std::vector<std::string> open;
  bool root_seen = false;
  while (at < document.size()) {
    if (document[at] != '<') {
      const bool blank = document.find_first_not_of(" \n", at) >= document.find('<', at);
      if (open.empty() && !blank) return false;
      at = std::min(document.find('<', at), document.size());
      continue;
    }
    // Long attributes overflow the stack of a recursive matcher: only the tag's frame is matched.
    const size_t end = document.find('>', at);
    if (end == document.npos) return false;
    std::string element = document.substr(at, end + 1 - at);
    if (const size_t points = element.find("points=\""); points != element.npos) {
      const size_t close = element.find('"', points + 8);
      if (close == element.npos) return false;
      element.erase(points + 8, close - points - 8);
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
