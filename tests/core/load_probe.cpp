// load_probe <path of a core>: loads that core, lets it load its module, and prints the answer of
// jex_core_load(), twice, then the error and the module's path, a line each.

#include "support/dlfcn.h"
#include <stdio.h>

int main(int, char** argv) {
  void* core = dlopen(argv[1], RTLD_NOW);
  if (!core) {
    fprintf(stderr, "%s\n", dlerror());
    return 2;
  }
  const auto load = reinterpret_cast<int (*)()>(dlsym(core, "jex_core_load"));
  const auto error = reinterpret_cast<const char* (*)()>(dlsym(core, "jex_core_error"));
  const auto path = reinterpret_cast<const char* (*)()>(dlsym(core, "jex_core_module_path"));
  const int first = load(), second = load();
  printf("%d\n%d\n%s\n%s\n", first, second, error(), path());
  return 0;
}
