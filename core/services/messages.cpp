// Looks messages up and fills their arguments in.

#include <jex/core_imports.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "services/catalogue.h"

using namespace jex::core;

namespace {

enum class Indices { from_0, from_1 };

struct Found {
  const char* text;  // null for an unknown number
  Indices indices;
};

const char* text_of(jex_int number) {
  const Message* end = catalogue + catalogue_size;
  const Message* row =
      std::lower_bound(catalogue, end, number,
                       [](const Message& row, jex_int number) { return row.number < number; });
  return row != end && row->number == number ? row->text : nullptr;
}

Found find(jex_int number) {
  for (const FortranTwin* twin = fortran_twins; twin != fortran_twins + fortran_twins_size; ++twin)
    if (twin->first <= number && number <= twin->last)
      return {text_of(number + twin->distance), Indices::from_1};
  return {text_of(number), Indices::from_0};
}

// Hands the message to put() character by character, so that no caller needs a buffer for the
// whole.
template <class Put>
void compose(jex_int number, jex_int arguments, va_list list, Put put) {
  const auto puts = [&](const char* word) {
    while (*word) put(*word++);
  };
  const auto [text, indices] = find(number);
  if (!text) {
    char line[64];
    snprintf(line, sizeof line, "jex: there is no message %ld.", long(number));
    return puts(line);
  }
  for (const char* at = text; *at; ++at) {
    if (at[0] == '%' && at[1] == 's') {
      const char* argument = arguments-- > 0 ? va_arg(list, const char*) : nullptr;
      puts(argument ? argument : "?");
      ++at;
    } else if (*at == '[' && indices == Indices::from_1) {
      const size_t length = strcspn(at + 1, "]");
      char index[24] = "";
      if (at[1] >= '0' && at[1] <= '9')
        snprintf(index, sizeof index, "(%d)", atoi(at + 1) + 1);
      else
        snprintf(index, sizeof index, "(%.*s + 1)", int(length), at + 1);
      puts(index);
      at += length + 1;
    } else {
      put(*at);
    }
  }
}

#ifdef _WIN32
void lock_stream(FILE* stream) { _lock_file(stream); }
void unlock_stream(FILE* stream) { _unlock_file(stream); }
#else
void lock_stream(FILE* stream) { flockfile(stream); }
void unlock_stream(FILE* stream) { funlockfile(stream); }
#endif

}  // namespace

jex_int jex_serv_jex_get_msg(char* text, jex_int size, jex_int number, jex_int arguments, ...) {
  jex_int length = 0;
  va_list list;
  va_start(list, arguments);
  compose(number, arguments, list, [&](char c) {
    if (length < size - 1) text[length] = c;
    ++length;
  });
  va_end(list);
  if (size > 0) text[std::min(length, size - 1)] = '\0';
  return length;
}

void jex_serv_jex_print(jex_int number, jex_int arguments, ...) {
  va_list list;
  va_start(list, arguments);
  lock_stream(stdout);
  compose(number, arguments, list, [](char c) { putc(c, stdout); });
  putc('\n', stdout);
  fflush(stdout);
  unlock_stream(stdout);
  va_end(list);
}
