// What a built kernel module may be. Each rule reads a library with the tools of binutils and
// returns one line for each breach; none means that the library keeps the rule.
#pragma once

#include <string>
#include <vector>

namespace jex::test {

using Breaches = std::vector<std::string>;

// The defined dynamic symbols are the listed names and no others.
Breaches exports_differ(const std::string& library, const std::vector<std::string>& listed);

// What is not defined comes from the C library or GNU MP, or is on the list of the core's entries.
Breaches foreign_imports(const std::string& library);

// Only the C library, its mathematics, GNU MP and the core are needed; the core always is.
Breaches needed_libraries(const std::string& library);

// The names all stand for one address.
Breaches not_one_address(const std::string& library, const std::vector<std::string>& names);

// Exports whose code returns at once; a name for each address.
Breaches exports_without_code(const std::string& library);

// No segment both writable and executable, the stack among them, and no relocation of code.
Breaches unsafe_segments(const std::string& library);

// Nothing of the library's own runs when it is loaded.
Breaches static_constructors(const std::string& library);

// Every instruction is of SSE3 or older.
Breaches newer_instructions(const std::string& library);

}  // namespace jex::test
