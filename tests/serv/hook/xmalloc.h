// The hook library of the tests: counts, poisons and fails what the module asks of it.
#pragma once

#include <stddef.h>

#include <atomic>

struct Xmalloc {
  std::atomic<long> mallocs{0}, callocs{0}, reallocs{0}, frees{0};
  std::atomic<long> live{0};     // Blocks given and not freed.
  std::atomic<long> faults{0};   // Frees of no block, writes after a free or beyond a block.
  std::atomic<long> fail_in{0};  // The malloc or realloc that fails, counted from here; 0 none.
  std::atomic<size_t> last_size{0};
  std::atomic<void*> last{nullptr};
  std::atomic<void*> last_record{nullptr};  // The last block of 120 bytes.
  std::atomic<bool> moves{true};            // Whether realloc gives another address.
};

extern "C" Xmalloc xmalloc;
