// Matrices as pictures: their structure, or their elements as colours.
#include <algorithm>
#include <cmath>

#include "tour/svg_parts.h"
#include "tour/text.h"

namespace jex::tour::svg {
namespace {

constexpr double longest = 480, top = 40, below = 58;
constexpr int bands = 24, y_ticks = 8;

// The colour of band b: pale yellow, orange, dark purple.
std::string colour_of(int b) {
  constexpr double stops[][3] = {{255, 249, 224}, {222, 120, 62}, {62, 15, 60}};
  const double t = 2 * (b + 0.5) / bands;
  const auto &low = stops[t >= 1], &high = stops[(t >= 1) + 1];
  const auto mixed = [&](int i) {
    return int(std::lround(low[i] + (high[i] - low[i]) * (t - (t >= 1))));
  };
  return text("#%02x%02x%02x", mixed(0), mixed(1), mixed(2));
}

// The levels of the colours, upright beside the frame.
std::string scale_element(double left, double bottom, const Range& levels,
                          const std::string& label) {
  constexpr double width = 18;
  const Axis axis{levels, bottom, top};
  const double height = (bottom - top) / bands;
  std::string out;
  for (int band = 0; band < bands; ++band)
    out += text(
        "<rect x=\"%.2f\" y=\"%.2f\" width=\"%.2f\" height=\"%.2f\" fill=\"%s\" stroke=\"%s\"/>\n",
        left, bottom - (band + 1) * height, width, height, colour_of(band).c_str(),
        colour_of(band).c_str());
  for (const Tick& tick : ticks(axis, 6))
    out += text_element(left + width + 6, tick.place + 4, "", tick.label);
  return out + text_element(left + width, top - 14, "text-anchor=\"end\"", label);
}

}  // namespace

std::string draw_structure(const std::string& title, int m, int n, const std::vector<int>& rows,
                           const std::vector<int>& columns) {
  // A matrix of few rows or columns keeps room for its labels.
  constexpr double shortest = 20;
  const double height = std::max(longest * m / std::max(m, n), shortest),
               width = std::max(longest * n / std::max(m, n), shortest);
  // Entries stand in cells of a pixel or more, several to a cell in large matrices.
  const double row_height = height / m, column_width = width / n;
  const double down = std::max(row_height, 1.0), across = std::max(column_width, 1.0);
  std::vector<std::pair<double, double>> dots;
  for (size_t k = 0; k < rows.size(); ++k)
    dots.push_back({std::floor(rows[k] * (row_height / down)) * down,
                    std::floor(columns[k] * (column_width / across)) * across});
  std::sort(dots.begin(), dots.end());
  dots.erase(std::unique(dots.begin(), dots.end()), dots.end());
  const int most_ticks = std::clamp(int(height / 40), 1, y_ticks);
  Axis x{{0, double(n)}, 0, 0}, y{{0, double(m)}, top, top + height};
  x.from = left_margin(ticks(y, most_ticks)), x.to = x.from + width;
  std::string content = frame_element({title, "column", "row", x, y, most_ticks});
  content += text("<path class=\"structure\" fill=\"%s\" d=\"", line);
  for (const auto& [row, column] : dots)
    content +=
        text("M%.2f %.2fh%.2fv%.2fh-%.2fz", x.from + column, top + row, across, down, across);
  content += "\"/>\n";
  return document(title, std::max(x.to, x.from + 240) + 40, y.to + below, content);
}

std::string draw_field(const Field& field) {
  constexpr int most_cells = 128;
  const int rows = std::min(field.rows, most_cells), columns = std::min(field.columns, most_cells);
  const double shape = longest * field.rows / field.columns;
  const double bottom = top + std::clamp(shape, longest / 2, longest);
  const auto [low, high] = std::minmax_element(field.values.begin(), field.values.end());
  const Range levels{*low, *high > *low ? *high : *low + 1};
  const auto band_at = [&](int row, int column) {
    const size_t i = (row + 0.5) * field.rows / rows, j = (column + 0.5) * field.columns / columns;
    const double v = field.values[i * field.columns + j];
    return std::clamp(int((v - levels.low) / (levels.high - levels.low) * bands), 0, bands - 1);
  };
  const Axis y{field.y, bottom, top};
  const double left = left_margin(ticks(y, y_ticks));
  const Axis x{field.x, left, left + longest};
  const double width = longest / columns, height = (bottom - top) / rows;
  std::vector<std::string> paths(bands);
  for (int row = 0; row < rows; ++row)
    for (int first = 0, column = 1; column <= columns; ++column) {
      if (column < columns && band_at(row, column) == band_at(row, first)) continue;
      const double run = (column - first) * width;
      paths[band_at(row, first)] += text("M%.1f %.1fh%.1fv%.1fh-%.1fz", left + first * width,
                                         bottom - (row + 1) * height, run, height, run);
      first = column;
    }
  std::string content = frame_element({field.title, field.x_label, field.y_label, x, y, y_ticks});
  for (int band = 0; band < bands; ++band) {
    const std::string colour = colour_of(band);
    content += text("<path class=\"band\" fill=\"%s\" stroke=\"%s\" stroke-width=\"0.3\" d=\"",
                    colour.c_str(), colour.c_str()) +
               paths[band] + "\"/>\n";
  }
  content += scale_element(x.to + 30, bottom, levels, field.value_label);
  return document(field.title, x.to + 140, bottom + below, content);
}

}  // namespace jex::tour::svg
