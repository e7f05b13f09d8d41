#ifdef _WIN32
// The system's formatting: that of the compiler's library wants start files, which a module without
// work at load and unload does not have.
#define __USE_MINGW_ANSI_STDIO 0
#endif

#include "serv/report.h"

#include <stdio.h>
#include <string.h>

#include <jex/core_imports.h>

namespace jex::serv {

Value::Value(jex_int value) { snprintf(text_, sizeof text_, "%i", int(value)); }
Value::Value(double value) {
  snprintf(text_, sizeof text_, "%e", value);
#ifdef _WIN32
  // Exponents come with three digits; two are enough for most.
  char* const exponent = strchr(text_, 'e');
  if (exponent && exponent[2] == '0' && strlen(exponent) == 5)
    memmove(exponent + 2, exponent + 3, 3);
#endif
}

void Report::add(jex_int number, const char* argument) {
  char line[longest_line + 2];
  jex_serv_jex_get_msg(line, longest_line + 1, number, argument ? 1 : 0, argument);
  strcat(line, "\n");
  const int room = longest - length_, size = int(strlen(line));
  const int taken = size < room ? size : room;
  memcpy(text_ + length_, line, size_t(taken));
  length_ += taken;
  text_[length_] = 0;
}

void Report::send(jex_int destination, const char* log_file) const {
  FILE* const log = destination > 0 ? nullptr : fopen(log_file, "a+");
  if (log) {
    fflush(log);
    fprintf(log, "%.3079s", text_);
    fclose(log);
    return;
  }
  if (destination <= 0) {
    jex_serv_jex_print(0, 0);
    jex_serv_jex_print(408, 1, log_file);
    jex_serv_jex_print(409, 0);
  }
  printf("%.3079s", text_);
  fflush(stdout);
}

}  // namespace jex::serv
