// A series folded at its period: its values in a table with as many columns as the period has
// steps; transposed, each phase of the cycle is a line of its own. The period is the width whose
// phases differ most: the share of the variance between them, adjusted for their number. (E. T.
// Whittaker, G. Robinson, "The Calculus of Observations" (1924), chapter 13.)
//
// Then a large matrix there and back, in place and beside itself, to the bit.
#include <jex/jex.hpp>

#include <algorithm>
#include <numeric>

#include "families/errors.h"
#include "families/kernels.h"
#include "tour/family.h"
#include "tour/series.h"
#include "tour/svg.h"
#include "tour/text.h"
#include "tour/timing.h"

namespace jex::tour {
namespace {

template <class Numbers>
auto by_rows(Numbers& a, jex_int rows, jex_int columns) {
  return matrix(a.data(), rows, columns, Layout::row_major);
}

struct Fold {
  jex_int rows, period;
  Vector table, phases;  // rows x period, and its transpose
  Vector cycle;          // the mean of each phase
  double share;          // of the variance, adjusted: 1 for a cycle that repeats itself exactly
};

Fold fold(const Vector& values, jex_int period) {
  Fold f{jex_int(values.size()) / period, period, values, {}, Vector(period), 0};
  f.table.resize(f.rows * period);
  f.phases.resize(f.table.size());
  jex::transpose(1.0, by_rows(f.table, f.rows, period), by_rows(f.phases, period, f.rows));
  const double count = f.table.size();
  const double mean = std::accumulate(f.table.begin(), f.table.end(), 0.0) / count;
  double within = 0, all = 0;
  for (jex_int p = 0; p < period; ++p) {
    const double* const line = &f.phases[size_t(p) * f.rows];
    f.cycle[p] = std::accumulate(line, line + f.rows, 0.0) / f.rows;
    for (jex_int i = 0; i < f.rows; ++i) {
      within += (line[i] - f.cycle[p]) * (line[i] - f.cycle[p]);
      all += (line[i] - mean) * (line[i] - mean);
    }
  }
  if (all > 0) f.share = 1 - within / (count - period) * (count - 1) / all;
  return f;
}

// Elements of the transpose that are not where they belong.
size_t misplaced(const Fold& f) {
  size_t wrong = 0;
  for (jex_int i = 0; i < f.rows; ++i)
    for (jex_int p = 0; p < f.period; ++p)
      wrong += f.phases[p * f.rows + i] != f.table[i * f.period + p];
  return wrong;
}

// A matrix of order n of numbers that are all different, and what transposition makes of it.
void check_and_time(jex_int n, Report& report) {
  Vector a(size_t(n) * n), t(a.size()), b;
  std::iota(a.begin(), a.end(), 1.0);
  jex::transpose(1.0, by_rows(a, n, n), by_rows(t, n, n));
  size_t wrong = 0;
  for (jex_int i = 0; i < n; ++i)
    for (jex_int j = 0; j < n; ++j) wrong += t[size_t(j) * n + i] != a[size_t(i) * n + j];
  b = t;
  transpose_in_place(1.0, by_rows(b, n, n));
  report.checks.push_back(exactly(text("%d x %d", n, n), "transposed", wrong, "elements"));
  report.checks.push_back(exactly("and back", "in place", differing(a, b), "elements"));

  const double bytes = 16.0 * n * n;
  const double apart =
      times_per_second([&] { jex::transpose(1.0, by_rows(a, n, n), by_rows(t, n, n)); });
  const double in_place = times_per_second([&] { transpose_in_place(1.0, by_rows(b, n, n)); });
  report.rates = {
      {text("transposition of %d x %d, read and written", n, n), bytes * apart / 1e9, "GB/s"},
      {"the same in place", bytes * in_place / 1e9, "GB/s"}};
}

std::vector<Picture> draw(const Series& series, const Fold& best, const Vector& shares,
                          jex_int first) {
  const double length = best.period * series.step;
  const std::string phase = "place in the cycle, in units of " + series.x_name;
  const Picture table = {"transpose.svg", svg::draw_field({series.y_name + " folded at its period",
                                                           phase,
                                                           "cycle",
                                                           series.y_name,
                                                           {0, length},
                                                           {0, double(best.rows)},
                                                           best.rows,
                                                           best.period,
                                                           best.table})};
  svg::Panel widths{"Variance between the phases", "period, in units of " + series.x_name,
                    "adjusted share"};
  widths.curves = {{"share", first * series.step, series.step, shares}};
  widths.marks = {{length, best.share, text("period %.4g", length)}};
  svg::Panel cycle{"Mean cycle", phase, series.y_name};
  cycle.curves = {{"cycle", 0, series.step, best.cycle}};
  return {table, {"fold.svg", svg::draw("The cycle of " + series.y_name, {widths, cycle})}};
}

}  // namespace

Report transpose(const Context& context) {
  const Series series = read_series(context.file.empty() ? sunspots_file() : context.file);
  const jex_int n = series.values.size(), first = 2, last = std::clamp<jex_int>(n / 4, 3, 512);
  Fold best = fold(series.values, first);
  Vector shares = {best.share};
  for (jex_int period = first + 1; period <= last; ++period) {
    Fold next = fold(series.values, period);
    shares.push_back(next.share);
    // Two cycles side by side are no better than one, but for rounding.
    if (next.share > best.share + 1e-9) best = std::move(next);
  }

  Report report;
  report.problem = {{"file", file_name(series.file)},
                    {"series", text("%d values of %s", n, series.y_name.c_str())},
                    {"tables", text("of %d to %d columns", first, last)}};
  report.checks.push_back(exactly("phases of the table", text("%d x %d", best.period, best.rows),
                                  misplaced(best), "elements"));
  report.findings = {{"period", text("%.4g: the phases have %.1f %% of the variance, adjusted",
                                     best.period * series.step, 100 * best.share)}};
  context.progress.tell(text("matrices of %d x %d", context.size, context.size));
  check_and_time(context.size, report);
  report.pictures = draw(series, best, shares, first);
  return report;
}

}  // namespace jex::tour
