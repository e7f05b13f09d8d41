/* own_core_run CORE MODULE: loads a core that is not the reference core, which loads the module. */

#include "support/dlfcn.h"

#include <stdint.h>
#include <stdio.h>

int main(int argc, char** argv) {
  void* core = argc == 3 ? dlopen(argv[1], RTLD_NOW) : NULL;
  if (!core) return fprintf(stderr, "no core: %s\n", dlerror()), 2;
  double (*norm)(const char*, int32_t, const double*) =
      (double (*)(const char*, int32_t, const double*))dlsym(core, "own_norm");
  if (!norm) return fputs("no own_norm\n", stderr), 2;
  const double x[] = {2, -3, 6};
  const double found = norm(argv[2], 3, x), none = norm(argv[1], 3, x);
  printf("norm %g, of no module %g\n", found, none);
  return found == 7 && none == -1 ? 0 : 1;
}
