// What jex-tour leaves behind: the page, the results for machines, the line of progress.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "examples/json.h"
#include "examples/program.h"
#include "tour/family.h"
#include "tour/progress.h"
#include "tour/results.h"

#ifndef _WIN32
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>
#endif

namespace jex::test {
namespace {

namespace fs = std::filesystem;

size_t count(const std::string& text, const std::string& part) {
  size_t found = 0;
  for (size_t at = 0; (at = text.find(part, at)) != text.npos; at += part.size()) ++found;
  return found;
}

TEST(Page, HoldsEachFamilyAndItsPictures) {
  const Folder folder;
  ASSERT_EQ(tour(folder, {}).status, 0);
  const std::string file = folder / "out/index.html", page = read_file(file);
  expect_well_formed(folder, file);
  for (const tour::Family& family : tour::families()) {
    EXPECT_NE(page.find("<h2 id=\"" + std::string(family.name) + "\">"), page.npos) << family.name;
    EXPECT_NE(page.find("href=\"#" + std::string(family.name) + "\""), page.npos) << family.name;
  }
  size_t pictures = 0;
  for (const auto& entry : fs::directory_iterator(folder / "out")) {
    const std::string path = entry.path().string();
    if (!path.ends_with(".svg")) continue;
    ++pictures;
    expect_well_formed(folder, path);
    const std::string svg = read_file(path);
    EXPECT_NE(page.find(svg.substr(svg.find("<svg"))), page.npos) << path;
  }
  EXPECT_GE(pictures, tour::families().size());
  EXPECT_EQ(count(page, "<svg "), pictures);
  EXPECT_EQ(count(page, ">fails<"), 0u);
}

TEST(Page, NeedsNoNetwork) {
  const Folder folder;
  ASSERT_EQ(tour(folder, {"--family", "level1"}).status, 0);
  const std::string page = read_file(folder / "out/index.html");
  for (const char* outside : {"src=", "<link", "<script", "<iframe", "url(", "@import"})
    EXPECT_EQ(page.find(outside), page.npos) << outside;
  // Addresses are the names of namespaces alone.
  EXPECT_EQ(count(page, "://"), count(page, "xmlns=\"http://www.w3.org/"));
}

// A result with what no family brings by itself: a failure, a NaN, signs that must be escaped.
TEST(Results, ShowFailuresAndForeignSigns) {
  tour::Report report;
  report.problem = {{"file", "a \"b\" \\ <c> & d\x01"}};
  report.checks = {{"one", "1", 1, std::nan(""), 2}, {"two", "2", 1, 1, 2}};
  const std::vector<tour::Result> results = {{tour::families().front(), report, 0.5}};
  const std::string json = tour::json(results), page = tour::page(results);
  EXPECT_TRUE(is_json(json)) << json;
  EXPECT_NE(json.find(R"("a \"b\" \\ <c> & d\u0001")"), json.npos) << json;
  EXPECT_NE(json.find(R"("error": null, "bound": 2, "unit": "eps", "holds": false)"), json.npos)
      << json;
  EXPECT_TRUE(well_formed(page)) << page;
  EXPECT_NE(page.find("&lt;c&gt; &amp; d"), page.npos);
  EXPECT_EQ(count(page, "<td class=\"fails\">"), 2u) << "in its table and in the summary";
}

TEST(Json, HoldsTheResultsOfTheRun) {
  const Folder folder;
  const std::string file = folder / "new/results.json";
  const Outcome outcome = tour(folder, {"--json", file, "--threads", "3"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const std::string json = read_file(file);
  EXPECT_TRUE(is_json(json));
  if (*JEX_PYTHON) {
    EXPECT_EQ(run(folder, {JEX_PYTHON, "-m", "json.tool", file}).status, 0);
  }
  EXPECT_EQ(count(json, "\"threads\": 3"), 1u);
  EXPECT_EQ(count(json, "\"family\": "), tour::families().size());
  EXPECT_EQ(count(json, "\"holds\": true"), count(outcome.out, "  holds\n"));
  EXPECT_EQ(count(json, "\"holds\": false"), 0u);
  EXPECT_EQ(count(json, ".svg\""), count(read_file(folder / "out/index.html"), "<svg "));
}

// Each family at both ends of its sizes, as far as these take no long time.
TEST(Size, ChangesTheProblem) {
  const struct {
    const char *family, *size, *told;
  } table[] = {{"level2", "2", "of order 2"},
               {"level2", "1024", "of order 154"},  // half the sunspot numbers
               {"level3", "2", "windows of 2 values"},
               {"trigonometric", "1", "cosines 0 to 1"},
               {"poisson", "64", "  65 x 65"},
               {"poisson", "100", "  97 x 97"},
               {"transpose", "2", "2 x 2"},
               {"extended", "3", "order 2 to 3"},
               {"integers", "256", "modulo 256 bits"},
               {"memory", "1", "of 1 values"},
               {"memory", "4096", "of 308 values"}};
  for (const auto& row : table) {
    const Folder folder;
    const Outcome outcome = tour(folder, {"--family", row.family, "--size", row.size});
    EXPECT_EQ(outcome.status, 0) << row.family << outcome.out << outcome.err;
    EXPECT_NE(outcome.out.find(row.told), std::string::npos) << row.told << outcome.out;
    expect_well_formed(folder, folder / "out/index.html");
  }
}

#ifndef _WIN32

// A terminal that the test reads.
class Terminal {
 public:
  Terminal() : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0)
      stream_ = std::fopen(ptsname(master_), "w");
  }
  ~Terminal() {
    if (stream_) std::fclose(stream_);
    if (master_ >= 0) close(master_);
  }
  // Containers without /dev/pts have none.
  bool is_open() const { return stream_ != nullptr; }
  Terminal(const Terminal&) = delete;
  std::FILE* stream() const { return stream_; }
  std::string read() const {
    char part[1000];
    const ssize_t size = ::read(master_, part, sizeof part);
    return {part, size_t(std::max<ssize_t>(size, 0))};
  }

 private:
  const int master_;
  std::FILE* stream_ = nullptr;
};

struct ProgressOnATerminal : testing::Test {
  const Terminal terminal;
  void SetUp() override {
    if (!terminal.is_open()) GTEST_SKIP() << "there is no pseudo-terminal here";
  }
};

TEST_F(ProgressOnATerminal, TellsTheStepAndWipesItOut) {
  std::string told;
  {
    tour::Progress progress(terminal.stream(), "family", std::chrono::milliseconds(50));
    progress.tell("a long step");
    while (told.find("step, 0 s") == told.npos) told += terminal.read();
  }
  EXPECT_NE(told.find("family: a long step, 0 s"), told.npos) << told;
  while (!told.ends_with("\r\033[K")) told += terminal.read();
}

TEST_F(ProgressOnATerminal, SaysNothingOfAShortTask) {
  {
    tour::Progress progress(terminal.stream(), "family");
    progress.tell("a short step");
  }
  std::fputs("end", terminal.stream());
  std::fflush(terminal.stream());
  EXPECT_EQ(terminal.read(), "end");
}

#endif

TEST(Progress, SaysNothingToAFile) {
  const Folder folder;
  const std::string file = folder.write("stream", "");
  std::FILE* stream = std::fopen(file.c_str(), "w");
  ASSERT_TRUE(stream);
  {
    tour::Progress progress(stream, "family", std::chrono::milliseconds(0));
    progress.tell("a step");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  std::fclose(stream);
  EXPECT_EQ(read_file(file), "");
}

TEST(JsonCheck, TellsGoodFromBroken) {
  for (const char* good : {"{}", "[]", " [1, -2.5e-7, null, {\"a\\n\": [true]}]\n", "\"x\""})
    EXPECT_TRUE(is_json(good)) << good;
  for (const char* broken : {"", "{", "[1,]", "{\"a\"}", "{a: 1}", "nan", "[1 2]", "\"\n\"", "01",
                             "\"\\x\"", "\"a", "[] []", "inf", "{\"a\": 1,}"})
    EXPECT_FALSE(is_json(broken)) << broken;
}

}  // namespace
}  // namespace jex::test
