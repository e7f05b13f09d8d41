// What a kernel family gives to the tour: a problem, its checks, its rate and its pictures.
#pragma once

#include <cfloat>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include <jex/core.h>

namespace jex::tour {

// One computed quantity held against a reference. The error is told in units of
// DBL_EPSILON * condition * |reference|, and so is its bound.
struct Check {
  std::string quantity, value;
  double condition, error, bound;

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

struct Fact {
  std::string name, text;
};

struct Picture {
  std::string file, svg;
};

struct Report {
  std::vector<Fact> problem;  // what was computed from what
  std::vector<Check> checks;
  std::vector<Fact> findings;  // what came out, rates included
  std::vector<Picture> pictures;
};

struct Context {
  const Module& kernels;
  std::string file;  // the user's file; empty: the family takes its own data
};

enum class Input {
  series,
  matrix
};  // a CSV file, or a Matrix Market file, whose name ends in .mtx

// run throws InputError (see input.h) for data that it cannot use.
struct Family {
  const char *name, *title;
  Report (*run)(const Context&);
  Input input = Input::series;
};

std::span<const Family> families();

}  // namespace jex::tour
