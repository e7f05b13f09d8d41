// A benchmark case: one routine on one set of operands.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "entries.h"

namespace jex::bench {

/// Operands and outcome of one case. Two problems of a case hold the same operands after fill().
class Problem {
 public:
  virtual ~Problem() = default;
  /// Sets the operands to their start values.
  virtual void fill() = 0;
  /// Calls the entry again and again. Operands neither grow nor decay, however many the calls.
  virtual void run(const Entry& entry, long calls) = 0;
  /// Distance of the outcomes of one call, in units of the error allowed: above 1 or NaN is wrong.
  virtual double deviation(const Problem& other) const = 0;
};

/// What one call moves and computes.
struct Work {
  double read_bytes = 0;
  double written_bytes = 0;
  double flops = 0;
  double footprint = 0;  ///< bytes of all operands: decides the memory level
  bool is_double = false;
  bool in_place = true;  ///< what is written was read at the same place

  double bytes() const { return read_bytes + written_bytes; }
};

struct Case {
  std::string name;     ///< unique, routine first, e.g. "ddot/1000/aligned"
  std::string routine;  ///< what entry tables know it by, e.g. "ddot"
  std::string family;   ///< e.g. "level1"
  Work work;
  bool quick = false;  ///< belongs to the short run
  std::function<std::unique_ptr<Problem>()> make;
};

/// One function for each family, in its own file.
void add_level1(std::vector<Case>& cases);
void add_level2(std::vector<Case>& cases);
void add_level3(std::vector<Case>& cases);
void add_trans(std::vector<Case>& cases);
void add_xblas(std::vector<Case>& cases);
void add_sparse(std::vector<Case>& cases);
void add_blocks(std::vector<Case>& cases);
void add_fft(std::vector<Case>& cases);
void add_pde(std::vector<Case>& cases);
void add_gmp(std::vector<Case>& cases);
void add_memory(std::vector<Case>& cases);

std::vector<Case> all_cases();

/// True when the pattern is part of the text, or matches the whole of it as a shell glob.
bool matches(const std::string& pattern, const std::string& text);

}  // namespace jex::bench
