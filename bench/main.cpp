// jex-bench: the module's kernels beside the peers, interleaved, as one table.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>

#include <jex/core.h>

#include "options.h"
#include "results.h"

namespace {

using namespace jex::bench;

int complain(const std::string& what) {
  std::fprintf(stderr, "jex-bench: %s\n", what.c_str());
  return 2;
}

void show_progress(const char* stage, const std::string& peer) {
  if (isatty(STDERR_FILENO)) std::fprintf(stderr, "\r\033[K%s %s", stage, peer.c_str());
}

void record(const Measurements& found, const std::string& peer, std::vector<Row>& rows) {
  for (Row& row : rows) {
    const auto m = found.find(row.c->name);
    if (m == found.end()) continue;
    // Once wrong or crashed is always wrong or crashed.
    auto [place, is_new] = row.peers.emplace(peer, m->second);
    if (!is_new && place->second.state == State::timed) place->second = m->second;
  }
}

/// The peers worth a full measurement of the row: the best of each library, where it comes near
/// the best of all. The core types of one library share many kernels and must not crowd out others.
std::vector<std::string> finalists(const Row& row, const Peers& peers) {
  constexpr double near = 1.5;
  std::map<std::string, std::pair<double, std::string>> by_library;
  double best = std::numeric_limits<double>::infinity();
  for (const Peer& peer : peers.installed) {
    const auto m = row.peers.find(peer.name);
    if (m == row.peers.end() || m->second.state != State::timed) continue;
    const double ratio = m->second.time.peer / m->second.time.ours;
    best = std::min(best, ratio);
    auto [place, is_new] = by_library.try_emplace(peer.path, ratio, peer.name);
    if (!is_new) place->second = std::min(place->second, {ratio, peer.name});
  }
  std::vector<std::string> names;
  for (const auto& [library, entry] : by_library) {
    if (entry.first <= near * best) names.push_back(entry.second);
  }
  return names;
}

/// Every peer shortly, then the best of each case with full effort, then what has no peer.
void measure(Results& results, const Options& options) {
  const Effort brief = options.quick ? Effort{2, 5e-4} : Effort{2, 1e-3};
  const Effort full = options.quick ? Effort{7, 1.5e-3} : Effort{11, 3e-3};
  std::vector<const Case*> all, alone;
  for (const Row& row : results.rows) all.push_back(row.c);
  for (const Peer& peer : results.peers.installed) {
    show_progress("trying", peer.name);
    record(run_session(peer, all, brief), peer.name, results.rows);
  }
  std::map<std::string, std::vector<const Case*>> chosen;
  for (const Row& row : results.rows) {
    const auto names = finalists(row, results.peers);
    for (const std::string& name : names) chosen[name].push_back(row.c);
    if (names.empty()) alone.push_back(row.c);
  }
  for (const Peer& peer : results.peers.installed) {
    show_progress("timing", peer.name);
    Measurements found = run_session(peer, chosen[peer.name], full);
    for (auto& [name, m] : found) m.is_full = true;
    record(found, peer.name, results.rows);
  }
  show_progress("timing", "cases without a peer");
  record(run_session({"", "", ""}, alone, full), "", results.rows);
  show_progress("", "");
}

/// Opened before anything is measured, so that a run is not lost to a path that cannot be written.
struct Report {
  const std::string& path;
  void (*write)(const Results&, FILE*);
  FILE* file = nullptr;

  bool open() { return path.empty() || (file = std::fopen(path.c_str(), "w")); }
  bool finish(const Results& results) {
    if (!file) return true;
    write(results, file);
    return std::fclose(file) == 0;
  }
};

int run(const Options& options) {
  const std::vector<Case> cases = all_cases();
  Results results;
  for (const Case* c : select_cases(cases, options)) results.rows.push_back({c, {}});
  if (results.rows.empty()) return complain("no case matches (--list prints the names)");
  if (options.list) {
    for (const Row& row : results.rows) std::printf("%s\n", row.c->name.c_str());
    return 0;
  }
  if (jex_core_load() != 0) return complain(jex_core_error());
  Report reports[] = {{options.json, write_json}, {options.markdown, write_markdown}};
  for (Report& report : reports)
    if (!report.open())
      return complain("cannot write " + report.path + ": " + std::strerror(errno));
  results.peers = find_peers();
  for (const std::string& path : options.libraries) {
    results.peers.installed.push_back({std::filesystem::path(path).filename(), path, ""});
  }
  std::erase_if(results.peers.installed, [&](const Peer& p) { return !options.selects(p); });
  pin_to_one_processor();
  results.limits = measure_limits();
  measure(results, options);
  // Again, for the better of both: others' load must not lower the limits.
  results.limits.raise_to(measure_limits());
  print_table(results);
  for (Report& report : reports)
    if (!report.finish(results)) return complain("cannot write " + report.path);
  if (options.plot)
    draw_plots(results, std::filesystem::path(program_folder()).parent_path() / "plots");
  const bool crashed = std::any_of(results.rows.begin(), results.rows.end(),
                                   [](const Row& row) { return row.ours_crashed(); });
  return crashed ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], session_flag) == 0) return serve_session(argc, argv);
  Options options;
  std::string mistake;
  if (!parse(argc, argv, options, mistake)) return complain(mistake);
  if (options.help) {
    std::fputs(usage, stdout);
    return 0;
  }
  return run(options);
}
