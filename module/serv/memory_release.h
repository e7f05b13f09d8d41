// Giving cached blocks back to the allocator beneath: by their owner, or by a sweep.
#pragma once

#include "serv/allocator.h"
#include "serv/memory_places.h"
#include "serv/memory_registry.h"

namespace jex::serv {

/// Slot i loses its block and keeps its address. The block is out of the record before the
/// allocator can give it to somebody else.
inline void release_block(Record& record, uint32_t i) {
  const uintptr_t raw = get(record.raw[i]);
  strike_place(get(record.ptr[i]));
  put(record.raw[i], uintptr_t{0});
  if (raw) allocator().free(reinterpret_cast<void*>(raw));
}

enum class Held { nothing, buffers };

inline Held held_by(const Record& record) {
  for (uint32_t i = 0; i < record.count; ++i)
    if (get(record.raw[i]) && get(record.inuse[i]) == 1) return Held::buffers;
  return Held::nothing;
}

/// Releases all blocks that are not in use, and tells whether others are. Called by whoever has the
/// record.
inline Held release_cached(Record& record) {
  const Held held = held_by(record);
  if (held == Held::buffers) put(registry.addresses_kept, 1u);
  for (uint32_t i = 0; i < record.count; ++i) {
    if (!get(record.raw[i]) || get(record.inuse[i]) == 1) continue;
    release_block(record, i);
    put(record.req[i], 0u);
    put(record.blk[i], 0u);
    put(record.inuse[i], 0u);
  }
  return held;
}

/// The record starts again from its first slot.
inline void empty(Record& record) {
  put(record.count, 0u);
  record.total = nothing_held;
}

}  // namespace jex::serv
