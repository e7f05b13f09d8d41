#include "tour/tour.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "tour/text.h"

namespace jex::tour {
namespace {

void print_facts(const std::vector<Fact>& facts) {
  size_t widest = 0;
  for (const Fact& fact : facts) widest = std::max(widest, fact.name.size());
  for (const Fact& fact : facts)
    std::printf("  %-*s  %s\n", static_cast<int>(widest), fact.name.c_str(), fact.text.c_str());
}

// Errors and bounds are in units of eps * condition * |quantity|.
void print_checks(const std::vector<Check>& checks) {
  int name = 8, value = 5;
  for (const Check& check : checks) {
    name = std::max(name, static_cast<int>(check.quantity.size()));
    value = std::max(value, static_cast<int>(check.value.size()));
  }
  std::printf("  %-*s  %*s  %9s  %8s  %8s  %s\n", name, "quantity", value, "value", "condition",
              "error", "bound", "check");
  for (const Check& check : checks)
    std::printf("  %-*s  %*s  %9.3g  %8.3f  %8.3f  %s\n", name, check.quantity.c_str(), value,
                check.value.c_str(), check.condition, check.error, check.bound,
                check.holds() ? "holds" : "FAILS");
  std::printf(
      "  error and bound: against long double, in units of eps x condition x |value|, "
      "eps = 2^-52\n");
}

// Makes the folder if need be.
void write(const std::filesystem::path& path, const std::string& content) {
  std::error_code error;
  std::filesystem::create_directories(path.parent_path(), error);
  if (error)
    throw UsageError(text("%s cannot be made: %s", path.parent_path().string().c_str(),
                          error.message().c_str()));
  FILE* file = std::fopen(path.string().c_str(), "wb");
  bool written = file && std::fwrite(content.data(), 1, content.size(), file) == content.size();
  if (file) written = std::fclose(file) == 0 && written;
  if (!written)
    throw UsageError(text("%s cannot be written: %s", path.string().c_str(), std::strerror(errno)));
}

std::string family_names() {
  std::string names;
  for (const Family& family : families())
    names += (names.empty() ? "" : ", ") + std::string(family.name);
  return names;
}

// True if each check of the family holds.
bool show_family(const Family& family, const Options& options, const Module& kernels) {
  const Input given = options.file.ends_with(".mtx") ? Input::matrix : Input::series;
  const Report report = family.run({kernels, given == family.input ? options.file : std::string()});
  std::printf("%s: %s\n\n", family.name, family.title);
  print_facts(report.problem);
  std::printf("\n");
  print_checks(report.checks);
  std::printf("\n");
  print_facts(report.findings);
  for (const Picture& picture : report.pictures) {
    const std::filesystem::path path = std::filesystem::path(options.out) / picture.file;
    write(path, picture.svg);
    std::printf("  written: %s\n", path.string().c_str());
  }
  return std::all_of(report.checks.begin(), report.checks.end(),
                     [](const Check& check) { return check.holds(); });
}

}  // namespace

Options parse(const std::vector<std::string>& arguments) {
  Options options;
  bool file_seen = false;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help") {
      options.help = true;
    } else if (argument == "--family" || argument == "--out") {
      if (i + 1 == arguments.size() || arguments[i + 1].empty())
        throw UsageError(argument + " needs a value");
      (argument == "--out" ? options.out : options.family) = arguments[++i];
    } else if (argument.starts_with("-")) {
      throw UsageError("unknown flag " + printable(argument) + " (see jex-tour --help)");
    } else if (argument.empty() || file_seen) {
      throw UsageError(file_seen ? "more than one file is named" : "the name of the file is empty");
    } else {
      options.file = argument;
      file_seen = true;
    }
  }
  const auto named = [&](const Family& family) { return options.family == family.name; };
  if (!options.family.empty() && !std::any_of(families().begin(), families().end(), named))
    throw UsageError("unknown family " + printable(options.family) +
                     "; there is: " + family_names());
  return options;
}

std::string usage() {
  std::string out =
      "usage: jex-tour [--help] [--family NAME] [--out DIR] [FILE]\n\n"
      "Solves one real problem for each kernel family, checks the results against long double,\n"
      "tells the rate and draws pictures.\n\n"
      "  --family NAME  this family only\n"
      "  --out DIR      folder of the pictures, made if need be (jex-tour-out)\n"
      "  FILE           series to take in place of the sunspot numbers: CSV, abscissa and value,\n"
      "                 equal steps, a header line if you like; or, named *.mtx, a matrix to take\n"
      "                 in place of the membrane: Matrix Market, coordinates of real numbers\n\n"
      "families:\n";
  for (const Family& family : families()) out += text("  %-13s  %s\n", family.name, family.title);
  return out +
         "\nexit status: 0 each check holds, 1 a check fails or the kernel module cannot be "
         "loaded,\n2 wrong arguments or unusable files\n";
}

bool show(const Options& options, const Module& kernels) {
  bool all = true;
  for (const Family& family : families())
    if (options.family.empty() || options.family == family.name)
      all = show_family(family, options, kernels) && all;
  return all;
}

}  // namespace jex::tour
