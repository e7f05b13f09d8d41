#include "serv/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace jex::serv::platform {

static_assert(TLS_OUT_OF_INDEXES == static_cast<DWORD>(no_index));

void* open_library(const char* name) { return LoadLibraryA(name); }

void* find_symbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void close_library(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

uint32_t environment(const char* name, char* buffer, uint32_t room) {
  return GetEnvironmentVariableA(name, buffer, room);
}

ThreadIndex create_index() { return static_cast<ThreadIndex>(TlsAlloc()); }
void delete_index(ThreadIndex index) { TlsFree(static_cast<DWORD>(index)); }

bool set_thread_word(ThreadIndex index, uint32_t word) {
  return TlsSetValue(static_cast<DWORD>(index), reinterpret_cast<void*>(uintptr_t{word}));
}

// FlushProcessWriteBuffers is such a fence, but Wine has had it do nothing for many years. A
// thread's own fence costs a few nanoseconds.
bool prepare_process_fence() { return false; }
bool process_fence() { return false; }

}  // namespace jex::serv::platform
