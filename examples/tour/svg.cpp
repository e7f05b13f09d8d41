#include "tour/svg.h"

#include <algorithm>
#include <cmath>

#include "tour/text.h"

namespace jex::tour::svg {
namespace {

// One panel, in pixels:      title
//            y label  tick +-----------+ level label
//                          |   frame   |
//                          +-----------+
//                            x ticks
//                            x label
constexpr double width = 960, panel_height = 320;
constexpr double right = 878, top = 40, bottom = 262;
constexpr double digit = 8.5;  // width of a character of a tick label

constexpr int y_ticks = 6;

constexpr const char* ink = "#333333";
constexpr const char* faint = "#e3e6ea";
constexpr const char* line = "#2f5d8a";
constexpr const char* accent = "#b5482f";

std::string escaped(const std::string& raw) {
  std::string result;
  for (const char c : raw) {
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else if (c == '"')
      result += "&quot;";
    else
      result += c;
  }
  return result;
}

struct Range {
  double low, high;

  void include(double v) { low = std::min(low, v), high = std::max(high, v); }
};

// Maps a range of values to pixels, with ticks at multiples of 1, 2 or 5 times a power of ten.
struct Axis {
  Range range;
  double from, to;  // pixels of range.low and range.high

  double at(double v) const {
    return from + (v - range.low) / (range.high - range.low) * (to - from);
  }
  double tick_step(int most) const {
    const double least = (range.high - range.low) / most;
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
      if (factor * power >= least) return factor * power;
    return 10 * power;
  }
};

struct Tick {
  double place;
  std::string label;
};

std::vector<Tick> ticks(const Axis& axis, int most) {
  const double step = axis.tick_step(most);
  const double largest = std::max(std::fabs(axis.range.low), std::fabs(axis.range.high));
  const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
  const bool plain = largest < 1e6 && decimals <= 5;
  const int digits = std::clamp(static_cast<int>(std::ceil(std::log10(largest / step))) + 1, 1, 17);
  std::vector<Tick> result;
  const double first = std::ceil(axis.range.low / step - 1e-9);
  for (int i = 0; i <= most; ++i) {
    const double value = (first + i) * step + 0.0;  // + 0.0: no label "-0"
    if (value > axis.range.high + 1e-9 * step) break;
    result.push_back(
        {axis.at(value), plain ? text("%.*f", decimals, value) : text("%.*g", digits, value)});
  }
  return result;
}

size_t longest_label(const std::vector<Tick>& ticks) {
  size_t longest = 0;
  for (const Tick& tick : ticks) longest = std::max(longest, tick.label.size());
  return longest;
}

// As many ticks along x as leave room between their labels.
std::vector<Tick> spaced_ticks(const Axis& x) {
  int most = 10;
  std::vector<Tick> result = ticks(x, most);
  while (most > 2 && (longest_label(result) + 1) * digit * result.size() > x.to - x.from)
    result = ticks(x, --most);
  return result;
}

std::string line_element(double x1, double y1, double x2, double y2, const char* style) {
  return text("<line x1=\"%.2f\" y1=\"%.2f\" x2=\"%.2f\" y2=\"%.2f\" %s/>\n", x1, y1, x2, y2,
              style);
}

std::string text_element(double x, double y, const char* style, const std::string& content) {
  return text("<text x=\"%.2f\" y=\"%.2f\" %s>", x, y, style) + escaped(content) + "</text>\n";
}

Range x_range(const Panel& panel) {
  const Curve& any = panel.curves.front();
  Range range{any.first, any.first};
  for (const Curve& curve : panel.curves) {
    range.include(curve.first);
    range.include(curve.first + (curve.y.size() - 1) * curve.step);
  }
  return range;
}

// All values with a little room above and below; zero stays the floor of what is not negative.
Range y_range(const Panel& panel) {
  Range range{panel.curves.front().y.front(), panel.curves.front().y.front()};
  for (const Curve& curve : panel.curves)
    for (const double y : curve.y) range.include(y);
  for (const Level& level : panel.levels) range.include(level.y);
  if (!(range.high > range.low)) range = {range.low - 1, range.high + 1};
  const double room = 0.08 * (range.high - range.low);
  const bool on_floor = range.low >= 0 && range.low <= room;
  return {on_floor ? 0 : range.low - room, range.high + room};
}

std::string frame(const Panel& panel, const Axis& x, const Axis& y) {
  std::string out;
  const double left = x.from;
  const std::string grid = text("stroke=\"%s\"", faint), axis = text("stroke=\"%s\"", ink);
  for (const Tick& tick : spaced_ticks(x)) {
    out += line_element(tick.place, top, tick.place, bottom, grid.c_str());
    out += line_element(tick.place, bottom, tick.place, bottom + 5, axis.c_str());
    out += text_element(tick.place, bottom + 19, "text-anchor=\"middle\"", tick.label);
  }
  for (const Tick& tick : ticks(y, y_ticks)) {
    out += line_element(left, tick.place, right, tick.place, grid.c_str());
    out += line_element(left - 5, tick.place, left, tick.place, axis.c_str());
    out += text_element(left - 9, tick.place + 4, "text-anchor=\"end\"", tick.label);
  }
  out += line_element(left, top, left, bottom, axis.c_str());
  out += line_element(left, bottom, right, bottom, axis.c_str());
  out += text_element(left, top - 14, "font-size=\"15\" font-weight=\"bold\"", panel.title);
  out += text_element((left + right) / 2, bottom + 40, "text-anchor=\"middle\"", panel.x_label);
  const std::string upright =
      text("text-anchor=\"middle\" transform=\"rotate(-90 20 %.2f)\"", (top + bottom) / 2);
  return out + text_element(20, (top + bottom) / 2, upright.c_str(), printable(panel.y_label, 28));
}

std::string curve_element(const Curve& curve, const Axis& x, const Axis& y) {
  std::string out = text(
      "<polyline class=\"%s\" fill=\"none\" stroke=\"%s\" stroke-width=\"1.5\" "
      "stroke-linejoin=\"round\" points=\"",
      escaped(curve.name).c_str(), line);
  for (size_t i = 0; i < curve.y.size(); ++i)
    out += text("%s%.2f,%.2f", i ? " " : "", x.at(curve.first + i * curve.step), y.at(curve.y[i]));
  return out + "\"/>\n";
}

// A white rim keeps the label readable where it crosses a curve.
std::string mark_element(const Mark& mark, const Axis& x, const Axis& y) {
  const double px = x.at(mark.x), py = y.at(mark.y);
  const bool at_end = px > right - 120;
  const std::string style = text(
      "text-anchor=\"%s\" fill=\"%s\" stroke=\"white\" stroke-width=\"4\" "
      "paint-order=\"stroke\"",
      at_end ? "end" : "start", accent);
  return text("<circle cx=\"%.2f\" cy=\"%.2f\" r=\"4\" fill=\"%s\"/>\n", px, py, accent) +
         text_element(px + (at_end ? 4 : -4), py - 9, style.c_str(), mark.label);
}

Axis y_axis(const Panel& panel) { return {y_range(panel), bottom, top}; }

// The left end of the frames: the widest label of a y tick has its place before it.
double left_end(const std::vector<Panel>& panels) {
  size_t longest = 4;
  for (const Panel& panel : panels)
    longest = std::max(longest, longest_label(ticks(y_axis(panel), y_ticks)));
  return 44 + longest * digit;
}

std::string panel_element(const Panel& panel, double left, double offset) {
  const Axis x{x_range(panel), left, right}, y = y_axis(panel);
  std::string out = text("<g transform=\"translate(0 %.0f)\">\n", offset) + frame(panel, x, y);
  const std::string dashed = text("stroke=\"%s\" stroke-dasharray=\"5 4\"", accent);
  for (const Level& level : panel.levels) {
    out += line_element(left, y.at(level.y), right, y.at(level.y), dashed.c_str());
    if (!level.label.empty())
      out += text_element(right + 6, y.at(level.y) + 4, text("fill=\"%s\"", accent).c_str(),
                          level.label);
  }
  for (const Curve& curve : panel.curves) out += curve_element(curve, x, y);
  for (const Mark& mark : panel.marks) out += mark_element(mark, x, y);
  return out + "</g>\n";
}

std::string document(const std::string& title, double width, double height,
                     const std::string& content) {
  std::string out = text(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" width=\"%.0f\" "
      "height=\"%.0f\" viewBox=\"0 0 %.0f %.0f\" font-family=\"sans-serif\" "
      "font-size=\"13\" fill=\"%s\">\n",
      width, height, width, height, ink);
  out += "<title>" + escaped(title) + "</title>\n";
  out += "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  return out + content + "</svg>\n";
}

}  // namespace

std::string draw(const std::string& title, const std::vector<Panel>& panels) {
  const double left = left_end(panels);
  std::string content;
  for (size_t i = 0; i < panels.size(); ++i)
    content += panel_element(panels[i], left, i * panel_height);
  return document(title, width, panels.size() * panel_height, content);
}

std::string draw_structure(const std::string& title, int m, int n, const std::vector<int>& rows,
                           const std::vector<int>& columns) {
  constexpr double margin = 40, longest = 640;
  const double scale = longest / std::max(m, n), dot = std::max(scale, 1.0);
  const auto pixel = [&](int place) { return std::floor(place * scale / dot) * dot; };
  std::vector<std::pair<double, double>> dots;
  for (size_t k = 0; k < rows.size(); ++k) dots.push_back({pixel(rows[k]), pixel(columns[k])});
  std::sort(dots.begin(), dots.end());
  dots.erase(std::unique(dots.begin(), dots.end()), dots.end());
  std::string content = text_element(margin, 26, "font-size=\"15\" font-weight=\"bold\"", title);
  content += text(
      "<rect x=\"%.2f\" y=\"%.2f\" width=\"%.2f\" height=\"%.2f\" fill=\"none\" stroke=\"%s\"/>\n",
      margin, margin, n * scale, m * scale, ink);
  content += text("<path class=\"structure\" fill=\"%s\" d=\"", line);
  for (const auto& [row, column] : dots)
    content += text("M%.2f %.2fh%.2fv%.2fh-%.2fz", margin + column, margin + row, dot, dot, dot);
  content += "\"/>\n";
  return document(title, n * scale + 2 * margin, m * scale + 2 * margin, content);
}

std::string draw_field(const std::string& title, int n, const std::vector<double>& values) {
  constexpr double margin = 40, longest = 640;
  constexpr int bands = 24, most_cells = 128;
  const int cells = std::min(n, most_cells);
  const double size = longest / cells;
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  const double span = *high > *low ? *high - *low : 1;
  const auto band_at = [&](int row, int column) {
    const auto place = [&](int cell) { return size_t((cell + 0.5) * n / cells); };
    const double v = values[place(row) * n + place(column)];
    return std::clamp(int((v - *low) / span * bands), 0, bands - 1);
  };
  std::vector<std::string> paths(bands);
  for (int row = 0; row < cells; ++row)
    for (int first = 0, column = 1; column <= cells; ++column) {
      if (column < cells && band_at(row, column) == band_at(row, first)) continue;
      paths[band_at(row, first)] += text("M%.1f %.1fh%.1fv%.1fh-%.1fz", margin + first * size,
                                         margin + longest - (row + 1) * size,
                                         (column - first) * size, size, (column - first) * size);
      first = column;
    }
  std::string content = text_element(margin, 26, "font-size=\"15\" font-weight=\"bold\"", title);
  for (int band = 0; band < bands; ++band) {
    // From blue over white to red.
    const double t = 2 * (band + 0.5) / bands - 1, pale = 1 - std::fabs(t);
    const auto shade = [&](double full) {
      return int(std::lround(255 * (pale + (1 - pale) * full)));
    };
    content += text("<path class=\"band\" fill=\"#%02x%02x%02x\" d=\"", shade(t > 0 ? 0.71 : 0.18),
                    shade(t > 0 ? 0.28 : 0.36), shade(t > 0 ? 0.18 : 0.54));
    content += paths[band] + "\"/>\n";
  }
  content += text_element(margin, margin + longest + 22, "font-size=\"13\"",
                          text("%.4g (blue) to %.4g (red)", *low, *high));
  return document(title, longest + 2 * margin, longest + 2 * margin, content);
}

}  // namespace jex::tour::svg
