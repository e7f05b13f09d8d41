#include "serv/allocator.h"

#include <stdlib.h>
#include <type_traits>

namespace jex::serv {
namespace {

Allocator chosen;

// The hook library exports variables that hold its routines' addresses. False unless all four are
// there and none is null.
bool take(void* library, Allocator& from) {
  const auto read = [&](const char* name, auto& routine) {
    void* variable = platform::find_symbol(library, name);
    if (!variable) return false;
    routine = *static_cast<std::remove_reference_t<decltype(routine)>*>(variable);
    return routine != nullptr;
  };
  return read("x_malloc_dll", from.malloc) && read("x_calloc_dll", from.calloc) &&
         read("x_realloc_dll", from.realloc) && read("x_free_dll", from.free);
}

// The library is let go at once even when its routines are taken: the application that installs a
// hook keeps it loaded, and decides how long.
Allocator find() {
  Allocator hook{};
  bool whole = false;
  if (void* library = platform::open_library(platform::hook_library)) {
    whole = take(library, hook);
    platform::close_library(library);
  }
  return whole ? hook : Allocator{&::malloc, &::calloc, &::realloc, &::free};
}

}  // namespace

const Allocator& allocator() {
  if (!__atomic_load_n(&chosen.malloc, __ATOMIC_ACQUIRE)) {
    const Allocator found = find();
    __atomic_store_n(&chosen.calloc, found.calloc, __ATOMIC_RELAXED);
    __atomic_store_n(&chosen.realloc, found.realloc, __ATOMIC_RELAXED);
    __atomic_store_n(&chosen.free, found.free, __ATOMIC_RELAXED);
    __atomic_store_n(&chosen.malloc, found.malloc, __ATOMIC_RELEASE);
  }
  return chosen;
}

}  // namespace jex::serv
