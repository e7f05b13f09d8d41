// The global lock. A child of fork() inherits it free: the thread that held it does not live there.

#include <jex/core_imports.h>

#include <mutex>

#ifndef _WIN32
#include <pthread.h>
#endif

namespace {

std::mutex mutex;

void take() { mutex.lock(); }
void give() { mutex.unlock(); }

#ifndef _WIN32
// Held across fork(), so that what it guards is whole on both sides.
[[maybe_unused]] const int fork_handlers = pthread_atfork(take, give, give);
#endif

}  // namespace

void jex_serv_lock() { take(); }
void jex_serv_unlock() { give(); }
