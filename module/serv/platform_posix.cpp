#include "serv/platform.h"

#include <stdlib.h>
#include <string.h>

#include <dlfcn.h>
#ifdef __linux__
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace jex::serv::platform {

void* open_library(const char* name) { return dlopen(name, RTLD_NOW | RTLD_LOCAL); }
void* find_symbol(void* library, const char* name) { return dlsym(library, name); }
void close_library(void* library) { dlclose(library); }

uint32_t environment(const char* name, char* buffer, uint32_t room) {
  const char* value = getenv(name);
  if (!value) return 0;
  const uint32_t length = strlen(value);
  if (length >= room) return length + 1;
  memcpy(buffer, value, length + 1);
  return length;
}

// A key may be 0, and none reaches the marker: PTHREAD_KEYS_MAX bounds them.
ThreadIndex create_index() {
  pthread_key_t key;
  return pthread_key_create(&key, nullptr) == 0 ? static_cast<ThreadIndex>(key) : no_index;
}

void delete_index(ThreadIndex index) { pthread_key_delete(static_cast<pthread_key_t>(index)); }

bool set_thread_word(ThreadIndex index, uint32_t word) {
  return pthread_setspecific(static_cast<pthread_key_t>(index),
                             reinterpret_cast<void*>(uintptr_t{word})) == 0;
}

#ifdef __linux__
bool prepare_process_fence() {
  return syscall(SYS_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) == 0;
}
bool process_fence() {
  return syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0) == 0;
}
#else
bool prepare_process_fence() { return false; }
bool process_fence() { return false; }
#endif

}  // namespace jex::serv::platform
