// What the plots of svg.h are made of.
#pragma once

#include <string>
#include <vector>

#include "tour/svg.h"

namespace jex::tour::svg {

inline constexpr double digit = 8.5;  // width of a character of a tick label, in pixels
inline constexpr const char* ink = "#333333";
inline constexpr const char* faint = "#e3e6ea";
inline constexpr const char* line = "#2f5d8a";
inline constexpr const char* accent = "#b5482f";

// Maps a range of values to pixels, with ticks at multiples of 1, 2 or 5 times a power of ten.
struct Axis {
  Range range;
  double from, to;  // pixels of range.low and range.high

  double at(double v) const {
    return from + (v - range.low) / (range.high - range.low) * (to - from);
  }
};

struct Tick {
  double place;
  std::string label;
};
std::vector<Tick> ticks(const Axis& axis, int most);
size_t longest_label(const std::vector<Tick>& ticks);

// The room on the left of a frame that its y axis needs.
double left_margin(const std::vector<Tick>& y_ticks);

std::string line_element(double x1, double y1, double x2, double y2, const char* style);
std::string text_element(double x, double y, const char* style, const std::string& content);
std::string headline(double x, double y, const std::string& title);

//      title
//   y label  tick +-----------+
//                 |   frame   |
//                 +-----------+
//                   x ticks
//                   x label
struct Frame {
  std::string title, x_label, y_label;
  Axis x, y;
  int y_ticks;
};
std::string frame_element(const Frame& frame);

std::string document(const std::string& title, double width, double height,
                     const std::string& content);

}  // namespace jex::tour::svg
