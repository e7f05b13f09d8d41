// Requests and returns of work buffers beyond the warm case.

#include "serv/memory.h"

#include <jex/core_imports.h>

#include "serv/allocator.h"
#include "serv/memory_release.h"

namespace jex::serv {
namespace {

void* as_pointer(uintptr_t address) { return reinterpret_cast<void*>(address); }

// Released slots still show the address that they last handed out, and a return is matched by its
// address alone. So an address that goes to a new holder is struck out there; else its return
// would be taken for that of the earlier buffer, and the block would be lost.
uintptr_t fresh(uintptr_t address) {
  if (!address || !get(registry.addresses_kept)) return address;
  jex_serv_lock();
  for (uint32_t position = 1; position <= registry.count; ++position) {
    Record* record = cells[position].record;
    const uint32_t count = record ? get(record->count) : 0;
    for (uint32_t i = 0; i < count; ++i) {
      if (get(record->raw[i])) continue;
      // The owner may be writing a new address there.
      uintptr_t shown = address;
      __atomic_compare_exchange_n(&record->ptr[i], &shown, uintptr_t{0}, false, __ATOMIC_ACQ_REL,
                                  __ATOMIC_ACQUIRE);
    }
  }
  jex_serv_unlock();
  return address;
}

void* uncached(uint32_t size) {
  return as_pointer(fresh(reinterpret_cast<uintptr_t>(allocator().malloc(size))));
}

// Marks slot i in use at the address that its block has for this alignment.
void* hand_out(Record& own, uint32_t i, uint32_t alignment) {
  const uintptr_t address = aligned(get(own.raw[i]), alignment);
  if (const uintptr_t last = get(own.ptr[i]); last != address) {
    strike_place(last);
    put(own.ptr[i], fresh(address));
  }
  put(own.inuse[i], 1u);
  enter_place(address, &own.inuse[i]);
  return as_pointer(address);
}

// Slot i, without a block, gets one. A refusal is entered like a block: null, and in use.
void* fill_slot(Record& own, uint32_t i, uint32_t size, uint32_t alignment) {
  const uint32_t need = alignment + size;
  const auto raw = reinterpret_cast<uintptr_t>(allocator().malloc(need));
  const uintptr_t address = fresh(aligned(raw, alignment));
  put(own.ptr[i], address);
  put(own.req[i], size);
  put(own.blk[i], need);
  put(own.inuse[i], 1u);
  put(own.raw[i], raw);  // Last: a return by another thread first looks whether there is a block.
  if (i == own.count) put(own.count, i + 1);
  own.total += need;
  enter_place(address, &own.inuse[i]);
  return as_pointer(address);
}

// What a scan of the cached and released slots finds, each the first of its kind or none.
struct Found {
  uint32_t exact = slots_per_record, larger = slots_per_record, smaller = slots_per_record;
};

Found scan(const Record& own, uint32_t need) {
  Found found;
  const auto note = [](uint32_t& first, uint32_t i) {
    if (first == slots_per_record) first = i;
  };
  for (uint32_t i = 0; i < own.count && found.exact == slots_per_record; ++i) {
    if (get(own.inuse[i])) continue;
    const uint32_t blk = get(own.blk[i]);
    note(blk == need ? found.exact : blk > need ? found.larger : found.smaller, i);
  }
  return found;
}

// The order of choice: the same size; a slot not used so far; a larger block; a smaller one,
// replaced. False when all five are in use.
bool choose_slot(Record& own, uint32_t size, uint32_t alignment, void*& buffer) {
  const Found found = scan(own, alignment + size);
  if (found.exact < slots_per_record) {
    buffer = hand_out(own, found.exact, alignment);
  } else if (own.count < slots_per_record) {
    buffer = fill_slot(own, own.count, size, alignment);
  } else if (found.larger < slots_per_record) {
    put(own.req[found.larger], size);
    buffer = hand_out(own, found.larger, alignment);
  } else if (found.smaller < slots_per_record) {
    own.total -= get(own.blk[found.smaller]);
    release_block(own, found.smaller);
    buffer = fill_slot(own, found.smaller, size, alignment);
  } else {
    return false;
  }
  return true;
}

bool return_to_own(uintptr_t buffer) {
  Cell* cell = enter_own();
  if (!cell) return false;
  Record& own = *cell->record;
  bool found = false;
  for (uint32_t i = 0; i < own.count && !found; ++i) {
    found = get(own.ptr[i]) == buffer;
    if (found) put(own.inuse[i], 0u);
  }
  leave(*cell);
  return found;
}

bool return_to_any(uintptr_t buffer) {
  bool found = false;
  jex_serv_lock();
  for (uint32_t position = 1; position <= registry.count && !found; ++position) {
    Record* record = cells[position].record;
    const uint32_t count = record ? get(record->count) : 0;
    for (uint32_t i = 0; i < count && !found; ++i) {
      found = get(record->raw[i]) && get(record->ptr[i]) == buffer;
      if (found) put(record->inuse[i], 0u);
    }
  }
  jex_serv_unlock();
  return found;
}

}  // namespace

void* allocate_entered(Cell& cell, uint32_t size, uint32_t alignment) {
  void* buffer = nullptr;
  const bool cached = choose_slot(*cell.record, size, alignment, buffer);
  leave(cell);
  return cached ? buffer : uncached(size);
}

void* allocate_from_start(uint32_t size, int32_t alignment) {
  ensure_index();
  if (size == 0) return nullptr;
  if (!cache_enabled() || size > largest_cached) return uncached(size);
  Cell* cell = enter_own_or_new();
  return cell ? allocate_entered(*cell, size, normal_alignment(alignment)) : uncached(size);
}

void deallocate_from_start(void* buffer) {
  if (!buffer) return;
  const auto address = reinterpret_cast<uintptr_t>(buffer);
  if (cache_enabled() && (return_to_own(address) || return_to_any(address))) return;
  allocator().free(buffer);
}

void free_thread_buffers() {
  if (!cache_enabled()) return;
  Cell* cell = enter_own();
  if (!cell) return;
  Record& own = *cell->record;
  if (release_cached(own) == Held::nothing) empty(own);
  leave(*cell);
}

}  // namespace jex::serv
