// processor_probe <code>: 0 if jex_serv_cpu_detect() gives the code.
// processor_probe ssse3: runs one instruction of SSSE3, which a processor without it refuses.

#include <jex/core_imports.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

int main(int, char** argv) {
  if (strcmp(argv[1], "ssse3") == 0) {
    signal(SIGILL, [](int) { _exit(0); });
    asm volatile("pshufb %%xmm0, %%xmm0" ::: "xmm0");
    puts("SSSE3 was not refused.");
    return 1;
  }
  const jex_int code = jex_serv_cpu_detect();
  printf("processor code %d, expected %s; cache code %d\n", int(code), argv[1],
         int(jex_serv_l2cache()));
  return code == atoi(argv[1]) ? 0 : 1;
}
