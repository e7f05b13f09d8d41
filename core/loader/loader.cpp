// Finds the module beside the core, loads it, checks its branch number and resolves its table.

#include <jex/module_entries.hpp>

#include <stdio.h>
#include <string>

#include "loader/library.h"

namespace jex {
namespace {

namespace library = core::library;

constexpr jex_int expected_branch = 3;
#ifdef _WIN32
constexpr const char* module_file = "jex_q7t.dll";
#else
constexpr const char* module_file = "libjex_q7t.so";
#endif

struct Loaded {
  Module table{};
  std::string path, error;
};

// Fills the table; returns what is wrong with the library, or nothing.
std::string fill_table(Module& table, void* handle, const std::string& path) {
  table.dll_cpu_version = reinterpret_cast<decltype(table.dll_cpu_version)>(
      library::symbol(handle, "dll_cpu_version", nullptr));
  if (!table.dll_cpu_version)
    return "jex: " + path + " is not a kernel module: it has no dll_cpu_version";
  if (const jex_int branch = table.dll_cpu_version(); branch != expected_branch)
    return "jex: " + path + " is of branch " + std::to_string(branch) +
           ", this core needs branch " + std::to_string(expected_branch);
  const void* const base = library::base_of(reinterpret_cast<void*>(table.dll_cpu_version));
  std::string missing;
  for (const ModuleEntry& entry : module_entries) {
    void* const address = library::symbol(handle, entry.name, base);
    if (!address && missing.empty()) missing = entry.name;
    entry.set(table, address);
  }
  return missing.empty() ? std::string() : "jex: " + path + " lacks the entry " + missing;
}

std::string load_table(Module& table, const std::string& path) {
  std::string fault;
  void* handle = library::open(path, fault);
  if (!handle) return "jex: the kernel module cannot be loaded: " + fault;
  fault = fill_table(table, handle, path);
  if (!fault.empty()) library::close(handle);
  return fault;
}

Loaded& loaded() {
  // Never destroyed: fronts may be called until the process is gone.
  static Loaded& state = *[] {
    auto* state = new Loaded;
    // Asked of an object that no program can hold a copy or a jump of.
    state->path = library::folder_of(&expected_branch) + module_file;
    state->error = load_table(state->table, state->path);
    if (!state->error.empty()) {
      fprintf(stderr, "%s\n", state->error.c_str());
      state->path.clear();
    }
    return state;
  }();
  return state;
}

}  // namespace

const Module* module() {
  const Loaded& state = loaded();
  return state.error.empty() ? &state.table : nullptr;
}

}  // namespace jex

jex_int jex_core_load() { return jex::module() ? 0 : -1; }
const char* jex_core_error() { return jex::loaded().error.c_str(); }
const char* jex_core_module_path() { return jex::loaded().path.c_str(); }
