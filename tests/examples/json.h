// A small check that a document is well-formed JSON.
#pragma once

#include <regex>
#include <string>
#include <string_view>

namespace jex::test {

class JsonCheck {
 public:
  explicit JsonCheck(std::string_view document) : rest_(document) {}
  bool holds() { return value() && (skip_blanks(), rest_.empty()); }

 private:
  void skip_blanks() {
    const size_t begin = rest_.find_first_not_of(" \n\t\r");
    rest_.remove_prefix(begin == rest_.npos ? rest_.size() : begin);
  }
  bool take(char c) {
    skip_blanks();
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }
  bool string() {
    if (!take('"')) return false;
    for (size_t i = 0; i < rest_.size(); ++i) {
      if (static_cast<unsigned char>(rest_[i]) < 0x20) return false;
      if (rest_[i] == '"') return rest_.remove_prefix(i + 1), true;
      if (rest_[i] == '\\' && std::string_view("\"\\/bfnrtu").find(rest_[++i]) == rest_.npos)
        return false;
    }
    return false;
  }
  bool word() {
    static const std::regex form(R"((true|false|null|-?(0|[1-9]\d*)(\.\d+)?([eE][+-]?\d+)?)\b)");
    const std::string head(rest_.substr(0, 40));
    std::smatch match;
    if (!std::regex_search(head, match, form, std::regex_constants::match_continuous)) return false;
    rest_.remove_prefix(match.length());
    return true;
  }
  // The elements of a list or, with keys, of an object.
  bool elements(char end, bool keys) {
    if (take(end)) return true;
    do {
      if ((keys && (!string() || !take(':'))) || !value()) return false;
    } while (take(','));
    return take(end);
  }
  bool value() {
    if (take('{')) return elements('}', true);
    if (take('[')) return elements(']', false);
    return rest_.starts_with('"') ? string() : word();
  }
  std::string_view rest_;
};

inline bool is_json(std::string_view document) { return JsonCheck(document).holds(); }

}  // namespace jex::test
