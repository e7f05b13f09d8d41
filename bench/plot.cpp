// Pictures of a run, drawn by gnuplot: bars of the ratio, one for each routine; for products of
// matrices and for transforms the rates over the order, ours, the peers' and the limit.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "results.h"

namespace jex::bench {
namespace {

/// "ddot/1000/x+1" -> {"ddot", "1000/x+1"}
std::pair<std::string, std::string> split(const std::string& name) {
  const size_t slash = name.find('/');
  return {name.substr(0, slash), slash == std::string::npos ? "" : name.substr(slash + 1)};
}

std::string file_name(std::string text) {
  for (char& c : text) {
    if (c == '/' || c == ',') c = '-';
  }
  return text;
}

bool draw(const std::string& title, const std::vector<const Row*>& rows, const std::string& stem) {
  std::ofstream data(stem + ".dat"), script(stem + ".gp");
  for (const Row* row : rows) {
    data << split(row->c->name).first << ' ' << row->best()->second.time.peer / row->our_time()
         << '\n';
  }
  script << "set terminal svg size " << 160 + 22 * rows.size() << ",400 background '#ffffff'\n"
         << "set output '" << stem << ".svg'\n"
         << "set title '" << title << "'\n"
         << "set ylabel 'ours / best peer'\nset yrange [0:*]\nset key off\n"
         << "set xtics rotate by -60\nset grid y\nset style fill solid 0.8\nset boxwidth 0.7\n"
         << "plot '" << stem << ".dat' using 2:xtic(1) with boxes linecolor '#3465a4', "
         << "1 with lines linecolor '#cc0000'\n";
  data.close();
  script.close();
  if (!data || !script) return false;
  return std::system(("gnuplot '" + stem + ".gp'").c_str()) == 0;
}

/// "sgemm/200/NN" -> {"sgemm/NN", 200}
std::pair<std::string, int> split_order(const std::string& name) {
  const auto [routine, rest] = split(name);
  const size_t slash = rest.find('/');
  return {slash == std::string::npos ? routine : routine + rest.substr(slash),
          std::atoi(rest.c_str())};
}

/// Core types of one library are one curve.
std::string library_of(const std::string& peer) { return peer.substr(0, peer.find(':')); }

bool draw_rates(const std::string& title, const std::vector<const Row*>& rows, double peak,
                const std::string& stem) {
  std::map<std::string, std::map<int, double>> curves;  // GFLOP/s by order
  for (const Row* row : rows) {
    const int n = split_order(row->c->name).second;
    curves["jex_q7t"][n] = row->c->work.flops / row->our_time() * 1e-9;
    for (const auto& [peer, measured] : row->peers) {
      if (peer.empty() || measured.state != State::timed) continue;
      double& rate = curves[library_of(peer)][n];
      rate = std::max(rate, row->c->work.flops / measured.time.peer * 1e-9);
    }
  }
  std::ofstream data(stem + ".dat"), script(stem + ".gp");
  script << "set terminal svg size 720,440 background '#ffffff'\nset output '" << stem << ".svg'\n"
         << "set title '" << title << "'\nset xlabel 'n'\nset ylabel 'GFLOP/s'\n"
         << "set logscale x 2\nset yrange [0:*]\nset key bottom right\nset grid\nplot ";
  int index = 0;
  for (const auto& [name, points] : curves) {
    for (const auto& [n, rate] : points) data << n << ' ' << rate << '\n';
    data << "\n\n";
    script << "'" << stem << ".dat' index " << index++ << " with linespoints title '" << name
           << "', ";
  }
  script << peak * 1e-9 << " with lines linecolor '#888888' title 'SSE2 peak'\n";
  data.close();
  script.close();
  if (!data || !script) return false;
  return std::system(("gnuplot '" + stem + ".gp'").c_str()) == 0;
}

}  // namespace

void draw_plots(const Results& results, const std::string& folder) {
  if (std::system("command -v gnuplot >/dev/null") != 0) {
    std::printf("no plots: gnuplot is not installed (package gnuplot-nox)\n");
    return;
  }
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  std::map<std::string, std::vector<const Row*>> groups;
  for (const Row& row : results.rows) {
    if (row.best() && row.c->family != "fft")
      groups[row.c->family + "/" + split(row.c->name).second].push_back(&row);
  }
  const auto report = [](bool drawn, const std::string& stem) {
    std::printf(drawn ? "plot: %s.svg\n" : "no plot: %s.svg could not be drawn\n", stem.c_str());
  };
  for (const auto& [group, rows] : groups) {
    const std::string stem = folder + "/" + file_name(group);
    report(draw(group, rows, stem), stem);
  }
  std::map<std::string, std::vector<const Row*>> curves;
  for (const Row& row : results.rows)
    if ((row.c->family == "level3" || row.c->family == "fft") && row.our_time() > 0)
      curves[split_order(row.c->name).first].push_back(&row);
  for (const auto& [name, rows] : curves) {
    const std::string stem = folder + "/rates-" + file_name(name);
    const bool is_double = rows.front()->c->work.is_double;
    const Limits& limits = results.limits;
    report(draw_rates(name, rows, is_double ? limits.peak_double : limits.peak_single, stem), stem);
  }
}

}  // namespace jex::bench
