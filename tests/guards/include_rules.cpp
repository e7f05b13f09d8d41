#include "guards/include_rules.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>

namespace fs = std::filesystem;

namespace jex::test {
namespace {

// Dense layers, lowest first: each may include those before it.
const std::vector<std::string> dense = {"simd",      "serv",        "blas/level1", "blas/level2",
                                        "blas/gemm", "blas/level3", "blas/lapack"};

// The other families stand beside each other, on simd, serv and what is named here. The formats of
// the sparse family stand on its frame, and beside each other.
const std::map<std::string, std::set<std::string>> families = {
    {"spblas", {"blas/level1"}},
    {"spblas/csr", {"spblas", "blas/level1"}},
    {"spblas/bsr", {"spblas", "blas/level1"}},
    {"spblas/util", {"spblas", "spblas/csr", "blas/level1"}},
    {"spblas/coo", {"spblas", "blas/level1"}},
    {"spblas/dia", {"spblas", "blas/level1"}},
    {"spblas/lists", {"spblas/csr", "spblas/bsr", "spblas/util", "spblas/coo", "spblas/dia"}},
    {"dft/engine", {}},
    {"dft/real", {"dft/engine"}},
    {"dft/multi", {"dft/engine", "dft/real"}},
    {"dft/commit", {"dft/engine", "dft/real", "dft/multi"}},
    {"pdett", {"dft/engine", "dft/commit"}},
    {"pdepl", {"pdett"}},
    {"trans", {"blas/level1"}},
    {"xblas", {"blas/level1"}},
    {"gmp", {}},
};

// Public headers that the module shares with others; the core's own are not among them.
const std::set<std::string> forbidden_public = {"jex/core.h", "jex/jex.hpp"};

// The layer that a path, relative to the module, belongs to; empty if there is none.
std::string layer_of(const fs::path& path) {
  const std::string text = path.generic_string();
  const auto inside = [&](const std::string& folder) { return text.rfind(folder + "/", 0) == 0; };
  for (const auto& folder : dense)
    if (inside(folder)) return folder;
  std::string innermost;  // families come with the folder before what is in it
  for (const auto& [folder, below] : families)
    if (inside(folder)) innermost = folder;
  return innermost;
}

bool may_include(const std::string& from, const std::string& to) {
  if (from == to || to == "simd") return true;
  if (to == "serv") return from != "simd";
  if (const auto family = families.find(from); family != families.end())
    return family->second.count(to) > 0;
  const auto a = std::find(dense.begin(), dense.end(), from);
  const auto b = std::find(dense.begin(), dense.end(), to);
  return a != dense.end() && b != dense.end() && b < a;
}

// Empty if the include is right, else what is wrong with it.
std::string fault_of(const fs::path& module, const fs::path& file, const std::string& name,
                     bool quoted) {
  if (!quoted) return forbidden_public.count(name) ? "a header of the core's users" : "";
  const fs::path beside = fs::relative((module / file).parent_path() / name, module);
  const fs::path target = fs::exists(module / beside) ? beside.lexically_normal() : fs::path(name);
  if (!fs::exists(module / target) || target.generic_string().rfind("..", 0) == 0)
    return "not a file of the module";
  const std::string from = layer_of(file), to = layer_of(target);
  if (from.empty()) return "from a folder without a layer";
  if (to.empty()) return "a folder without a layer";
  return may_include(from, to) ? "" : from + " may not include " + to;
}

}  // namespace

std::vector<std::string> upward_includes(const fs::path& module) {
  static const std::regex include("\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"].*");
  static const std::set<std::string> sources = {".h", ".hpp", ".cpp", ".c", ".inc"};
  std::vector<std::string> faults;
  for (const auto& entry : fs::recursive_directory_iterator(module)) {
    if (!entry.is_regular_file() || !sources.count(entry.path().extension().string())) continue;
    const fs::path file = fs::relative(entry.path(), module);
    std::ifstream stream(entry.path());
    std::smatch match;
    for (std::string line; getline(stream, line);) {
      if (!std::regex_match(line, match, include)) continue;
      const std::string fault = fault_of(module, file, match[2], match[1] == "\"");
      if (!fault.empty())
        faults.push_back(file.generic_string() + ": " + match[2].str() + ": " + fault);
    }
  }
  std::sort(faults.begin(), faults.end());
  return faults;
}

}  // namespace jex::test
