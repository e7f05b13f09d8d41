#include "options.h"

#include <algorithm>
#include <string_view>

namespace jex::bench {

const char usage[] =
    "usage: jex-bench [options]\n"
    "Times the kernels of libjex_q7t beside the peers that are installed.\n"
    "\n"
    "  --only PATTERN  cases whose family is this, or whose name has this part or matches this "
    "glob;\n"
    "                  several allowed.\n"
    "                  A case's own name runs that case alone: --only ddot/1000/aligned\n"
    "  --peer PATTERN  peers, in the same way: --peer Eigen\n"
    "  --library PATH  one more peer: a shared library with Fortran BLAS symbols\n"
    "  --quick         fewer sizes and repetitions\n"
    "  --json FILE     also write all measurements to FILE\n"
    "  --markdown FILE also write the tables of docs/measurements.md to FILE\n"
    "  --plot          also draw ratios and rates into the folder plots of the build, with "
    "gnuplot\n"
    "  --list          print the names of the cases and stop\n"
    "  --help          print this and stop\n";

namespace {

bool any_matches(const std::vector<std::string>& patterns, const std::string& text) {
  return patterns.empty() || std::any_of(patterns.begin(), patterns.end(),
                                         [&](const std::string& p) { return matches(p, text); });
}

bool any_equals(const std::vector<std::string>& patterns, const std::string& text) {
  return std::find(patterns.begin(), patterns.end(), text) != patterns.end();
}

}  // namespace

bool Options::selects(const Peer& peer) const { return any_matches(peers, peer.name); }

std::vector<const Case*> select_cases(const std::vector<Case>& cases, const Options& options) {
  // "sdot/1000/aligned" is part of another name: a pattern that is a name selects nothing else.
  std::vector<std::string> names, patterns;
  for (const std::string& pattern : options.only) {
    const bool is_name =
        std::any_of(cases.begin(), cases.end(), [&](const Case& c) { return c.name == pattern; });
    (is_name ? names : patterns).push_back(pattern);
  }
  std::vector<const Case*> selected;
  for (const Case& c : cases) {
    const bool named = std::count(names.begin(), names.end(), c.name) > 0;
    const bool matched = (names.empty() || !patterns.empty()) &&
                         (any_matches(patterns, c.name) || any_equals(patterns, c.family));
    if (named || (matched && (c.quick || !options.quick))) selected.push_back(&c);
  }
  return selected;
}

bool parse(int argc, char** argv, Options& options, std::string& mistake) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view flag = argv[i];
    const bool takes_value = flag == "--only" || flag == "--peer" || flag == "--json" ||
                             flag == "--markdown" || flag == "--library";
    if (takes_value && i + 1 == argc) {
      mistake = std::string(flag) + " needs a value";
      return false;
    }
    if (flag == "--only") {
      options.only.push_back(argv[++i]);
    } else if (flag == "--peer") {
      options.peers.push_back(argv[++i]);
    } else if (flag == "--library") {
      options.libraries.push_back(argv[++i]);
    } else if (flag == "--json") {
      options.json = argv[++i];
    } else if (flag == "--markdown") {
      options.markdown = argv[++i];
    } else if (flag == "--quick") {
      options.quick = true;
    } else if (flag == "--plot") {
      options.plot = true;
    } else if (flag == "--list") {
      options.list = true;
    } else if (flag == "--help" || flag == "-h") {
      options.help = true;
    } else {
      mistake = "unknown option " + std::string(flag) + " (--help lists them)";
      return false;
    }
  }
  return true;
}

}  // namespace jex::bench
