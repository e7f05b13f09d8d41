// What a run found, and how it is shown.
#pragma once

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "machine.h"
#include "session.h"

namespace jex::bench {

struct Row {
  const Case* c;
  std::map<std::string, Measurement> peers;  ///< by peer name; "" is our side alone

  /// The peer that does best beside us, of those with a right result; null when there is none.
  /// Compared by the ratio of each interleaved pair, which the load of the machine changes least.
  const std::pair<const std::string, Measurement>* best() const;
  /// Our time beside the best peer, or alone; 0 when there is none.
  double our_time() const;
  bool ours_crashed() const;
};

struct Results {
  Limits limits;
  Peers peers;
  std::vector<Row> rows;
};

void print_table(const Results& results);
void write_json(const Results& results, FILE* file);
void write_markdown(const Results& results, FILE* file);

/// Draws the ratios, one SVG for each family and size; says where they are, or what is missing.
void draw_plots(const Results& results, const std::string& folder);

}  // namespace jex::bench
