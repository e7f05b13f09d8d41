// What a kernel family gives to the tour: a problem, its checks, its rates and its pictures.
#pragma once

#include <cfloat>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include <jex/core.h>

#include "tour/progress.h"

namespace jex::tour {

// One computed quantity held against a reference. An error in "eps" is told in units of
// DBL_EPSILON * condition * |reference|, and so is its bound; other units are spelled out.
struct Check {
  std::string quantity, value;
  double condition, error, bound;
  std::string unit = "eps";

  bool holds() const { return error <= bound; }  // false for a NaN
};

// A check of value against reference, where one rounding moves the value by eps * scale at most.
inline Check compare(std::string quantity, std::string shown, double value, long double reference,
                     double scale, double bound) {
  const double size = std::fabs(static_cast<double>(reference));
  const double distance = static_cast<double>(fabsl(value - reference));
  return {std::move(quantity), std::move(shown), scale / size, distance / (DBL_EPSILON * scale),
          bound};
}

// A check that so many of the units, bits say, are as they must be, without exception.
inline Check exactly(std::string quantity, std::string shown, size_t wrong, std::string unit) {
  return {std::move(quantity), std::move(shown), 1, double(wrong), 0, std::move(unit)};
}

struct Fact {
  std::string name, text;
};

struct Rate {
  std::string what;
  double value;
  std::string unit;
};

struct Picture {
  std::string file, svg;
};

struct Report {
  std::vector<Fact> problem;  // what was computed from what
  std::vector<Check> checks;
  std::vector<Fact> findings;  // what came out
  std::vector<Rate> rates;
  std::vector<Picture> pictures;
};

struct Context {
  const Module& kernels;
  std::string file;  // the user's file; empty: the family takes its own data
  jex_int size;      // within the bounds of the family's Size
  Progress& progress;
};

// Files that a family reads: CSV, or Matrix Market, whose names end in .mtx.
enum class Input { none, series, matrix };

// What --size means to a family; no meaning: it has no size.
struct Size {
  const char* meaning = nullptr;
  jex_int usual = 0, least = 0, most = 0;
};

// run throws InputError (see input.h) for data that it cannot use.
struct Family {
  const char *name, *title;
  Report (*run)(const Context&);
  Input input = Input::none;
  Size size = {};
};

std::span<const Family> families();

struct Result {
  const Family& family;
  Report report;
  double seconds;

  size_t held() const {
    size_t count = 0;
    for (const Check& check : report.checks) count += check.holds();
    return count;
  }
};

}  // namespace jex::tour
