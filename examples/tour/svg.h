// A small writer of plots as SVG: panels one below the other, each with axes, ticks and labels.
#pragma once

#include <string>
#include <vector>

namespace jex::tour::svg {

// Points (first + i * step, y[i]) joined by a line; its element has the name as class.
struct Curve {
  std::string name;
  double first, step;
  std::vector<double> y;
};

// A dashed horizontal line, told in the right margin; without a label if that is empty.
struct Level {
  double y;
  std::string label;
};

// A small circle with a label above it.
struct Mark {
  double x, y;
  std::string label;
};

struct Panel {
  std::string title, x_label, y_label;
  std::vector<Curve> curves;
  std::vector<Level> levels;
  std::vector<Mark> marks;
};

// The drawing as a whole document. Coordinates must be finite, and each panel needs a curve of two
// points or more.
std::string draw(const std::string& title, const std::vector<Panel>& panels);

// The structure of a matrix: a dot for each entry (rows[k], columns[k]), counted from 0, or for the
// entries that share one of the picture's places.
std::string draw_structure(const std::string& title, int m, int n, const std::vector<int>& rows,
                           const std::vector<int>& columns);

// A function on a square grid of n x n points as colours, the first line at the bottom; elements
// with the class "band" lie between two levels.
std::string draw_field(const std::string& title, int n, const std::vector<double>& values);

}  // namespace jex::tour::svg
