/* Shared libraries by the calls of POSIX, on Windows too, and the names of ours. Plain C. */
#pragma once

#ifdef _WIN32

#include "support/windows.h"

#define RTLD_LAZY 0
#define RTLD_NOW 0
#define RTLD_NOLOAD 1

static inline void* dlopen(const char* name, int mode) {
  return mode == RTLD_NOLOAD ? (void*)GetModuleHandleA(name) : (void*)LoadLibraryA(name);
}
static inline void* dlsym(void* library, const char* name) {
  return (void*)GetProcAddress((HMODULE)library, name);
}
static inline int dlclose(void* library) { return !FreeLibrary((HMODULE)library); }
static inline const char* dlerror(void) { return "the library cannot be loaded"; }

#define JEX_CORE_FILE "jex_core.dll"
#define JEX_MODULE_FILE "jex_q7t.dll"
#define JEX_HOOK_FILE "libxmalloc.dll"
#define JEX_GMP_FILE "libgmp-10.dll"

#else

#include <dlfcn.h>

#define JEX_CORE_FILE "libjex_core.so"
#define JEX_MODULE_FILE "libjex_q7t.so"
#define JEX_HOOK_FILE "libxmalloc.so"
#define JEX_GMP_FILE "libgmp.so.10"

#endif
