// Finds the module beside the core, loads it, checks its branch number and resolves its table.

#include <jex/core.h>

#include <stdio.h>
#include <string>

#include <dlfcn.h>

namespace jex {
namespace {

constexpr jex_int expected_branch = 3;
constexpr const char* module_file = "libjex_q7t.so";

struct Loaded {
  Module table{};
  std::string path, error;
};

// Asked of an object that no program can hold a copy or a jump of.
std::string folder_of_core() {
  Dl_info info;
  if (!dladdr(&expected_branch, &info) || !info.dli_fname) return {};
  const std::string path = info.dli_fname;
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// The library's own symbol, or null: a search by handle also finds those of the libraries it needs,
// and the core has some of the same names.
void* own_symbol(const void* base, void* library, const char* name) {
  void* symbol = dlsym(library, name);
  Dl_info info;
  return symbol && (!base || (dladdr(symbol, &info) && info.dli_fbase == base)) ? symbol : nullptr;
}

// Fills the table; returns what is wrong with the library, or nothing.
std::string fill_table(Module& table, void* library, const std::string& path) {
  const void* base = nullptr;
  std::string missing;
  const auto resolve = [&](auto& entry, const char* name) {
    entry =
        reinterpret_cast<std::remove_reference_t<decltype(entry)>>(own_symbol(base, library, name));
    if (!entry && missing.empty()) missing = name;
  };
  resolve(table.dll_cpu_version, "dll_cpu_version");
  if (!table.dll_cpu_version)
    return "jex: " + path + " is not a kernel module: it has no dll_cpu_version";
  if (const jex_int branch = table.dll_cpu_version(); branch != expected_branch)
    return "jex: " + path + " is of branch " + std::to_string(branch) +
           ", this core needs branch " + std::to_string(expected_branch);
  if (Dl_info info; dladdr(reinterpret_cast<void*>(table.dll_cpu_version), &info))
    base = info.dli_fbase;
#define JEX_ENTRY(name) resolve(table.name, #name);
#include <jex/export_names.inc>
#undef JEX_ENTRY
  return missing.empty() ? std::string() : "jex: " + path + " lacks the entry " + missing;
}

std::string load_table(Module& table, const std::string& path) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) return "jex: the kernel module cannot be loaded: " + std::string(dlerror());
  const std::string fault = fill_table(table, library, path);
  if (!fault.empty()) dlclose(library);
  return fault;
}

Loaded& loaded() {
  // Never destroyed: fronts may be called until the process is gone.
  static Loaded& state = *[] {
    auto* state = new Loaded;
    state->path = folder_of_core() + module_file;
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
