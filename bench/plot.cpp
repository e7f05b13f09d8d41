// Pictures of a run, drawn by gnuplot: bars of the ratio, one for each routine.
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
    if (row.best()) groups[row.c->family + "/" + split(row.c->name).second].push_back(&row);
  }
  for (const auto& [group, rows] : groups) {
    const std::string stem = folder + "/" + file_name(group);
    const bool drawn = draw(group, rows, stem);
    std::printf(drawn ? "plot: %s.svg\n" : "no plot: %s.svg could not be drawn\n", stem.c_str());
  }
}

}  // namespace jex::bench
