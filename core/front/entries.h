// The module's entries as the fronts reach them.
#pragma once

#include <jex/core.h>

#include <atomic>

namespace jex::front {

// The table, once a front has asked for it.
inline constinit std::atomic<const Module*> found{nullptr};

[[gnu::noinline, gnu::cold]] inline const Module* find_entries() {
  const Module* table = module();
  found.store(table, std::memory_order_release);
  return table;
}

// jex::module() for callers to whom a few nanoseconds matter: one load and one test from the second
// call on. Null when there is no module.
inline const Module* entries() {
  const Module* table = found.load(std::memory_order_acquire);
  return table ? table : find_entries();
}

}  // namespace jex::front
