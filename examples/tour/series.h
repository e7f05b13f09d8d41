// Series of values at equal steps, read from CSV files.
#pragma once

#include <string>
#include <vector>

#include "tour/input.h"
#include "tour/svg.h"

namespace jex::tour {

struct Series {
  std::string file, x_name, y_name;
  double first, step;  // abscissa of value i: first + i * step
  std::vector<double> values;
};

// Squares of values, and sums of them, stay far from overflow and underflow.
inline constexpr double largest_magnitude = 1e150, smallest_step = 1e-150, smallest_spread = 1e-140;
inline constexpr size_t fewest_values = 8, most_values = 32768;  // the work grows with their square

// Reads two columns, abscissa and value, separated by a comma. Allowed: a header line, quotes,
// blanks, blank lines, CRLF, a byte-order mark. Each step must be within 2 % of the median step, so
// that rounded abscissae pass and a missing row does not. Throws InputError.
Series read_series(const std::string& path);

// The series as a panel of a picture.
svg::Panel plot_of(const Series& series);

// The yearly sunspot numbers: beside the installed program, else in the source tree.
std::string sunspots_file();

}  // namespace jex::tour
