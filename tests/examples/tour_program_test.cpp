// jex-tour as its users run it: default data, own files, unusable files, a missing module.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "examples/program.h"

namespace jex::test {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
const char *const program_name = "jex-tour.exe", *const library_folder = "bin",
                  *const library_start = "jex_", *const library_end = ".dll",
                  *const module_name = "jex_q7t.dll";
#else
const char *const program_name = "jex-tour", *const library_folder = "lib",
                  *const library_start = "libjex_", *const library_end = ".so",
                  *const module_name = "libjex_q7t.so";
#endif

// The period in the table of checks, NaN if there is none.
double period_in(const std::string& out) {
  static const std::regex row(R"(\n  period +([-+.0-9e]+) )");
  std::smatch match;
  return std::regex_search(out, match, row) ? std::stod(match[1]) : std::nan("");
}

// The points of a curve in a picture, in pixels.
std::vector<std::pair<double, double>> points_of(const std::string& svg, const std::string& curve) {
  const size_t element = svg.find("<polyline class=\"" + curve + "\"");
  if (element == svg.npos) return {};
  const size_t begin = svg.find("points=\"", element) + 8;
  std::istringstream stream(svg.substr(begin, svg.find('"', begin) - begin));
  std::vector<std::pair<double, double>> points;
  for (double x, y; stream >> x && stream.get() == ',' && stream >> y;) points.push_back({x, y});
  return points;
}

std::string sinusoid(int n, double step, double period, double offset, double amplitude) {
  std::string content = "time,value\n";
  char line[100];
  for (int i = 0; i < n; ++i) {
    const double t = i * step;
    snprintf(line, sizeof line, "%.17g,%.17g\n", t,
             offset + amplitude * std::sin(2 * M_PI * t / period));
    content += line;
  }
  return content;
}

TEST(Program, FindsTheSunspotCycle) {
  const Folder folder;
  const Outcome outcome = tour(folder, {});
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
  EXPECT_EQ(outcome.err, "");
  const double period = period_in(outcome.out);
  EXPECT_GT(period, 10) << outcome.out;
  EXPECT_LT(period, 12) << outcome.out;
  EXPECT_NE(outcome.out.find("309, from 1700 to 2008 in steps of 1"), std::string::npos);
  EXPECT_NE(outcome.out.find("written: " + folder / "out/index.html"), std::string::npos);
}

TEST(Program, DrawsEachValue) {
  const Folder folder;
  ASSERT_EQ(tour(folder, {}).status, 0);
  const std::string file = folder / "out/level1.svg", svg = read_file(file);
  expect_well_formed(folder, file);
  const auto series = points_of(svg, "series");
  ASSERT_EQ(series.size(), 309u);
  EXPECT_EQ(points_of(svg, "autocorrelation").size(), 156u);
  size_t top = 0;  // pixels count downward
  for (size_t i = 1; i < series.size(); ++i) {
    EXPECT_GT(series[i].first, series[i - 1].first) << i;
    if (series[i].second < series[top].second) top = i;
  }
  EXPECT_EQ(1700 + top, 1957u);  // the year of the largest number
}

TEST(Program, SolvesPoissonsEquationToSecondOrder) {
  const Folder folder;
  const Outcome outcome = tour(folder, {"--family", "poisson"});
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
  static const std::regex row(R"(1025 x 1025 +error ([0-9.e-]+), order ([0-9.]+))");
  std::smatch match;
  ASSERT_TRUE(std::regex_search(outcome.out, match, row)) << outcome.out;
  EXPECT_LT(std::stod(match[1]), 1e-6);
  EXPECT_NEAR(std::stod(match[2]), 2, 0.01);
  EXPECT_NE(outcome.out.find("million a second, unknowns"), std::string::npos);
  const std::string file = folder / "out/poisson.svg", svg = read_file(file);
  expect_well_formed(folder, file);
  size_t bands = 0;
  for (size_t at = 0; (at = svg.find("class=\"band\"", at)) != svg.npos; ++at) ++bands;
  EXPECT_EQ(bands, 24u);
  EXPECT_EQ(points_of(read_file(folder / "out/order.svg"), "error").size(), 5u);
}

TEST(Program, FindsThePeriodOfASinusoid) {
  struct Wave {
    int n;
    double step, period, offset, amplitude;
  };
  for (const Wave& w :
       {Wave{240, 1, 12, 0, 1}, Wave{301, 0.25, 3.125, 5, 2}, Wave{2000, 1e-3, 0.0473, -1e6, 1e-3},
        Wave{500, 10, 333, 0, 1e100}, Wave{97, 1, 7.5, 0, 1e-100}, Wave{64, 1, 4, 1, 1}}) {
    const Folder folder;
    const std::string file =
        folder.write("wave.csv", sinusoid(w.n, w.step, w.period, w.offset, w.amplitude));
    const Outcome outcome = tour(folder, {file});
    EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
    // The factor 1 - k / n in the autocorrelation pulls its peak to shorter lags.
    EXPECT_NEAR(period_in(outcome.out) / w.period, 1, 0.015) << outcome.out;
    EXPECT_EQ(points_of(read_file(folder / "out/level1.svg"), "series").size(), size_t(w.n));
    expect_well_formed(folder, folder / "out/level1.svg");
  }
}

TEST(Program, FindsNoPeriodInALine) {
  const Folder folder;
  const std::string file =
      folder.write("line.csv", "1,1\n2,2\n3,3\n4,4\n5,5\n6,6\n7,7\n8,8\n9,9\n");
  const Outcome outcome = tour(folder, {file});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("no local peak"), std::string::npos) << outcome.out;
  EXPECT_TRUE(std::isnan(period_in(outcome.out)));
}

TEST(Program, ReadsTheSameFromEachSpelling) {
  const char* const spellings[] = {
      "1,5\n2,7\n3,4\n4,1\n5,5\n6,7.5\n7,3\n8,1\n9,5\n10,8\n",
      "1,5\n2,7\n3,4\n4,1\n5,5\n6,7.5\n7,3\n8,1\n9,5\n10,8",
      "\xef\xbb\xbf\"T, s\",\"a \"\"v\"\"\"\r\n1,5\r\n2,7\r\n3,4\r\n4,1\r\n5,5\r\n6,7.5\r\n7,3\r\n"
      "8,1\r\n9,5\r\n10,8\r\n\r\n \r\n",
      "  t ,\tv \n 1 , 5\n2,7e0\n 3,+4\n\"4\",\"1\"\n5,.5e1\n6,75E-1\n7,3.\n8,0.1e+1\n9,5\n1e1,8 "
      "\n\n"};
  std::string first;
  for (const char* spelling : spellings) {
    const Folder folder;
    const Outcome outcome = tour(folder, {"--family", "level1", folder.write("s.csv", spelling)});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const size_t begin = outcome.out.find("  values"), end = outcome.out.find("\n  rate");
    ASSERT_TRUE(begin < end && end != std::string::npos) << outcome.out;
    const std::string results = outcome.out.substr(begin, end - begin);
    if (first.empty()) first = results;
    EXPECT_EQ(results, first) << spelling;
  }
}

TEST(Program, WritesForeignLabelsAsXml) {
  const Folder folder;
  const std::string rows = "1,5\n2,7\n3,4\n4,1\n5,5\n6,7\n7,3\n8,1\n9,5\n";
  for (const char* header : {"<A&B>,]]>\n", "caf\xe9,\x01\x02\n", "\"x\"\"'\",caf\xc3\xa9\n"}) {
    const Outcome outcome = tour(folder, {folder.write("s.csv", header + rows)});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    expect_well_formed(folder, folder / "out/level1.svg");
    expect_well_formed(folder, folder / "out/index.html");
  }
}

TEST(Program, RefusesUnusableFiles) {
  const std::string good = "1,5\n2,7\n3,4\n4,1\n5,5\n6,7\n7,3\n8,1\n";
  struct Bad {
    std::string content;
    int line;
    const char* reason;
  };
  const Bad table[] = {
      {"", 1, "0 value"},
      {"\n\n\n", 1, "0 value"},
      {"YEAR,VALUE\n", 1, "0 value"},
      {"1,5\n2,7\n3,4\n4,1\n5,5\n6,7\n7,3\n", 7, "7 value"},
      {"a,b\n" + good + "9,x\n", 10, "'x' is not a number"},
      {good + "nine,4\n", 9, "'nine' is not a number"},
      {"1,x\n" + good, 1, "'x' is not a number"},
      {"a,b\nc,d\n" + good, 2, "second header"},
      {good + "9,nan\n", 9, "out of range"},
      {good + "9,-inf\n", 9, "out of range"},
      {"inf,1\n" + good, 1, "out of range"},
      {good + "9,1e999\n", 9, "out of range"},
      {good + "9,-2e150\n", 9, "out of range"},
      {good + "9,0x10\n", 9, "not a number"},
      {good + "9,+-4\n", 9, "not a number"},
      {good + "9,4 5\n", 9, "not a number"},
      {good + "9,1.2.3\n", 9, "not a number"},
      {good + "9\n", 9, "1 column"},
      {"5\n7\n4\n1\n5\n7\n3\n1\n", 1, "1 column"},
      {good + "9,4,4\n", 9, "3 column"},
      {good + "9;4\n", 9, "1 column"},
      {good + "9,\n", 9, "column 2 is empty"},
      {good + ",4\n", 9, "column 1 is empty"},
      {good + "\"9,4\n", 9, "quote"},
      {good + std::string("9,4\0\n", 5), 9, "zero byte"},
      {good + "10,4\n", 9, "unequal steps"},
      {"1,5\n2,7\n4,4\n5,1\n6,5\n7,7\n8,3\n9,1\n", 3, "unequal steps"},
      {"1,5\n2,7\n3,4\n3,1\n5,5\n6,7\n7,3\n8,1\n", 4, "unequal steps"},
      {good + "\n8,4\n", 10, "unequal steps"},
      {"8,5\n7,7\n6,4\n5,1\n4,5\n3,7\n2,3\n1,1\n", 2, "does not increase"},
      {"1,5\n1,7\n1,4\n1,1\n1,5\n1,7\n1,3\n1,1\n", 2, "does not increase"},
      {"1,5\n2,5\n3,5\n4,5\n5,5\n6,5\n7,5\n8,5\n", 8, "equal"},
      {"1,0\n2,0\n3,1e-200\n4,0\n5,0\n6,0\n7,0\n8,0\n", 8, "1e-140"},
      {"\xff\xfe" + std::string("1\0,\0005\0\n\0", 8), 1, "zero byte"},
  };
  for (const Bad& bad : table) {
    SCOPED_TRACE(bad.content);
    const Folder folder;
    const std::string file = folder.write("bad.csv", bad.content);
    const Outcome outcome = tour(folder, {file});
    expect_one_line(outcome, 2, file + ":" + std::to_string(bad.line) + ": ");
    EXPECT_NE(outcome.err.find(bad.reason), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(folder / "out"));
  }
}

// Matrices of each kind: product and, where the diagonal is whole, a solve.
TEST(Program, ReadsMatrices) {
  const std::string header = "%%MatrixMarket matrix coordinate ";
  const struct {
    std::string content, found;
  } table[] = {
      {header + "real symmetric\n% a comment\n\n3 3 4\n1 1 4\n2 2 4.5\n3 3 +4\n3 1 -1e0\n",
       "A x - b"},
      {header + "real general\r\n3 3 5\r\n1 1 2\n2 2 3\n3 3 4\n1 3 9\n1 3 -8\n", "L z - b"},
      {header + "pattern general\n2 5 2\n1 5\n2 1\n", "the diagonal is not whole"},
      {header + "integer skew-symmetric\n3 3 2\n2 1 7\n3 2 -1\n", "skew-symmetric"},
      {"%%matrixmarket MATRIX Coordinate Real General\n1 1 1\n1 1 2\n", "1 x 1, 1 stored"},
  };
  for (const auto& row : table) {
    const Folder folder;
    const std::string file = folder.write("a.mtx", row.content);
    const Outcome outcome = tour(folder, {"--family", "sparse", file});
    EXPECT_EQ(outcome.status, 0) << row.content << outcome.out << outcome.err;
    EXPECT_NE(outcome.out.find(row.found), std::string::npos) << row.content << outcome.out;
    expect_well_formed(folder, folder / "out/structure.svg");
  }
}

TEST(Program, RefusesUnusableMatrices) {
  const std::string header = "%%MatrixMarket matrix coordinate real ";
  const struct {
    std::string content;
    int line;
    const char* reason;
  } table[] = {
      {"", 1, "header"},
      {"1,2\n", 1, "header"},
      {"%%MatrixMarket matrix array real general\n", 1, "coordinates"},
      {"%%MatrixMarket matrix coordinate complex general\n", 1, "complex"},
      {header + "hermitian\n", 1, "hermitian"},
      {header + "general\n", 1, "sizes"},
      {header + "general\n0 3 1\n", 2, "sizes out of range"},
      {header + "general\n3 3 99999999999\n", 2, "not a number"},
      {header + "symmetric\n2 3 1\n1 1 1\n", 2, "square"},
      {header + "general\n2 2 1\n1 3 1\n", 3, "outside"},
      {header + "general\n2 2 1\n0 1 1\n", 3, "outside"},
      {header + "general\n2 2 1\n1 1\n", 3, "not an entry"},
      {header + "general\n2 2 1\n1 1 nan\n", 3, "out of range"},
      {header + "general\n2 2 1\n1 1 x\n", 3, "'x' is not a number"},
      {header + "general\n2 2 2\n1 1 1\n", 3, "fewer"},
      {header + "general\n2 2 1\n1 1 1\n2 2 1\n", 4, "more"},
      {header + "symmetric\n2 2 1\n1 2 1\n", 3, "above"},
      {header + "skew-symmetric\n2 2 1\n1 1 1\n", 3, "on the diagonal"},
  };
  for (const auto& bad : table) {
    SCOPED_TRACE(bad.content);
    const Folder folder;
    const std::string file = folder.write("bad.mtx", bad.content);
    const Outcome outcome = tour(folder, {"--family", "sparse", file});
    expect_one_line(outcome, 2, file + ":" + std::to_string(bad.line) + ": ");
    EXPECT_NE(outcome.err.find(bad.reason), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(folder / "out"));
  }
}

TEST(Program, RefusesFilesThatCannotBeRead) {
  const Folder folder;
  expect_one_line(tour(folder, {folder / "absent.csv"}), 2, folder / "absent.csv:1: ");
  expect_one_line(tour(folder, {folder / "."}), 2, "cannot be ");
  expect_one_line(tour(folder, {"/dev/zero"}), 2, "/dev/zero:1: ");
  std::string many;
  for (int i = 0; i < 32769; ++i) many += std::to_string(i) + "," + std::to_string(i % 7) + "\n";
  expect_one_line(tour(folder, {folder.write("many.csv", many)}), 2, "many.csv:32769: ");
}

TEST(Program, RefusesWrongArguments) {
  const Folder folder;
  const auto refused = [&](const std::vector<std::string>& arguments, const std::string& named) {
    expect_one_line(tour(folder, arguments), 2, named);
  };
  refused({"--colour"}, "--colour");
  refused({"-h"}, "-h");
  refused({"--family"}, "--family");
  refused({"--family", "level9"}, "level9");
  refused({"--out"}, "--out");
  refused({"--out", ""}, "--out");
  refused({"a.csv", "b.csv"}, "more than one file");
  refused({""}, "empty");
  refused({"--json"}, "--json");
  refused({"--family", "integers", "--json", folder / "absent/../x/"}, "cannot be");
  refused({"--threads", "0"}, "--threads is a whole number from 1 to 256, not 0");
  for (const char* threads : {"257", "two", "1.5", "-1", "+1", "99999999999"})
    refused({"--threads", threads}, std::string("not ") + threads);
  refused({"--size", "100"}, "--size needs --family");
  refused({"--family", "level1", "--size", "100"}, "level1 has no --size");
  refused({"--family", "poisson", "--size", "63"}, "64 to 2048, not 63");
  refused({"--size", "1e3", "--family", "poisson"}, "not 1e3");
  refused({"--family", "poisson", "a.csv"}, "the family poisson does not read a.csv");
  refused({"--family", "sparse", "a.csv"}, "sparse does not read");
  refused({"a.mtx", "--family", "level1"}, "level1 does not read");
  folder.write("taken", "");
  refused({"--out", folder / "taken"}, folder / "taken");
}

TEST(Program, TellsItsUsage) {
  const Folder folder;
  const Outcome outcome = tour(folder, {"--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  for (const char* word : {"--help", "--family NAME", "--size N", "--threads N", "--json FILE",
                           "--out DIR", "FILE", "level1", "memory", "64 to 2048"})
    EXPECT_NE(outcome.out.find(word), std::string::npos) << word;
}

#ifndef _WIN32
TEST(Program, ReportsALostStandardOutput) {
  const Folder folder;
  const Outcome outcome = run(folder, {JEX_TOUR_PROGRAM, "--out", folder / "out"}, "/dev/full");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("standard output"), std::string::npos) << outcome.err;
}
#endif

// A tree as it is installed, with the libraries that are wanted; tells the program in it.
std::string install(const Folder& folder, bool with_module) {
  for (const char* part : {"bin", "lib", "share/jex"}) fs::create_directories(folder / part);
  for (const auto& entry : fs::directory_iterator(fs::path(JEX_CORE_FILE).parent_path())) {
    const std::string name = entry.path().filename().string();
    if (!name.ends_with(library_end) || (!with_module && name == module_name)) continue;
    if (name.starts_with(library_start) || name.starts_with("libgmp"))
      fs::copy(entry.path(), folder / library_folder);
  }
  const std::string program = folder / ("bin/" + std::string(program_name));
  fs::copy(JEX_TOUR_PROGRAM, program);
  return program;
}

TEST(Program, ReportsAMissingModule) {
  const Folder folder;
  const std::string program = install(folder, false);
  expect_one_line(run(folder, {program, "--out", folder / "out"}), 1, module_name);
  EXPECT_EQ(run(folder, {program, "--help"}).status, 0);
}

// In a tree as it is installed the data beside the program comes first.
TEST(Program, TakesTheInstalledData) {
  const Folder folder;
  const std::string program = install(folder, true);
  fs::copy(JEX_SUNSPOTS, folder / "share/jex/sunspots.csv");
  const Outcome outcome = run(folder, {program, "--out", folder / "out"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(outcome.out.find(folder / "share/jex/sunspots.csv"), std::string::npos) << outcome.out;
}

TEST(XmlCheck, TellsGoodFromBroken) {
  EXPECT_TRUE(well_formed("<?xml version=\"1.0\"?>\n<a b=\"c\"><d/>text &amp; more</a>\n"));
  EXPECT_TRUE(well_formed("<!DOCTYPE html>\n<html lang=\"en\"><p>text</p></html>"));
  for (const char* broken : {"", "text", "<a>", "<a></b>", "<a/><b/>", "<a b=c/>", "<a b=\"<\"/>",
                             "<a>&</a>", "<a>&x;</a>", "<a><b></a></b>", "</a>", "<a", "<a/>tail"})
    EXPECT_FALSE(well_formed(broken)) << broken;
}

}  // namespace
}  // namespace jex::test
