// Statuses, and every message word by word: on standard output, in the log file, and where that
// cannot be written.
#include <jex/core_imports.h>

#include "support/process.h"
#include "pdett/trig.h"

#include <filesystem>

using namespace jex::test;

namespace {

constexpr char log_name[] = "JEX_Trig_Transforms_Log.txt";

std::string text(jex_int number, const char* argument = nullptr) {
  char line[600];
  jex_serv_jex_get_msg(line, sizeof line, number, argument ? 1 : 0, argument);
  return std::string(line) + "\n";
}

struct Line {
  jex_int number;
  const char* argument = nullptr;
};

std::string message(bool is_error, std::vector<Line> lines, jex_int lower = 0) {
  std::string all = text(396) + text(is_error ? 397 : 398);
  for (const Line& line : lines) all += text(line.number - lower, line.argument);
  return all;
}

struct Case {
  const char* name;
  bool is_error;
  jex_int stat;
  std::vector<Line> lines;
  int n, type;
  void (*set)(Trig<double>&);             // before the commit
  void (*then)(Trig<double>&) = nullptr;  // after a silent commit, instead of it
  std::vector<std::pair<int, double>> data = {};
};

jex_int forward(Trig<double>& t) {
  std::vector<double> f(std::max<int>(t.n, 8) + 1);
  return t.run(true, f.data());
}

const std::vector<Case> cases = {
    {"an earlier failure",
     true,
     -1000,
     {{449, "-1000"}, {450}},
     8,
     0,
     nullptr,
     [](Trig<double>& t) { t.ipar[6] = -1000, forward(t); }},
    {"one interval", true, -100, {{451, "1"}, {452}}, 1, 0, nullptr},
    {"type 6", true, -100, {{453, "6"}, {454}, {455}, {456}}, 8, 6, nullptr},
    {"type -1",
     true,
     -100,
     {{453, "-1"}, {454}, {455}, {456}},
     8,
     0,
     [](Trig<double>& t) { t.ipar[5] = -1; }},
    {"not initialised",
     true,
     -99999,
     {{457}, {458}, {459}},
     8,
     0,
     nullptr,
     [](Trig<double>& t) { t.ipar[6] = -99999, forward(t); }},
    {"a warned commit",
     true,
     1,
     {{460}, {461, "1"}, {462}, {463}},
     8,
     0,
     nullptr,
     [](Trig<double>& t) { t.ipar[6] = 1, forward(t); }},
    {"another n",
     true,
     -10000,
     {{464}, {465, "7"}, {466}},
     8,
     0,
     nullptr,
     [](Trig<double>& t) { t.ipar[0] = 7, forward(t); }},
    {"negative tolerance",
     false,
     10,
     {{467, "-1.000000e+00"}, {468}, {469}, {470}, {471, "8.000000e-12"}},
     8,
     0,
     [](Trig<double>& t) { t.par[0] = -1; }},
    {"f[0] of a sine",
     false,
     1,
     {{472, "5.000000e-01"}, {473, "8.000000e-12"}, {474}},
     8,
     0,
     nullptr,
     nullptr,
     {{0, 0.5}}},
    {"f[n] of a sine",
     false,
     1,
     {{475, "-5.000000e-01"}, {476, "8.000000e-12"}, {477}},
     8,
     0,
     nullptr,
     nullptr,
     {{8, -0.5}}},
    {"f[n] of type 2",
     false,
     1,
     {{478, "2.000000e+00"}, {479, "8.000000e-12"}, {480}},
     8,
     2,
     nullptr,
     nullptr,
     {{8, 2}}},
    {"f[n] of type 4",
     false,
     1,
     {{478, "2.000000e+00"}, {479, "8.000000e-12"}, {480}},
     8,
     4,
     nullptr,
     nullptr,
     {{8, 2}, {0, 3}}},
    {"threads",
     false,
     10,
     {{481, "-3"}, {482}, {483, "1"}},
     8,
     1,
     [](Trig<double>& t) { t.ipar[9] = -3; }},
    {"f[0] of type 3",
     false,
     1,
     {{484, "2.000000e+00"}, {485, "8.000000e-12"}, {486}},
     8,
     3,
     nullptr,
     nullptr,
     {{0, 2}}},
    {"f[0] of type 5",
     false,
     1,
     {{484, "2.000000e+00"}, {485, "8.000000e-12"}, {486}},
     8,
     5,
     nullptr,
     nullptr,
     {{0, 2}, {8, 1}}},
    {"the Fourier transform",
     true,
     -1000,
     {{487, "no valid handle"}},
     8,
     0,
     nullptr,
     [](Trig<double>& t) {
       jex_dft_dfti_handle none = nullptr;
       jex_int stat;
       t.entries.free(&none, t.ipar, &stat);
       t.stat = stat;
     }},
};

std::string expected(const Case& c, jex_int lower) { return message(c.is_error, c.lines, lower); }

// Runs a case with the switch of its kind set; returns the status.
jex_int run(const Case& c, jex_int destination, jex_int set) {
  Trig<double> t(c.n, c.type);
  std::vector<double> f(std::max(c.n, 8) + 1);
  if (c.then) {
    EXPECT_EQ(t.commit(f), 0);
  }
  t.ipar[c.is_error ? 1 : 2] = destination;
  t.ipar[8] = set;
  for (const auto& [at, value] : c.data) f[at] = value;
  if (c.set) c.set(t);
  if (c.then)
    c.then(t);
  else
    t.commit(f);
  const jex_int stat = t.stat;
  EXPECT_EQ(t.ipar[6], stat) << c.name;
  return stat;
}

// The program stands in a folder of its own while the object lives.
class Inside {
 public:
  Inside() : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder_ / "");
  }
  ~Inside() { std::filesystem::current_path(before_); }

 private:
  Folder folder_;
  std::filesystem::path before_;
};

TEST(TrigMessages, OnStandardOutput) {
  for (const Case& c : cases)
    for (const jex_int set : {1, 0}) {
      testing::internal::CaptureStdout();
      EXPECT_EQ(run(c, 1, set), c.stat) << c.name;
      EXPECT_EQ(testing::internal::GetCapturedStdout(), expected(c, set ? 0 : 39)) << c.name;
    }
}

TEST(TrigMessages, SilentWhereTheSwitchIsOff) {
  for (const Case& c : cases) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(run(c, 0, 1), c.stat) << c.name;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << c.name;
  }
}

TEST(TrigMessages, InTheLogFileOneAfterTheOther) {
  const Inside inside;
  std::string all;
  for (const Case& c : cases) {
    testing::internal::CaptureStdout();
    run(c, -1, 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << c.name;
    all += expected(c, 0);
  }
  EXPECT_EQ(read_text(log_name), all);
}

TEST(TrigMessages, NothingIsLostWithoutALogFile) {
  const Inside inside;
  std::filesystem::create_directory(log_name);
  for (const Case& c : cases) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(run(c, -1, 1), c.stat) << c.name;
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              text(0) + text(408, log_name) + text(409) + expected(c, 0))
        << c.name;
  }
}

TEST(TrigStatus, InitTestsNothing) {
  for (const auto spelling : {Spelling::one_underscore, Spelling::two_underscores})
    for (const jex_int n : {-5, 0, 1, 100}) {
      const auto entries = trig_entries<float>(spelling);
      const jex_int type = 99;
      jex_int ipar[11] = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9}, stat = 9;
      float par = 9;
      entries.init(&n, &type, ipar, &par, &stat);
      const jex_int expected[11] = {n, 1, 1, 9, 9, 99, 0, 1, 1, 1, 0};
      EXPECT_TRUE(std::equal(ipar, ipar + 11, expected));
      EXPECT_EQ(stat, 0);
      EXPECT_EQ(par, float(n * 1e-5));
    }
}

TEST(TrigStatus, WarningsAddUpAndChecksCanBeSkipped) {
  std::vector<double> f(9, 1.0);
  Trig<double> both(8, 0);
  both.ipar[2] = 0;
  both.par[0] = -1;
  EXPECT_EQ(both.commit(f), 11);
  EXPECT_EQ(both.par[0], 8 * 1e-12);
  EXPECT_EQ(forward(both), 11) << "refused";

  Trig<double> skipped(8, 0);
  skipped.ipar[10] = 1;
  testing::internal::CaptureStdout();
  EXPECT_EQ(skipped.commit(f), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

  // The same handle again, without a descriptor of its own.
  skipped.ipar[7] = 0;
  const auto handle = skipped.handle;
  EXPECT_EQ(skipped.commit(f), 0);
  EXPECT_EQ(skipped.handle, handle);
  EXPECT_EQ(forward(skipped), 0);
}

TEST(TrigStatus, AHandleOfAnotherPrecisionOrOfNoneDoesNotFit) {
  Trig<float> single(8, 1);
  ASSERT_EQ(single.commit(), 0);
  Trig<double> plain(8, 1);
  plain.ipar[1] = 0;
  EXPECT_EQ(forward(plain), -10000);
  plain.ipar[6] = 0;
  std::swap(plain.handle, single.handle);
  EXPECT_EQ(forward(plain), -10000);
  std::swap(plain.handle, single.handle);
}

}  // namespace
