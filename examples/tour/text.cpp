#include "tour/text.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace jex::tour {
namespace {

// Bytes of the printable character at the front of s, 0 if there is none.
size_t character_length(std::string_view s) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(s[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return lead >= 0x20 && lead != 0x7f;
  const size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc0 || lead > 0xf4 || s.size() < length) return 0;
  uint32_t code = lead & (0xffu >> (length + 1));
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3f);
  }
  constexpr uint32_t least[] = {0, 0, 0xa0, 0x800, 0x10000};  // from 0xa0: the rest is control
  const bool surrogate = code >= 0xd800 && code < 0xe000;
  const bool noncharacter = (code & 0xfffe) == 0xfffe;
  return code < least[length] || code > 0x10ffff || surrogate || noncharacter ? 0 : length;
}

}  // namespace

std::string text(const char* format, ...) {
  va_list arguments, again;
  va_start(arguments, format);
  va_copy(again, arguments);
  std::string result(static_cast<size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
  std::vsnprintf(result.data(), result.size() + 1, format, again);
  va_end(again);
  va_end(arguments);
  return result;
}

std::string printable(std::string_view raw, size_t longest) {
  std::string result;
  while (!raw.empty()) {
    const size_t length = character_length(raw);
    if (result.size() + (length ? length : 1) > longest) return result + "...";
    result += length ? raw.substr(0, length) : "?";
    raw.remove_prefix(length ? length : 1);
  }
  return result;
}

std::string escaped(std::string_view raw) {
  std::string result;
  for (const char c : raw) {
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else if (c == '"')
      result += "&quot;";
    else
      result += c;
  }
  return result;
}

}  // namespace jex::tour
