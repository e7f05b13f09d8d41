// The program without its main(): command line, the run of the families, what is printed.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "tour/family.h"

namespace jex::tour {

// A command line that cannot be followed, or an output that cannot be written.
struct UsageError : std::runtime_error {
  using runtime_error::runtime_error;
};

struct Options {
  bool help = false;
  std::string family, out = "jex-tour-out", file;  // family empty: all of them
};

// Throws UsageError.
Options parse(const std::vector<std::string>& arguments);

std::string usage();

// Runs the chosen families, prints their tables and writes their pictures. True if each check
// holds. Throws InputError and UsageError.
bool show(const Options& options, const Module& kernels);

}  // namespace jex::tour
