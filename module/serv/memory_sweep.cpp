// The sweep over all records, and the statistics.

#include <jex/core_imports.h>

#include "serv/memory.h"
#include "serv/memory_release.h"

namespace jex::serv {
namespace {

// No owner enters a closed cell. True when those that entered before can be told by their marks.
bool close_cells() {
  for (uint32_t position = 1; position <= registry.count; ++position) put(cells[position].open, 0u);
  if (!registry.fence_in_owner) return registry.count == 0 || platform::process_fence();
  __atomic_thread_fence(__ATOMIC_SEQ_CST);
  return true;
}

void reopen_cells() {
  for (uint32_t position = 1; position <= registry.count; ++position) {
    Cell& cell = cells[position];
    if (cell.record) put(cell.open, registry.fence_in_owner ? ~cell.owner : cell.owner);
  }
}

void release_record(Cell& cell) {
  Record* record = cell.record;
  empty(*record);
  cell.record = nullptr;
  allocator().free(record);
}

void forget_cells() {
  for (uint32_t position = 1; position <= registry.count; ++position) cells[position].owner = 0;
  put(registry.count, 0u);
  put(registry.addresses_kept, 0u);
  if (registry.index == platform::no_index) return;
  const platform::ThreadIndex index = registry.index;
  put(registry.index, platform::no_index);
  platform::delete_index(index);
}

}  // namespace

// One flag for the whole sweep: from the first record with a buffer in use onward records are
// kept, and those before it are released.
void free_all_buffers() {
  if (!cache_enabled()) return;
  jex_serv_lock();
  const bool marks_hold = close_cells();
  bool in_use = false;
  for (uint32_t position = 1; position <= registry.count; ++position) {
    Cell& cell = cells[position];
    if (!cell.record) continue;
    if (!marks_hold || get(cell.busy)) {
      in_use = true;  // Its owner is in the middle of a call.
      continue;
    }
    if (release_cached(*cell.record) == Held::buffers) in_use = true;
    if (!in_use) release_record(cell);
  }
  if (in_use)
    reopen_cells();
  else
    forget_cells();
  jex_serv_unlock();
}

int64_t memory_held(int32_t& buffers) {
  if (!cache_enabled()) {
    buffers = -1;
    return 0;
  }
  int64_t bytes = 0;
  uint32_t slots = 0;
  jex_serv_lock();
  for (uint32_t position = 1; position <= registry.count; ++position) {
    const Record* record = cells[position].record;
    const uint32_t count = record ? get(record->count) : 0;
    slots += count;
    for (uint32_t i = 0; i < count; ++i)
      if (get(record->raw[i])) bytes += get(record->blk[i]);
  }
  jex_serv_unlock();
  buffers = static_cast<int32_t>(slots);
  return bytes;
}

}  // namespace jex::serv
