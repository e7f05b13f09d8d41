// Parameters, statuses and messages of the solvers.
#include <jex/core_imports.h>

#include "support/process.h"
#include "pdepl/helmholtz.h"

#include <filesystem>

using namespace jex::test;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

constexpr char log_name[] = "JEX_Poisson_Library_Log.txt";
const Box square = {2, {0, 0, 0}, {1, 2, 0}, {8, 4, 0}};
const Box cube = {3, {0, 0, 0}, {1, 2, 3}, {4, 6, 5}};

std::string text(jex_int number, const char* argument = nullptr) {
  char line[600];
  jex_serv_jex_get_msg(line, sizeof line, number, argument ? 1 : 0, argument);
  return std::string(line) + "\n";
}

TEST(HelmholtzInit, CodesOfTheSides) {
  const struct {
    const char* letters;
    jex_int stat, code;
  } cases[] = {{"DDDD", 0, 0},    {"NNNN", 0, 15},        {"NDND", 0, 10},
               {"ndnd", 0, 10},   {"DDDX", -99999, -100}, {"XDDD", 0, -100},
               {"NXYD", 0, -192}, {"XXXX", -99999, -400}};
  for (const auto& c : cases) {
    Helmholtz<double> p(square, c.letters, 3);
    EXPECT_EQ(p.stat, c.stat) << c.letters;
    EXPECT_EQ(p.ipar[3], c.code) << c.letters;
    EXPECT_EQ(p.dpar[0], c.stat ? -7 : 1) << c.letters;
    EXPECT_EQ(p.ipar[10], 8);
    EXPECT_EQ(p.ipar[11], 4);
  }
  const struct {
    const char* letters;
    jex_int stat, code;
  } boxes[] = {{"DDDDDD", 0, 0},         {"NDNDND", 0, 42},        {"NNNNNN", 0, 63},
               {"DDDXDD", -99999, -100}, {"DDDDDX", -99999, -100}, {"DDDDXN", 0, -99},
               {"DXDDDD", 0, -100}};
  for (const auto& c : boxes) {
    Helmholtz<float> p(cube, c.letters, 3);
    EXPECT_EQ(p.stat, c.stat) << c.letters;
    EXPECT_EQ(p.ipar[3], c.code) << c.letters;
    EXPECT_EQ(p.ipar[12], 5);
  }
}

TEST(HelmholtzCommit, PlacesOfTheTables) {
  Helmholtz<double> p(square, "NNDN", 3);
  EXPECT_EQ(p.dpar[1], 2);
  EXPECT_EQ(p.dpar[3], 3);
  EXPECT_EQ(p.dpar[4], 1e-10);
  p.ipar[2] = -1;
  p.ipar[22] = 2;
  ASSERT_EQ(p.commit(), 0);
  EXPECT_EQ(p.dpar[1], 0.5);
  const jex_int places[] = {6, 14, 15, 27};
  EXPECT_EQ(p.ipar[13], places[0]);
  EXPECT_EQ(p.ipar[14], places[1]);
  EXPECT_EQ(p.ipar[17], places[2]);
  EXPECT_EQ(p.ipar[18], places[3]);
  const jex_int transform[] = {8, 1, -1, 0, 0, 1, 0, 1, 1, 2, 0};
  EXPECT_TRUE(std::equal(transform, transform + 11, p.ipar + 40));

  Helmholtz<double> box(cube, "DDDNDN", 0);
  ASSERT_EQ(box.commit(), 0);
  const jex_int of_box[] = {6, 10, 11, 17, 18, 24, 25, 34};
  EXPECT_TRUE(std::equal(of_box, of_box + 8, box.ipar + 13));
  EXPECT_EQ(box.ipar[45], 0);
  EXPECT_EQ(box.ipar[65], 2);
}

struct Case {
  const char* name;
  const Box* box;
  const char* letters;
  double q;
  jex_int stat;
  bool is_error;
  std::vector<std::pair<jex_int, const char*>> lines;
  std::function<void(Helmholtz<double>&)> set;             // before the commit
  std::function<void(Helmholtz<double>&)> then = nullptr;  // after a silent commit
};

const std::vector<Case> cases = {
    {"sides", &square, "XDDD", 0, -100, true, {{536, "-100"}, {537, nullptr}}, nullptr},
    {"nx",
     &square,
     "DDDD",
     0,
     -100,
     true,
     {{532, "1"}, {535, nullptr}},
     [](auto& p) { p.ipar[10] = 1; }},
    {"ny",
     &square,
     "DDDD",
     0,
     -100,
     true,
     {{533, "0"}, {535, nullptr}},
     [](auto& p) { p.ipar[11] = 0; }},
    {"nz",
     &cube,
     "DDDDDD",
     0,
     -100,
     true,
     {{534, "-2"}, {535, nullptr}},
     [](auto& p) { p.ipar[12] = -2; }},
    {"length",
     &cube,
     "DDDDDD",
     0,
     -100,
     true,
     {{538, "y"}, {539, nullptr}},
     [](auto& p) { p.dpar[1] = NAN; }},
    {"q", &square, "DDDD", -2, 1, false, {{543, "-2.000000e+00"}, {544, nullptr}}, nullptr},
    {"solve after a failure",
     &square,
     "DDDD",
     0,
     -10000,
     true,
     {{530, "-100"}, {531, nullptr}},
     nullptr,
     [](auto& p) { p.ipar[0] = -100, p.solve(); }},
    {"solve without intervals",
     &square,
     "DDDD",
     0,
     -100,
     true,
     {{532, "0"}, {535, nullptr}},
     nullptr,
     [](auto& p) { p.ipar[10] = 0, p.solve(), p.ipar[10] = 8; }},
    {"moved tables",
     &cube,
     "DDDDDD",
     0,
     1,
     false,
     {{545, nullptr}, {546, nullptr}},
     nullptr,
     [](auto& p) { ++p.ipar[20], p.solve(); }},
    {"singular",
     &square,
     "NNNN",
     0,
     1,
     false,
     {{547, nullptr}, {548, nullptr}, {549, nullptr}},
     nullptr,
     [](auto& p) { p.solve(); }},
};

std::string expected(const Case& c, jex_int lower) {
  std::string all = text(490) + text(c.is_error ? 397 : 398);
  for (const auto& [number, argument] : c.lines) all += text(number - lower, argument);
  return all;
}

jex_int run(const Case& c, jex_int destination, jex_int set) {
  Helmholtz<double> p(*c.box, c.letters, c.q);
  EXPECT_EQ(c.then ? p.commit() : 0, 0) << c.name;
  p.ipar[c.is_error ? 1 : 2] = destination;
  p.ipar[21] = set;
  if (c.set) c.set(p);
  if (c.then)
    c.then(p);
  else
    p.commit();
  return p.stat;
}

TEST(HelmholtzMessages, OnStandardOutputAndSilent) {
  for (const Case& c : cases) {
    for (const jex_int set : {1, 0}) {
      CaptureStdout();
      EXPECT_EQ(run(c, 1, set), c.stat) << c.name;
      EXPECT_EQ(GetCapturedStdout(), expected(c, set ? 0 : 30)) << c.name;
    }
    CaptureStdout();
    EXPECT_EQ(run(c, 0, 1), c.stat) << c.name;
    EXPECT_EQ(GetCapturedStdout(), "") << c.name;
  }
}

TEST(HelmholtzMessages, InTheLogFile) {
  const Folder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder / "");
  std::string all;
  CaptureStdout();
  for (const Case& c : cases) {
    run(c, -1, 1);
    all += expected(c, 0);
  }
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(read_text(log_name), all);
  std::filesystem::current_path(before);
}

TEST(HelmholtzMessages, PrintersAndFree) {
  Helmholtz<float> p(square, "DDDD", 0);
  p.ipar[1] = 1;
  for (const jex_int warnings : {1, 0}) {
    p.ipar[2] = warnings;
    CaptureStdout();
    EXPECT_EQ(p.free(), -1000);
    EXPECT_EQ(p.ipar[0], -1000);
    EXPECT_EQ(GetCapturedStdout(), text(490) + text(397) + text(warnings ? 542 : 512, "-1000"));
  }
  // A message and an unknown code, by all four entries.
  const jex_int code = 4, unknown = 999;
  std::vector<double> wide(5);
  const auto print = [&](const jex_int& code, const auto& by_d, const auto& by_s) {
    CaptureStdout();
    by_d(&code, p.ipar, wide.data(), "");
    by_s(&code, p.ipar, p.dpar.data(), "");
    return GetCapturedStdout();
  };
  std::string told = text(490) + text(397) + text(506, "0") + text(507);
  EXPECT_EQ(print(code, jex_pdepl_d_pl_print_diagnostics_f, jex_pdepl_s_pl_print_diagnostics_f),
            told + told);
  p.ipar[2] = 1;
  told = text(490) + text(398) + text(407);
  EXPECT_EQ(print(unknown, jex_pdepl_d_pl_print_diagnostics_c, jex_pdepl_s_pl_print_diagnostics_c),
            told + told);
}

}  // namespace
