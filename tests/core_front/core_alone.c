// The fronts of a core that has no module beside it: functions return zero, outputs keep their
// values, and the process goes on. Argument: path of such a core.

#include "support/dlfcn.h"
#include <stdint.h>
#include <stdio.h>

int main(int argc, char** argv) {
  void* core = argc > 1 ? dlopen(argv[1], RTLD_NOW) : NULL;
  if (!core) return fprintf(stderr, "no core: %s\n", dlerror()), 1;
  void (*daxpy)() = (void (*)())dlsym(core, "jex_daxpy_");
  double (*dnrm2)() = (double (*)())dlsym(core, "jex_dnrm2_");
  float _Complex (*cdotu)() = (float _Complex (*)())dlsym(core, "jex_cdotu_");
  void (*zdotc_sub)() = (void (*)())dlsym(core, "jex_cblas_zdotc_sub");
  const char* (*reason)(void) = (const char* (*)(void))dlsym(core, "jex_core_error");
  if (!daxpy || !dnrm2 || !cdotu || !zdotc_sub || !reason) return fputs("no entries\n", stderr), 1;

  const int32_t n = 2, one = 1;
  double x[4] = {3, 4, 5, 6}, y[4] = {7, 8, 9, 10}, dot[2] = {11, 12};
  float u[4] = {1, 2, 3, 4};
  daxpy(&n, &x[0], x, &one, y, &one);
  zdotc_sub(n, x, one, y, one, dot);
  const double norm = dnrm2(&n, x, &one);
  const float _Complex product = cdotu(&n, u, &one, u, &one);

  const int kept = y[0] == 7 && y[1] == 8 && dot[0] == 11 && dot[1] == 12;
  if (!kept || norm != 0 || product != 0 || !*reason())
    return printf("y = %g %g, dot = %g %g, norm = %g, reason \"%s\"\n", y[0], y[1], dot[0], dot[1],
                  norm, reason()),
           1;
  puts("fronts without a module are harmless");
  return 0;
}
