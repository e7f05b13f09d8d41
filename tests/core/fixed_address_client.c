/* A C program that takes the address of jex_core_load and calls it; tells the module's path. */

#include <jex/core.h>

#include <stdio.h>

int main(void) {
  jex_int (*volatile load)(void) = jex_core_load;
  const jex_int status = load();
  printf("%d %s%s\n", (int)status, jex_core_error(), jex_core_module_path());
  return 0;
}
