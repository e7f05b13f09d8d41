// Which thread has which record, and who may touch it when.
//
// A thread's word holds its tag: the position of its cell in the registry and a generation, which
// tells an owner from an earlier owner of the same position. Only the owner of a cell calls on its
// record without the lock, and only between enter() and leave():
//
//     owner                              sweep, which holds the lock
//     -----                              ---------------------------
//     busy := tag                        open := 0, in every cell
//     (order kept by the compiler)       fence in all threads of the process
//     open = tag?  then the record is    busy = 0?  then the record is the sweep's
//       the owner's; no: wait for          until it sets open again;
//       the lock and look again            no: the record counts as in use
//     busy := 0
//
// Either the owner sees the cell closed, or the sweep sees the owner's mark. The sweep pays for
// both sides with its fence, so the owner needs no locked instruction. Where no such fence is to be
// had, open holds the complement of the tag, and the owner makes a fence of its own.
//
// A sweep may release a record and leave its position taken: the cell is emptied then, stays
// closed, and its owner gets a new record in the same place when it next asks for a buffer.
#pragma once

#include "serv/memory_record.h"
#include "serv/platform.h"

namespace jex::serv {

inline constexpr uint32_t growth_bound = 8192;      // No cell is added beyond this many.
inline constexpr uint32_t cells_mapped = 1u << 14;  // Any word leads to a cell.
static_assert(growth_bound + 1 < cells_mapped);

// A cache line each: busy is written at every call.
struct alignas(64) Cell {
  uint32_t busy;   // The owner's tag during its call.
  uint32_t open;   // The owner's tag while it may enter.
  uint32_t owner;  // The owner's tag; 0 in a cell that is free.
  Record* record;  // Null in a cell that was emptied.
};

/// The tag holds the cell's distance in bytes where it can be used as it is, in bits 6 to 19, and
/// 18 bits of the generation around it. It is never 0, since positions start at 1.
inline constexpr uint32_t distance_bits = (cells_mapped - 1) * sizeof(Cell);

inline uint32_t make_tag(uint32_t position, uint32_t generation) {
  return position * sizeof(Cell) | generation << 20 | (generation >> 12) % sizeof(Cell);
}

struct Registry {
  platform::ThreadIndex index;
  int32_t cache_disabled;  // -1 until the environment has been read.
  int32_t environment_read;
  int32_t fence_in_owner;
  uint32_t count;       // Cells 1 to count are listed.
  uint32_t generation;  // Of the cell added last.
  // 1 when slots within their record's count were released and still show their last address.
  uint32_t addresses_kept;
};

extern JEX_LOCAL Registry registry;
/// Cell 0 belongs to the threads without a tag, and is always closed.
extern JEX_LOCAL Cell cells[cells_mapped];

inline Cell& cell_of(uint32_t tag) {
  return *reinterpret_cast<Cell*>(reinterpret_cast<char*>(cells) + (tag & distance_bits));
}

/// enter() where owners make the fence.
JEX_LOCAL bool enter_with_fence(const Cell& cell, uint32_t tag);

/// True when the calling thread, whose word is this tag, has its record until leave(). After false
/// the mark stands, and enter_waiting() tells what became of the record.
inline bool enter(Cell& cell, uint32_t tag) {
  __atomic_store_n(&cell.busy, tag, __ATOMIC_RELAXED);
  __atomic_signal_fence(__ATOMIC_SEQ_CST);
  if (get(cell.open) == tag) [[likely]]
    return true;
  return enter_with_fence(cell, tag);
}

inline void leave(Cell& cell) { put(cell.busy, 0u); }

/// Whether buffers are cached at all; the first call reads the environment.
JEX_LOCAL bool cache_enabled();

/// Creates the thread index if there is none.
JEX_LOCAL void ensure_index();

/// The calling thread's cell, entered, its record present; null if it has none.
JEX_LOCAL Cell* enter_own();
/// The same, with a new record if it has none; null when none can be had: the registry is full, or
/// the allocator beneath or the system refuses.
JEX_LOCAL Cell* enter_own_or_new();

}  // namespace jex::serv
