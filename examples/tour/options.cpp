#include <algorithm>
#include <charconv>

#include "tour/text.h"
#include "tour/tour.h"

namespace jex::tour {
namespace {

constexpr jex_int most_threads = 256;

const Family* named(const std::string& name) {
  for (const Family& family : families())
    if (name == family.name) return &family;
  return nullptr;
}

std::string family_names() {
  std::string names;
  for (const Family& family : families())
    names += (names.empty() ? "" : ", ") + std::string(family.name);
  return names;
}

jex_int whole_number(const std::string& value, const std::string& flag, jex_int least,
                     jex_int most) {
  jex_int number = 0;
  const char* const end = value.data() + value.size();
  const auto read = std::from_chars(value.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end || number < least || number > most)
    throw UsageError(flag + text(" is a whole number from %d to %d, not ", least, most) +
                     printable(value));
  return number;
}

// What one flag needs to know of others: the family and its size, the family and the file.
void check_family(const Options& options, const std::string& size, jex_int& number) {
  const Family* family = options.family.empty() ? nullptr : named(options.family);
  if (!options.family.empty() && !family)
    throw UsageError("unknown family " + printable(options.family) +
                     "; there is: " + family_names());
  if (!size.empty()) {
    if (!family) throw UsageError("--size needs --family: sizes mean different things");
    if (!family->size.meaning) throw UsageError(text("the family %s has no --size", family->name));
    number = whole_number(size, text("--size of %s", family->name), family->size.least,
                          family->size.most);
  }
  if (family && !options.file.empty() && family->input != input_of(options.file))
    throw UsageError(
        text("the family %s does not read %s", family->name, file_name(options.file).c_str()));
}

}  // namespace

Options parse(const std::vector<std::string>& arguments) {
  Options options;
  std::string size, threads;
  const std::pair<const char*, std::string*> valued[] = {{"--family", &options.family},
                                                         {"--json", &options.json},
                                                         {"--out", &options.out},
                                                         {"--size", &size},
                                                         {"--threads", &threads}};
  bool file_seen = false;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const auto flag = std::find_if(std::begin(valued), std::end(valued),
                                   [&](const auto& entry) { return argument == entry.first; });
    if (argument == "--help") {
      options.help = true;
    } else if (flag != std::end(valued)) {
      if (i + 1 == arguments.size() || arguments[i + 1].empty())
        throw UsageError(argument + " needs a value");
      *flag->second = arguments[++i];
    } else if (argument.starts_with("-")) {
      throw UsageError("unknown flag " + printable(argument) + " (see jex-tour --help)");
    } else if (argument.empty() || file_seen) {
      throw UsageError(file_seen ? "more than one file is named" : "the name of the file is empty");
    } else {
      options.file = argument;
      file_seen = true;
    }
  }
  if (!threads.empty()) options.threads = whole_number(threads, "--threads", 1, most_threads);
  check_family(options, size, options.size);
  return options;
}

std::string usage() {
  std::string out =
      "usage: jex-tour [options] [FILE]\n"
      "Solves one real problem for each kernel family, checks the results, tells the rates and\n"
      "draws pictures.\n\n"
      "  --family NAME  this family only\n"
      "  --size N       another size of its problem, where the list below tells one\n"
      "  --threads N    threads of a call, 1 to 256\n"
      "  --out DIR      folder of index.html and its pictures, made if need be (jex-tour-out)\n"
      "  --json FILE    also write all results to FILE\n"
      "  --help         print this and stop\n"
      "  FILE           series to take in place of the sunspot numbers: CSV, abscissa and value,\n"
      "                 equal steps, a header line if you like; or, named *.mtx, a matrix to take\n"
      "                 in place of the membrane: Matrix Market, coordinates of real numbers\n\n"
      "families:\n";
  for (const Family& family : families()) {
    out += text("  %-13s  %s\n", family.name, family.title);
    if (const Size& size = family.size; size.meaning)
      out += text("  %-13s  --size %d to %d (%d): %s\n", "", size.least, size.most, size.usual,
                  size.meaning);
  }
  return out +
         "\nexit status: 0 each check holds, 1 a check fails or the kernel module cannot be "
         "loaded,\n2 wrong arguments or unusable files\n";
}

}  // namespace jex::tour
