// Where wrong arguments are reported.

#include "front/blas/xerbla.h"

#include "front/blas/checks.h"
#include "front/blas/handlers.h"

#include <jex/blas.h>

#include <algorithm>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

namespace jex::front {
namespace {

// RowMajorStrg for the core's own cblas_xerbla, which any thread may come to.
thread_local bool row_major_call = false;

// Arguments that change places between a row-major entry and its Fortran call.
struct Exchange {
  const char* routine;
  jex_int first, second;
};
constexpr Exchange exchanges[] = {
    {"gemv", 3, 4}, {"gbmv", 3, 4}, {"gbmv", 5, 6}, {"ger", 2, 3},   {"ger", 6, 8},
    {"her2", 6, 8}, {"hpr2", 6, 8}, {"gemm", 4, 5}, {"gemm", 9, 11}, {"symm", 4, 5},
    {"hemm", 4, 5}, {"trmm", 6, 7}, {"trsm", 6, 7},
};

jex_int as_the_caller_counts(const char* entry, jex_int position) {
  for (const auto& [routine, first, second] : exchanges) {
    // her2 is not her2k, whose arguments stay where they are.
    const char* const found = strstr(entry, routine);
    if (!found || found[strlen(routine)] == 'k') continue;
    if (position == first) return second;
    if (position == second) return first;
  }
  return position;
}

}  // namespace

[[gnu::cold]] void report(const char* routine, jex_int position) {
  // Six characters, blanks behind, as Fortran compares them; and an end for readers in C.
  char name[] = "      ";
  for (int i = 0; i < 6 && routine[i]; ++i) name[i] = option(routine + i);
  handlers().fortran(name, &position, 6);
}

[[gnu::cold]] void report_c(const char* entry, jex_int position, bool row_major, const char* what,
                            jex_int value) {
  const Handlers handler = handlers();
  const auto tell = [&](bool row) {
    row_major_call = row;
    if (handler.row_major) *handler.row_major = row;
  };
  tell(row_major);
  if (what) {
    char format[40];
    snprintf(format, sizeof format, "Illegal %s setting, %%d\n", what);
    handler.c(position, entry, format, value);
  } else {
    handler.c(position, entry, "");
  }
  tell(false);
}

}  // namespace jex::front

using namespace jex::front;

void jex_xerbla_(const char* routine, const jex_int* position, jex_int length) {
  while (length > 0 && routine[length - 1] == ' ') --length;
  printf(" ** On entry to %.*s parameter number %2d had an illegal value\n", std::max(length, 0),
         routine, *position);
  fflush(stdout);
}

void jex_xerbla_array_(const char* routine, const jex_int* length, const jex_int* position) {
  char name[32];
  const jex_int used = std::clamp(*length, 0, 32);
  memset(name, ' ', sizeof name);
  memcpy(name, routine, used);
  handlers().fortran(name, position, sizeof name);
}

jex_int jex_lsame_(const char* a, const char* b) { return option(a) == option(b); }

void jex_cblas_xerbla(jex_int position, const char* entry, const char* format, ...) {
  if (row_major_call) position = as_the_caller_counts(entry, position);
  if (position) fprintf(stderr, "Parameter %d to routine %s was incorrect\n", position, entry);
  va_list arguments;
  va_start(arguments, format);
  vfprintf(stderr, format, arguments);
  va_end(arguments);
}
