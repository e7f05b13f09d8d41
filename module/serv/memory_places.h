// Where the buffers are that are handed out: from an address straight to its slot's inuse word, so
// that a return needs neither the thread's record nor, from another thread, the lock.
//
// A hint that is always true or absent: addresses that meet in one place drive each other out, and
// their buffers are then searched for in the records. It stays true because
//   - every address is entered before its buffer is handed out, so none comes into the table while
//     its buffer is out: whoever returns a buffer and finds its address has also read its word;
//   - an address is struck out before its block can go to another holder.
// A returned buffer stays entered: the next request for its block finds the entry made.
#pragma once

#include "serv/memory_record.h"
#include "serv/platform.h"

namespace jex::serv {

struct alignas(2 * sizeof(void*)) Place {
  uint32_t* inuse;
  uintptr_t address;
};

inline constexpr uint32_t places_bits = 12;
extern JEX_LOCAL Place places[1u << places_bits];

inline Place& place_of(uintptr_t address) {
  return places[static_cast<uint32_t>(address) * 0x9E3779B1u >> (32 - places_bits)];
}

/// The inuse word of the buffer that is out at this address; null if it is to be searched for.
inline uint32_t* find_place(uintptr_t address) {
  const Place& place = place_of(address);
  uint32_t* inuse = get(place.inuse);
  return get(place.address) == address ? inuse : nullptr;
}

inline bool is_placed(uintptr_t address, const uint32_t* inuse) {
  const Place& place = place_of(address);
  return get(place.address) == address && get(place.inuse) == inuse;
}

inline void enter_place(uintptr_t address, uint32_t* inuse) {
  Place entry{inuse, address};
  if (address && !is_placed(address, inuse))
    __atomic_store(&place_of(address), &entry, __ATOMIC_RELEASE);
}

/// Whoever strikes out an address, or nobody, may hold its buffer, so it is not entered meanwhile.
inline void strike_place(uintptr_t address) {
  Place& place = place_of(address);
  if (!address || get(place.address) != address) return;
  Place entry{get(place.inuse), address}, none{};
  __atomic_compare_exchange(&place, &entry, &none, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE);
}

}  // namespace jex::serv
