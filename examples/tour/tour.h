// The program without its main(): command line, the run of the families, what is written.
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
  std::string family, out = "jex-tour-out", file, json;  // family empty: all; json empty: none
  jex_int size = 0, threads = 0;                         // 0: as usual
};

// What the file can be read as, by its name.
inline Input input_of(const std::string& file) {
  return file.ends_with(".mtx") ? Input::matrix : Input::series;
}

// Throws UsageError.
Options parse(const std::vector<std::string>& arguments);

std::string usage();

// Runs the chosen families, prints their tables, and writes the page, its pictures and the JSON.
// True if each check holds. Throws InputError and UsageError.
bool show(const Options& options, const Module& kernels);

}  // namespace jex::tour
