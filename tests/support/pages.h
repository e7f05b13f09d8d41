// Pages of memory and who may touch them.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef _WIN32
#include "support/windows.h"
#else
#include <sys/mman.h>
#endif

namespace jex::test {

inline constexpr size_t page_size = 4096;

#ifdef _WIN32
enum class Access : DWORD {
  none = PAGE_NOACCESS,
  read_write = PAGE_READWRITE,
  execute = PAGE_EXECUTE_READ,
  everything = PAGE_EXECUTE_READWRITE,
};

// Whole pages that nobody may touch; null when there are none.
inline char* take_pages(size_t size) {
  return static_cast<char*>(VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS));
}
inline void give_pages_back(char* pages, size_t) { VirtualFree(pages, 0, MEM_RELEASE); }

// Of every page that has one of these bytes.
inline bool allow(void* first, size_t size, Access access) {
  DWORD before;
  return VirtualProtect(first, size, static_cast<DWORD>(access), &before);
}
#else
enum class Access : int {
  none = PROT_NONE,
  read_write = PROT_READ | PROT_WRITE,
  execute = PROT_READ | PROT_EXEC,
  everything = PROT_READ | PROT_WRITE | PROT_EXEC,
};

// Whole pages that nobody may touch; null when there are none.
inline char* take_pages(size_t size) {
  void* pages = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return pages == MAP_FAILED ? nullptr : static_cast<char*>(pages);
}
inline void give_pages_back(char* pages, size_t size) { munmap(pages, size); }

// Of every page that has one of these bytes.
inline bool allow(void* first, size_t size, Access access) {
  const uintptr_t address = reinterpret_cast<uintptr_t>(first), page = address & ~(page_size - 1);
  return mprotect(reinterpret_cast<void*>(page), address + size - page, int(access)) == 0;
}
#endif

}  // namespace jex::test
