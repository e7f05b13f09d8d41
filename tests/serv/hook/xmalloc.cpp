// JEX_HOOK_VARIANT: 0 whole, 1 without x_calloc_dll, 2 with a null x_realloc_dll.
#include "serv/hook/xmalloc.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <mutex>
#include <utility>

#ifdef _WIN32
#define EXPORT extern "C" __declspec(dllexport)
#else
#define EXPORT extern "C" __attribute__((visibility("default")))
#endif

EXPORT Xmalloc xmalloc;
Xmalloc xmalloc;

namespace {

constexpr uint32_t alive = 0x11FE11FE, dead = 0xDEADDEAD;
constexpr unsigned char fresh_fill = 0xA5, freed_fill = 0xDD, end_fill = 0xB7;
constexpr size_t end_size = 64;  // behind each block, to show writes beyond it

// As long as 16 bytes, so that blocks keep the alignment of malloc.
struct Header {
  uint32_t state;
  size_t size;
  uint32_t unused[2];
};
static_assert(sizeof(Header) == 16);

// The block freed last goes to the next request of its size: the fastest way to a second holder.
std::mutex mutex;
Header* parked = nullptr;

unsigned char* bytes(Header* block) { return reinterpret_cast<unsigned char*>(block + 1); }
size_t filled(const Header* block) { return std::min<size_t>(block->size, 1 << 16); }

bool fails() { return xmalloc.fail_in > 0 && --xmalloc.fail_in == 0; }

Header* take_parked(size_t size) {
  std::lock_guard hold(mutex);
  if (!parked || parked->size != size) return nullptr;
  Header* block = std::exchange(parked, nullptr);
  const unsigned char* at = bytes(block);
  if (!std::all_of(at, at + filled(block), [](unsigned char c) { return c == freed_fill; }))
    ++xmalloc.faults;
  return block;
}

void* give(size_t size) {
  if (size > SIZE_MAX - sizeof(Header) - end_size) return nullptr;
  Header* block = take_parked(size);
  if (!block) block = static_cast<Header*>(malloc(sizeof(Header) + size + end_size));
  if (!block) return nullptr;
  *block = {alive, size, {}};
  memset(bytes(block), fresh_fill, filled(block));
  memset(bytes(block) + size, end_fill, end_size);
  ++xmalloc.live;
  xmalloc.last_size = size;
  xmalloc.last = block + 1;
  if (size == 120) xmalloc.last_record = block + 1;
  return block + 1;
}

void take_back(void* address) {
  Header* block = static_cast<Header*>(address) - 1;
  if (block->state != alive) {
    ++xmalloc.faults;
    return;
  }
  const unsigned char* const end = bytes(block) + block->size;
  if (!std::all_of(end, end + end_size, [](unsigned char c) { return c == end_fill; }))
    ++xmalloc.faults;
  block->state = dead;
  memset(bytes(block), freed_fill, filled(block));
  --xmalloc.live;
  std::lock_guard hold(mutex);
  free(std::exchange(parked, block));
}

void* hook_malloc(size_t size) {
  ++xmalloc.mallocs;
  return fails() ? nullptr : give(size);
}

void* hook_calloc(size_t, size_t) {
  ++xmalloc.callocs;
  return nullptr;
}

void* hook_realloc(void* address, size_t size) {
  ++xmalloc.reallocs;
  if (fails()) return nullptr;
  Header* old = static_cast<Header*>(address) - 1;
  if (!xmalloc.moves && size <= old->size) return address;
  void* moved = give(size);
  if (!moved) return nullptr;
  memcpy(moved, address, std::min(size, old->size));
  take_back(address);
  return moved;
}

void hook_free(void* address) {
  ++xmalloc.frees;
  take_back(address);
}

}  // namespace

EXPORT void* (*x_malloc_dll)(size_t);
EXPORT void* (*x_realloc_dll)(void*, size_t);
EXPORT void (*x_free_dll)(void*);
void* (*x_malloc_dll)(size_t) = hook_malloc;
void* (*x_realloc_dll)(void*, size_t) = JEX_HOOK_VARIANT == 2 ? nullptr : hook_realloc;
void (*x_free_dll)(void*) = hook_free;

#if JEX_HOOK_VARIANT != 1
EXPORT void* (*x_calloc_dll)(size_t, size_t);
void* (*x_calloc_dll)(size_t, size_t) = hook_calloc;
#else
auto* const not_exported = hook_calloc;
#endif
