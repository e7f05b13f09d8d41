// Formatted and cleaned text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace jex::tour {

// The formatted string of printf.
[[gnu::format(gnu_printf, 1, 2)]] std::string text(const char* format, ...);

// Foreign text made fit for one line of a terminal or of XML: bytes that are no printable UTF-8
// become '?', and what exceeds `longest` bytes is cut.
std::string printable(std::string_view raw, size_t longest = 40);

// The name of a file, fit for one line.
inline std::string file_name(std::string_view raw) { return printable(raw, 4096); }

// As content or attribute of XML.
std::string escaped(std::string_view raw);

}  // namespace jex::tour
