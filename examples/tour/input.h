// Files that the families read.
#pragma once

#include <stdexcept>
#include <string>

namespace jex::tour {

// Data that cannot be used: one line that names file and line number.
struct InputError : std::runtime_error {
  using runtime_error::runtime_error;
};

[[noreturn]] void fail(const std::string& file, int line, const std::string& what);

// The whole file; throws InputError.
std::string content_of(const std::string& path);

// A file of the tour's own data: beside the installed program, else in the source tree.
std::string data_file(const std::string& name);

}  // namespace jex::tour
