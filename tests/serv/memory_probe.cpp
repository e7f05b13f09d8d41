// Tells how the module works in this process: one line of facts. With the argument "hold" it keeps
// the hook library loaded, as a program that brings one must; with "leave" it does not, and asks
// for nothing but the choice of the allocator.
#include <jex/exports.h>

#include <stdio.h>
#include <string.h>

#include "support/dlfcn.h"

#include "serv/counting_core.h"
#include "serv/hook/xmalloc.h"

namespace {

void* hook_if_loaded() { return dlopen(JEX_HOOK_FILE, RTLD_LAZY | RTLD_NOLOAD); }

void print_leave() {
  jex_serv_jex_malloc(0, 0);
  printf("hook %s\n", hook_if_loaded() ? "loaded" : "gone");
}

void print_hold() {
  void* hook = dlopen(JEX_HOOK_FILE, RTLD_NOW);
  auto* raw = hook ? static_cast<Xmalloc*>(dlsym(hook, "xmalloc")) : nullptr;
  void* buffer = jex_serv_allocate(1000, 4096);
  const bool aligned = reinterpret_cast<uintptr_t>(buffer) % 4096 == 0;
  jex_serv_deallocate(buffer);
  // Another thread or an uncached block would meet the lock; the warm pair does not.
  const long locks = locks_taken;
  jex_serv_deallocate(jex_serv_allocate(1000, 4096));
  const bool locked = locks_taken != locks;
  jex_int buffers = 77;
  const long long bytes = jex_serv_jex_memstat(&buffers);
  jex_serv_jex_thread_free_buffers();
  jex_serv_freebuffers();
  printf("allocator %s, %s, buffers %d, bytes %lld, warm pair %s, left %ld\n",
         raw && raw->mallocs ? "hook" : "libc", aligned ? "aligned" : "as it comes", buffers, bytes,
         locked ? "locks" : "without lock", raw ? raw->live.load() : 0);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && !strcmp(argv[1], "leave")) return print_leave(), 0;
  if (argc == 2 && !strcmp(argv[1], "hold")) return print_hold(), 0;
  if (argc == 2 && !strcmp(argv[1], "return first")) {
    // Returns before any request: every entry brings up what it needs.
    jex_serv_deallocate(strdup("not from here"));
    jex_serv_jex_free(nullptr);
    jex_serv_jex_thread_free_buffers();
    jex_serv_freebuffers();
    return puts("returned"), 0;
  }
  return 2;
}
