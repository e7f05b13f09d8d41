#include "results.h"

#include <algorithm>
#include <cmath>

namespace jex::bench {

const std::pair<const std::string, Measurement>* Row::best() const {
  const std::pair<const std::string, Measurement>* found = nullptr;
  for (const auto& entry : peers) {
    const Measurement& m = entry.second;
    if (entry.first.empty() || m.state != State::timed) continue;
    auto rank = [](const Measurement& m) {
      return std::pair(!m.is_full, m.time.peer / m.time.ours);
    };
    if (!found || rank(m) < rank(found->second)) found = &entry;
  }
  return found;
}

double Row::our_time() const {
  if (const auto* peer = best()) return peer->second.time.ours;
  const auto alone = peers.find("");
  return alone == peers.end() ? 0 : alone->second.time.ours;
}

bool Row::ours_crashed() const {
  return std::any_of(peers.begin(), peers.end(),
                     [](const auto& entry) { return entry.second.state == State::ours_crashed; });
}

namespace {

/// A rate in units of 1e9, or a dash where there is nothing to count.
std::string giga(double amount, double seconds) {
  char text[32] = "-";
  if (amount > 0 && seconds > 0) std::snprintf(text, sizeof text, "%.2f", amount / seconds / 1e9);
  return text;
}

void print_limits(const Limits& limits) {
  std::printf("SSE2 peak: %.1f GFLOP/s double, %.1f single\n", limits.peak_double / 1e9,
              limits.peak_single / 1e9);
  std::printf("GB/s, 128-bit:");
  for (const MemoryLevel& level : limits.levels) {
    std::printf("  %s read %.0f copy %.0f update %.0f", level.name.c_str(), level.read / 1e9,
                level.copy / 1e9, level.update / 1e9);
  }
  std::printf("\n\n");
}

void print_row(const Row& row, const Limits& limits) {
  const Case& c = *row.c;
  std::printf("%-26s", c.name.c_str());
  if (row.ours_crashed()) {
    std::printf("  OURS CRASHED\n");
    return;
  }
  const double ours = row.our_time();
  if (ours == 0) {
    std::printf("  not timed\n");
    return;
  }
  std::printf(" %8s %7s", giga(c.work.bytes(), ours).c_str(), giga(c.work.flops, ours).c_str());
  if (const auto* peer = row.best()) {
    const double theirs = peer->second.time.peer;
    std::printf("  %-22s %8s %7s %6.2f", peer->first.c_str(), giga(c.work.bytes(), theirs).c_str(),
                giga(c.work.flops, theirs).c_str(), theirs / ours);
  } else {
    std::printf("  %-22s %8s %7s %6s", "none", "-", "-", "-");
  }
  std::printf(" %5.0f %%\n", 100 * limits.shortest_time(c.work) / ours);
}

/// Peers with cases in a state: those with all cases together, the others in a line each.
void print_notes(const Results& results, State state, const char* what) {
  std::map<std::string, std::vector<std::string>> names;
  for (const Row& row : results.rows) {
    for (const auto& [peer, m] : row.peers) {
      if (m.state == state && !peer.empty()) names[peer].push_back(row.c->name);
    }
  }
  std::string always;
  for (const auto& [peer, cases] : names) {
    if (cases.size() == results.rows.size()) {
      always += (always.empty() ? "" : ", ") + peer;
      continue;
    }
    std::printf("%s in %zu cases: %s:", what, cases.size(), peer.c_str());
    const size_t shown = std::min<size_t>(cases.size(), 4);
    for (size_t i = 0; i < shown; ++i) std::printf(" %s", cases[i].c_str());
    std::printf(shown < cases.size() ? " ...\n" : "\n");
  }
  if (!always.empty()) std::printf("%s in every case: %s\n", what, always.c_str());
}

}  // namespace

void print_table(const Results& results) {
  print_limits(results.limits);
  std::printf("%-26s %8s %7s  %-22s %8s %7s %6s %7s\n", "case", "GB/s", "GF/s", "best peer", "GB/s",
              "GF/s", "ratio", "limit");
  double log_sum = 0;
  int compared = 0;
  for (const Row& row : results.rows) {
    print_row(row, results.limits);
    if (const auto* peer = row.best(); peer && row.our_time() > 0) {
      log_sum += std::log(peer->second.time.peer / row.our_time());
      ++compared;
    }
  }
  std::printf("\n");
  if (compared > 1) {
    std::printf("ratio, geometric mean of %d cases: %.2f\n", compared,
                std::exp(log_sum / compared));
  }
  print_notes(results, State::wrong, "wrong result, no time,");
  print_notes(results, State::peer_crashed,
              "crashed (given up after three times), counts as absent,");
  for (const std::string& name : results.peers.missing) {
    std::printf("not installed: %s\n", name.c_str());
  }
}

void write_json(const Results& results, FILE* file) {
  std::fprintf(file, "{\n  \"peak_double\": %.6g,\n  \"peak_single\": %.6g,\n  \"memory\": [",
               results.limits.peak_double, results.limits.peak_single);
  const char* separator = "";
  for (const MemoryLevel& level : results.limits.levels) {
    std::fprintf(file,
                 "%s\n    {\"level\": \"%s\", \"read\": %.6g, \"copy\": %.6g, \"update\": %.6g}",
                 separator, level.name.c_str(), level.read, level.copy, level.update);
    separator = ",";
  }
  std::fprintf(file, "\n  ],\n  \"cases\": [");
  separator = "";
  for (const Row& row : results.rows) {
    std::fprintf(file,
                 "%s\n    {\"name\": \"%s\", \"bytes\": %.17g, \"flops\": %.17g, \"limit\": %.6g, "
                 "\"peers\": [",
                 separator, row.c->name.c_str(), row.c->work.bytes(), row.c->work.flops,
                 results.limits.shortest_time(row.c->work));
    static const char* const states[] = {"timed", "wrong", "absent", "crashed", "ours crashed"};
    const char* comma = "";
    for (const auto& [peer, m] : row.peers) {
      std::fprintf(
          file, "%s\n      {\"peer\": \"%s\", \"state\": \"%s\", \"ours\": %.6g, \"theirs\": %.6g}",
          comma, peer.c_str(), states[static_cast<int>(m.state)], m.time.ours, m.time.peer);
      comma = ",";
    }
    std::fprintf(file, "]}");
    separator = ",";
  }
  std::fprintf(file, "\n  ]\n}\n");
}

}  // namespace jex::bench
