// jex-tour run by a test, and what it must leave behind.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/process.h"
#include "examples/xml.h"

namespace jex::test {

inline Outcome tour(const Folder& folder, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {JEX_TOUR_PROGRAM, "--out", folder / "out"});
  return run(folder, arguments);
}

inline void expect_well_formed(const Folder& folder, const std::string& file) {
  EXPECT_TRUE(well_formed(read_file(file)));
  if (*JEX_XMLLINT) {
    EXPECT_EQ(run(folder, {JEX_XMLLINT, "--noout", file}).status, 0);
  }
}

// One line, which names what it is about.
inline void expect_one_line(const Outcome& outcome, int status, const std::string& named) {
  EXPECT_EQ(outcome.status, status) << outcome.err;
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  EXPECT_TRUE(outcome.err.ends_with('\n')) << outcome.err;
  EXPECT_NE(outcome.err.find(named), std::string::npos) << outcome.err;
}

}  // namespace jex::test
