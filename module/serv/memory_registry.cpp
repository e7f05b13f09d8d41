#include "serv/memory_registry.h"

#include <string.h>

#include <jex/core_imports.h>

#include "serv/allocator.h"
#include "serv/memory_places.h"

namespace jex::serv {

Registry registry = {platform::no_index, -1, -1, 0, 0, 0, 0};
Cell cells[cells_mapped];
Place places[1u << places_bits];

namespace {

bool set_in_environment(const char* name) {
  char value[16];
  return platform::environment(name, value, sizeof value) != 0;
}

// With the lock.
void create_index_if_none() {
  if (get(registry.index) != platform::no_index) return;
  registry.fence_in_owner = !platform::prepare_process_fence();
  put(cells[0].open, 1u);  // No tag, and no complement of one: a thread without a tag has 0.
  put(registry.index, platform::create_index());
}

// With the lock. A new record for this tag's cell, entered.
bool fill(Cell& cell, uint32_t tag) {
  auto* record = static_cast<Record*>(allocator().malloc(sizeof(Record)));
  if (!record) return false;
  memset(record, 0, sizeof *record);
  put(cell.busy, tag);
  cell.record = record;
  cell.owner = tag;
  put(cell.open, registry.fence_in_owner ? ~tag : tag);
  return true;
}

// With the lock. The index may have gone with a sweep since the caller looked.
Cell* add_cell() {
  create_index_if_none();
  if (registry.count > growth_bound || registry.index == platform::no_index) return nullptr;
  const uint32_t position = registry.count + 1;
  const uint32_t tag = make_tag(position, registry.generation + 1);
  // A refused word must not leave a cell behind that its thread forgets.
  if (!platform::set_thread_word(registry.index, tag)) return nullptr;
  if (!fill(cells[position], tag)) {
    platform::set_thread_word(registry.index, 0);
    return nullptr;
  }
  ++registry.generation;
  put(registry.count, position);
  return &cells[position];
}

// With the lock, so that no sweep runs: what enter() could not tell. The mark stands.
enum class Standing { entered, emptied, lost };

Standing look_again(Cell& cell, uint32_t tag) {
  if (cell.owner == tag) return cell.record ? Standing::entered : Standing::emptied;
  // The sweep that took this cell came between the reading of the tag and the setting of the mark.
  // A new owner's mark may lie under ours: only that owner may clear it then.
  if (cell.owner == 0) leave(cell);
  return Standing::lost;
}

Cell* enter_with(bool make) {
  const platform::ThreadIndex index = get(registry.index);
  const uint32_t tag = index == platform::no_index ? 0 : platform::thread_word(index);
  Cell& cell = cell_of(tag);
  if (tag && enter(cell, tag)) return &cell;
  if (!tag && (!make || get(registry.count) > growth_bound)) return nullptr;

  Cell* entered = nullptr;
  jex_serv_lock();
  const Standing standing = tag ? look_again(cell, tag) : Standing::lost;
  if (standing == Standing::entered || (standing == Standing::emptied && make && fill(cell, tag)))
    entered = &cell;
  else if (standing == Standing::emptied)
    leave(cell);
  else if (make)
    entered = add_cell();
  jex_serv_unlock();
  return entered;
}

}  // namespace

bool enter_with_fence(const Cell& cell, uint32_t tag) {
  if (get(cell.open) != ~tag) return false;
  __atomic_thread_fence(__ATOMIC_SEQ_CST);
  return get(cell.open) == ~tag;
}

bool cache_enabled() {
  if (const int32_t disabled = get(registry.cache_disabled); disabled != -1) return !disabled;
  jex_serv_lock();
  if (registry.environment_read != 1) {
    const bool disable =
        set_in_environment("JEX_DISABLE_FAST_MM") || set_in_environment("JEX_MM_DISABLE");
    put(registry.cache_disabled, int32_t{disable});
    registry.environment_read = 1;
  }
  jex_serv_unlock();
  return !get(registry.cache_disabled);
}

void ensure_index() {
  if (get(registry.index) != platform::no_index) return;
  jex_serv_lock();
  create_index_if_none();
  jex_serv_unlock();
}

Cell* enter_own() { return enter_with(false); }
Cell* enter_own_or_new() { return enter_with(true); }

}  // namespace jex::serv
