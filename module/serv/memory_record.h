// A thread's record of its five work buffers, and the arithmetic of sizes and addresses.
//
// The owner writes its record without a lock while others look into it under the lock, so every
// word that is seen from both sides is read and written whole, with get() and put().
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace jex::serv {

inline constexpr uint32_t slots_per_record = 5;
inline constexpr uint32_t largest_cached = 40u << 20;
inline constexpr uint32_t default_alignment = 32;
inline constexpr int64_t nothing_held = -13;

struct Record {
  uintptr_t raw[slots_per_record];  // From the allocator beneath, or null.
  uintptr_t ptr[slots_per_record];  // Handed out for it; outlives raw when that is released.
  uint32_t req[slots_per_record];   // Asked for when the block was obtained, or reused for less.
  uint32_t blk[slots_per_record];   // Size of raw: asked for, and the alignment.
  uint32_t inuse[slots_per_record];
  uint32_t spare;
  uint32_t count;  // Slots used so far; those behind are never looked at.
  uint32_t count_high;
  int64_t total;  // Bytes obtained for the slots.
};

static_assert(sizeof(void*) != 4 || sizeof(Record) == 120);
static_assert(sizeof(void*) != 4 || offsetof(Record, ptr) == 20);
static_assert(sizeof(void*) != 4 || offsetof(Record, req) == 40);
static_assert(sizeof(void*) != 4 || offsetof(Record, blk) == 60);
static_assert(sizeof(void*) != 4 || offsetof(Record, inuse) == 80);
static_assert(sizeof(void*) != 4 || offsetof(Record, count) == 104);
static_assert(sizeof(void*) != 4 || offsetof(Record, total) == 112);

template <class T>
inline T get(const T& word) {
  return __atomic_load_n(&word, __ATOMIC_ACQUIRE);
}

template <class T>
inline void put(T& word, T value) {
  __atomic_store_n(&word, value, __ATOMIC_RELEASE);
}

/// No alignment (0) below 4, powers of two as they are, the default for anything else.
template <class Int>
inline uint32_t normal_alignment(Int alignment) {
  if (alignment < 4) return 0;
  const auto bits = static_cast<uint32_t>(alignment);
  return bits & (bits - 1) ? default_alignment : bits;
}

/// The first multiple of a normal alignment at or behind raw.
inline uintptr_t aligned(uintptr_t raw, uint32_t alignment) {
  const uintptr_t mask = alignment - (alignment != 0);
  return (raw + mask) & ~mask;
}

}  // namespace jex::serv
