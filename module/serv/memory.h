// Work buffers: a cache of five blocks for each thread. docs/memory.md draws the states of a slot.
//
// What every small kernel pays stands here, in line: a thread that asks again for a size that it
// gave back, and gives it back again, meets no lock, no locked instruction and no allocator. The
// rest is in memory_cache.cpp (requests and returns) and memory_sweep.cpp.
#pragma once

#include "serv/memory_places.h"
#include "serv/memory_registry.h"

namespace jex::serv {

/// Any request, by all the rules.
JEX_LOCAL void* allocate_from_start(uint32_t size, int32_t alignment);
/// The request of a thread that has entered its cell; leaves it.
JEX_LOCAL void* allocate_entered(Cell& cell, uint32_t size, uint32_t alignment);
/// Any return, by all the rules.
JEX_LOCAL void deallocate_from_start(void* buffer);

/// Releases the calling thread's cached blocks.
JEX_LOCAL void free_thread_buffers();
/// Releases all cached blocks, and all records when no buffer is in use.
JEX_LOCAL void free_all_buffers();
/// Bytes held by the cache, in use or not, and the number of slots used.
JEX_LOCAL int64_t memory_held(int32_t& buffers);

/// At least size bytes at a multiple of the alignment, or null. See jex_serv_allocate().
inline void* allocate(uint32_t size, int32_t alignment) {
  const platform::ThreadIndex index = get(registry.index);
  if (index == platform::no_index || size - 1 >= largest_cached) [[unlikely]]
    return allocate_from_start(size, alignment);
  const uint32_t tag = platform::thread_word(index);
  Cell& cell = cell_of(tag);
  if (!enter(cell, tag)) [[unlikely]]
    return allocate_from_start(size, alignment);

  Record& own = *cell.record;
  const uint32_t normal = normal_alignment(alignment);
  const uint32_t need = normal + size;
  // Slots behind the count need no bound: they have no size, or are in use.
  uint32_t i = 0;
  while (get(own.blk[i]) != need || get(own.inuse[i]))
    if (++i == slots_per_record) return allocate_entered(cell, size, normal);
  const uintptr_t address = aligned(get(own.raw[i]), normal);
  if (!is_placed(address, &own.inuse[i])) [[unlikely]]  // Then ptr may be another one, too.
    return allocate_entered(cell, size, normal);
  put(own.inuse[i], 1u);
  leave(cell);
  return reinterpret_cast<void*>(address);
}

/// Returns a work buffer. See jex_serv_deallocate().
inline void deallocate(void* buffer) {
  if (!buffer) return;
  if (uint32_t* inuse = find_place(reinterpret_cast<uintptr_t>(buffer))) [[likely]]
    put(*inuse, 0u);
  else
    deallocate_from_start(buffer);
}

}  // namespace jex::serv
