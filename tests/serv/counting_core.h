// The core's lock as this program's own, so that it can tell how often the module took it.
#pragma once

#include <jex/core_imports.h>

#include <atomic>
#include <mutex>

#include "support/imports.h"

inline std::mutex global_lock;
inline std::atomic<long> locks_taken{0};

extern "C" inline __attribute__((used)) void jex_serv_lock() {
  global_lock.lock();
  locks_taken.fetch_add(1, std::memory_order_relaxed);
}

extern "C" inline __attribute__((used)) void jex_serv_unlock() { global_lock.unlock(); }

#ifdef _WIN32
inline const bool lock_is_in_place = [] {
  jex::test::replace_import("jex_q7t.dll", "jex_serv_lock",
                            reinterpret_cast<void*>(&jex_serv_lock));
  jex::test::replace_import("jex_q7t.dll", "jex_serv_unlock",
                            reinterpret_cast<void*>(&jex_serv_unlock));
  return true;
}();
#endif
