/**
 * @file module_entries.hpp
 * @brief The module's entries by name, for programs that choose a kernel while they run.
 */
#ifndef JEX_MODULE_ENTRIES_HPP
#define JEX_MODULE_ENTRIES_HPP

#include <jex/core.h>

#include <stddef.h>
#include <string.h>

namespace jex {

/** @brief The name of an export, and the place of its address in the table. */
struct ModuleEntry {
  const char* name;
  size_t offset;

  /** @brief The address that a table has for it. */
  void* address(const Module& table) const {
    void* address;
    memcpy(&address, reinterpret_cast<const char*>(&table) + offset, sizeof address);
    return address;
  }
  /** @brief Puts an address into a table. */
  void set(Module& table, void* address) const {
    memcpy(reinterpret_cast<char*>(&table) + offset, &address, sizeof address);
  }
};

/** @brief All of them, in the order of the lists. */
inline constexpr ModuleEntry module_entries[] = {
#define JEX_ENTRY(name) {#name, offsetof(Module, name)},
#include <jex/export_names.inc>
#undef JEX_ENTRY
};

}  // namespace jex

#endif
