#include "case.h"

#include <fnmatch.h>

namespace jex::bench {

std::vector<Case> all_cases() {
  std::vector<Case> cases;
  add_level1(cases);
  add_level2(cases);
  add_level3(cases);
  add_trans(cases);
  add_xblas(cases);
  add_sparse(cases);
  add_blocks(cases);
  add_fft(cases);
  add_pde(cases);
  add_gmp(cases);
  add_memory(cases);
  return cases;
}

bool matches(const std::string& pattern, const std::string& text) {
  return text.find(pattern) != std::string::npos || fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
}

}  // namespace jex::bench
