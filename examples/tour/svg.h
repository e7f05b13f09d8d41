// A small writer of plots as SVG documents, each with a title, axes, ticks and labels.
#pragma once

#include <string>
#include <vector>

namespace jex::tour::svg {

// Points (first + i * step, y[i]) joined by a line; its element has the name as class. Where a
// panel has several, their names stand in its corner.
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
  std::vector<Curve> curves{};
  std::vector<Level> levels{};
  std::vector<Mark> marks{};
};

// Panels one below the other. Coordinates must be finite, and each panel needs a curve of two
// points or more.
std::string draw(const std::string& title, const std::vector<Panel>& panels);

struct Range {
  double low, high;

  void include(double v) {
    if (v < low) low = v;
    if (v > high) high = v;
  }
};

// The structure of a matrix: a dot for each entry (rows[k], columns[k]), counted from 0, or for the
// entries that share one of the picture's places.
std::string draw_structure(const std::string& title, int m, int n, const std::vector<int>& rows,
                           const std::vector<int>& columns);

// Values on a grid, the first row at the bottom, as colours with their scale beside them. The cells
// fill the ranges of x and y; elements with the class "band" lie between two levels.
struct Field {
  std::string title, x_label, y_label, value_label;
  Range x, y;
  int rows, columns;
  std::vector<double> values;
};
std::string draw_field(const Field& field);

}  // namespace jex::tour::svg
