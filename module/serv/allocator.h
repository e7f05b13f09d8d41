// The allocator beneath both families of buffers: the C library's, or that of a hook library.
#pragma once

#include <stddef.h>

#include "serv/platform.h"

namespace jex::serv {

struct Allocator {
  void* (*malloc)(size_t);
  void* (*calloc)(size_t, size_t);  // Taken with the others, and never called.
  void* (*realloc)(void*, size_t);
  void (*free)(void*);
};

/// Chosen at the first call, for the life of the process. Takes no lock: threads that come first
/// together choose the same.
JEX_LOCAL const Allocator& allocator();

}  // namespace jex::serv
