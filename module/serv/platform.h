// What the memory manager asks of the operating system. Each target has its own source file; the
// read of a thread's value stands here, because every request for a buffer makes it.
#pragma once

#include <stdint.h>

#ifdef _WIN32
// Declared here alone: the system's header makes macros of words such as near and small.
extern "C" __declspec(dllimport) void* __stdcall TlsGetValue(unsigned long index);
#define JEX_LOCAL
#else
#include <pthread.h>
// Known to stay inside the module: reached without a detour through the table of symbols.
#define JEX_LOCAL __attribute__((visibility("hidden")))
#endif

namespace jex::serv::platform {

#ifdef _WIN32
inline constexpr char hook_library[] = "libxmalloc.dll";
#else
inline constexpr char hook_library[] = "libxmalloc.so";
#endif

/// Null when there is no such library.
JEX_LOCAL void* open_library(const char* name);
JEX_LOCAL void* find_symbol(void* library, const char* name);
JEX_LOCAL void close_library(void* library);

/// Copies the variable's value with its closing zero into the buffer if it fits there. Returns the
/// length of the value, 0 when it is unset or empty, or, if it does not fit, the room that it
/// needs.
JEX_LOCAL uint32_t environment(const char* name, char* buffer, uint32_t room);

/// A word of each thread's own under a common index, 0 until the thread sets it. No destructor
/// belongs to it: the module may be unloaded while threads that used it live on.
using ThreadIndex = int32_t;
inline constexpr ThreadIndex no_index = -1;

JEX_LOCAL ThreadIndex create_index();
JEX_LOCAL void delete_index(ThreadIndex index);
JEX_LOCAL bool set_thread_word(ThreadIndex index, uint32_t word);

inline uint32_t thread_word(ThreadIndex index) {
#ifdef _WIN32
  return reinterpret_cast<uintptr_t>(TlsGetValue(static_cast<unsigned long>(index)));
#else
  return reinterpret_cast<uintptr_t>(pthread_getspecific(static_cast<pthread_key_t>(index)));
#endif
}

/// Whether process_fence() works here; to be asked once before it is called.
JEX_LOCAL bool prepare_process_fence();
/// A full memory fence in every running thread of the process. False when it could not be had.
JEX_LOCAL bool process_fence();

}  // namespace jex::serv::platform
