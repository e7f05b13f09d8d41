/* A core of your own: what the module imports, and a front that loads the module and calls it.
 * Build it as a library called jex_core, libjex_core.so or jex_core.dll, with JEX_EXPORTS_CORE. */
#include <jex/core_imports.h>
#include <stdio.h>
#ifdef _WIN32
#include <windows.h>
#define LOAD(path) LoadLibraryExA(path, NULL, LOAD_WITH_ALTERED_SEARCH_PATH)
#define FIND(library, name) (void*)GetProcAddress(library, name)
static SRWLOCK mutex = SRWLOCK_INIT;
void jex_serv_lock(void) { AcquireSRWLockExclusive(&mutex); }
void jex_serv_unlock(void) { ReleaseSRWLockExclusive(&mutex); }
#else
#include <dlfcn.h>
#include <pthread.h>
#define LOAD(path) dlopen(path, RTLD_LAZY | RTLD_LOCAL)
#define FIND(library, name) dlsym(library, name)
static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
void jex_serv_lock(void) { pthread_mutex_lock(&mutex); }
void jex_serv_unlock(void) { pthread_mutex_unlock(&mutex); }
#endif
jex_int jex_serv_cpu_detect(void) { return 1; } /* SSE3 */
jex_int jex_serv_l2cache(void) { return 0; }    /* unknown: the smaller blocks */
void jex_serv_jex_print(jex_int number, jex_int arguments, ...) {
  printf("jex: message %d with %d arguments\n", (int)number, (int)arguments);
}
jex_int jex_serv_jex_get_msg(char* text, jex_int size, jex_int number, jex_int arguments, ...) {
  return snprintf(text, size, "jex: message %d with %d arguments", (int)number, (int)arguments);
}
/* Stands for all that this core does not serve; on Windows every import must be there. */
JEX_API void own_missing(void) { fputs("jex: not in this core\n", stderr); }

/* The 2-norm of x by the module of that path; -1 if it is no module of this branch. */
JEX_API double own_norm(const char* path, jex_int n, const double* x) {
  void* module = LOAD(path);
  jex_int (*version)(void) = module ? FIND(module, "dll_cpu_version") : NULL;
  double (*norm)(const jex_int*, const double*, const jex_int*) =
      module ? FIND(module, "jex_blas_dnrm2") : NULL;
  const jex_int unit = 1;
  return norm && version && version() == 3 ? norm(&n, x, &unit) : -1;
}
