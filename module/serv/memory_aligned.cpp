#include "serv/memory_aligned.h"

#include <string.h>

#include "serv/allocator.h"
#include "serv/memory_record.h"

namespace jex::serv {
namespace {

constexpr uint32_t header = sizeof(uint32_t);
constexpr uint32_t realloc_alignment = 128;

char*& raw_of(void* block) { return static_cast<char**>(block)[-1]; }

// With the first address behind the header and room for the alignment, rounded down: what lies in
// front of the result is never less than the header.
void* obtain(uint32_t size, uint32_t alignment) {
  uint32_t need;
  if (__builtin_add_overflow(size, alignment + header, &need)) return nullptr;
  auto* raw = static_cast<char*>(allocator().malloc(need));
  if (!raw) return nullptr;
  const uintptr_t mask = alignment ? alignment - 1 : 0;
  const uintptr_t address = reinterpret_cast<uintptr_t>(raw) + alignment + header;
  void* block = reinterpret_cast<void*>(address & ~mask);
  raw_of(block) = raw;
  return block;
}

}  // namespace

void* aligned_malloc(uint32_t size, uint32_t alignment) {
  allocator();
  return size ? obtain(size, normal_alignment(alignment)) : nullptr;
}

void* aligned_calloc(uint32_t count, uint32_t size, uint32_t alignment) {
  void* block = aligned_malloc(count * size, alignment);
  if (block) memset(block, 0, count * size);
  return block;
}

// A block that moves keeps its distance from its raw address, not its alignment.
void* aligned_realloc(void* block, uint32_t size) {
  if (!block) {
    allocator();
    return size ? obtain(size, realloc_alignment) : nullptr;
  }
  char* raw = raw_of(block);
  if (!raw) return nullptr;
  const uint32_t offset = static_cast<char*>(block) - raw;
  uint32_t need;
  if (__builtin_add_overflow(size, offset, &need)) return nullptr;
  auto* moved = static_cast<char*>(allocator().realloc(raw, need));
  if (!moved || moved == raw) return moved ? block : nullptr;
  raw_of(moved + offset) = moved;
  return moved + offset;
}

void aligned_free(void* block) {
  if (!block || !raw_of(block)) return;
  allocator().free(raw_of(block));
}

}  // namespace jex::serv
