#include "tour/svg_parts.h"

#include <algorithm>
#include <cmath>

#include "tour/text.h"

namespace jex::tour::svg {
namespace {

double tick_step(const Range& range, int most) {
  const double least = (range.high - range.low) / most;
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0})
    if (factor * power >= least) return factor * power;
  return 10 * power;
}

// As many ticks along x as leave room between their labels.
std::vector<Tick> spaced_ticks(const Axis& x) {
  int most = 10;
  std::vector<Tick> result = ticks(x, most);
  while (most > 2 && (longest_label(result) + 1) * digit * result.size() > x.to - x.from)
    result = ticks(x, --most);
  return result;
}

}  // namespace

std::vector<Tick> ticks(const Axis& axis, int most) {
  const double step = tick_step(axis.range, most);
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

double left_margin(const std::vector<Tick>& y_ticks) {
  return 44 + std::max<size_t>(4, longest_label(y_ticks)) * digit;
}

std::string line_element(double x1, double y1, double x2, double y2, const char* style) {
  return text("<line x1=\"%.2f\" y1=\"%.2f\" x2=\"%.2f\" y2=\"%.2f\" %s/>\n", x1, y1, x2, y2,
              style);
}

std::string text_element(double x, double y, const char* style, const std::string& content) {
  return text("<text x=\"%.2f\" y=\"%.2f\" %s>", x, y, style) + escaped(content) + "</text>\n";
}

std::string headline(double x, double y, const std::string& title) {
  return text_element(x, y, "font-size=\"15\" font-weight=\"bold\"", title);
}

std::string frame_element(const Frame& frame) {
  std::string out;
  const Axis &x = frame.x, &y = frame.y;
  const double left = x.from, right = x.to;
  const double top = std::min(y.from, y.to), bottom = std::max(y.from, y.to);
  const std::string grid = text("stroke=\"%s\"", faint), axis = text("stroke=\"%s\"", ink);
  for (const Tick& tick : spaced_ticks(x)) {
    out += line_element(tick.place, top, tick.place, bottom, grid.c_str());
    out += line_element(tick.place, bottom, tick.place, bottom + 5, axis.c_str());
    out += text_element(tick.place, bottom + 19, "text-anchor=\"middle\"", tick.label);
  }
  for (const Tick& tick : ticks(y, frame.y_ticks)) {
    out += line_element(left, tick.place, right, tick.place, grid.c_str());
    out += line_element(left - 5, tick.place, left, tick.place, axis.c_str());
    out += text_element(left - 9, tick.place + 4, "text-anchor=\"end\"", tick.label);
  }
  out += line_element(left, top, left, bottom, axis.c_str());
  out += line_element(left, bottom, right, bottom, axis.c_str());
  out += headline(left, top - 14, frame.title);
  out += text_element((left + right) / 2, bottom + 40, "text-anchor=\"middle\"", frame.x_label);
  const std::string upright =
      text("text-anchor=\"middle\" transform=\"rotate(-90 20 %.2f)\"", (top + bottom) / 2);
  return out + text_element(20, (top + bottom) / 2, upright.c_str(), printable(frame.y_label, 28));
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

}  // namespace jex::tour::svg
