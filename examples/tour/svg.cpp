#include <algorithm>
#include <cmath>

#include "tour/svg_parts.h"
#include "tour/text.h"

namespace jex::tour::svg {
namespace {

// One panel, in pixels; levels have their labels on the right of the frame.
constexpr double width = 960, panel_height = 320;
constexpr double right = 878, top = 40, bottom = 262;
constexpr int y_ticks = 6;

constexpr const char* colours[] = {line, "#d08a1d", "#3d8361"};

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

std::string curve_element(const Curve& curve, const char* colour, const Axis& x, const Axis& y) {
  std::string out = text(
      "<polyline class=\"%s\" fill=\"none\" stroke=\"%s\" stroke-width=\"1.5\" "
      "stroke-linejoin=\"round\" points=\"",
      escaped(curve.name).c_str(), colour);
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

// The names of several curves, from the right end of the frame to the left.
std::string key_element(const std::vector<Curve>& curves) {
  std::string out;
  double place = right;
  for (size_t i = curves.size(); curves.size() > 1 && i-- > 0;) {
    const char* const colour = colours[i % std::size(colours)];
    out += text_element(place, top - 14, text("text-anchor=\"end\" fill=\"%s\"", colour).c_str(),
                        curves[i].name);
    place -= (curves[i].name.size() + 2) * digit;
  }
  return out;
}

Axis y_axis(const Panel& panel) { return {y_range(panel), bottom, top}; }

std::string panel_element(const Panel& panel, double left, double offset) {
  const Axis x{x_range(panel), left, right}, y = y_axis(panel);
  std::string out = text("<g transform=\"translate(0 %.0f)\">\n", offset);
  out += frame_element({panel.title, panel.x_label, panel.y_label, x, y, y_ticks});
  const std::string dashed = text("stroke=\"%s\" stroke-dasharray=\"5 4\"", accent);
  for (const Level& level : panel.levels) {
    out += line_element(left, y.at(level.y), right, y.at(level.y), dashed.c_str());
    if (!level.label.empty())
      out += text_element(right + 6, y.at(level.y) + 4, text("fill=\"%s\"", accent).c_str(),
                          level.label);
  }
  for (size_t i = 0; i < panel.curves.size(); ++i)
    out += curve_element(panel.curves[i], colours[i % std::size(colours)], x, y);
  for (const Mark& mark : panel.marks) out += mark_element(mark, x, y);
  return out + key_element(panel.curves) + "</g>\n";
}

}  // namespace

std::string draw(const std::string& title, const std::vector<Panel>& panels) {
  double left = 0;
  for (const Panel& panel : panels)
    left = std::max(left, left_margin(ticks(y_axis(panel), y_ticks)));
  std::string content;
  for (size_t i = 0; i < panels.size(); ++i)
    content += panel_element(panels[i], left, i * panel_height);
  return document(title, width, panels.size() * panel_height, content);
}

}  // namespace jex::tour::svg
