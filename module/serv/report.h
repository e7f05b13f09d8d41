// A diagnostic of several lines: texts of the core's catalogue, put together and sent out whole.
#pragma once

#include <jex/types.h>

#include "serv/platform.h"

namespace jex::serv {

// A value as text, for a place in a message.
class Value {
 public:
  JEX_LOCAL explicit Value(jex_int value);
  JEX_LOCAL explicit Value(double value);
  operator const char*() const { return text_; }

 private:
  char text_[32];
};

class Report {
 public:
  Report() : length_(0) { text_[0] = 0; }
  // One line: the text of a number, with an argument where it has a place for one.
  JEX_LOCAL void add(jex_int number, const char* argument = nullptr);
  // A title, the word for errors or for warnings, and the lines of a code, of a table in which each
  // has a code: add_line(line). A code without any is told to be unknown.
  template <class Line, int count, class AddLine>
  void compose(jex_int title, bool is_error, const Line (&lines)[count], jex_int code,
               AddLine add_line) {
    add(title);
    add(is_error ? error : warning);
    bool known = false;
    for (const Line& line : lines) {
      if (line.code != code) continue;
      known = true;
      add_line(line);
    }
    if (!known) add(unknown);
  }
  // A positive switch: to standard output; any other: appended to the log file, or, where that
  // cannot be opened, to standard output behind a word about it.
  JEX_LOCAL void send(jex_int destination, const char* log_file) const;

 private:
  static constexpr int longest = 3079, longest_line = 512;
  static constexpr jex_int error = 397, warning = 398, unknown = 407;
  char text_[longest + 1];
  int length_;
};

}  // namespace jex::serv
