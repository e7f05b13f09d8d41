#include "loader/library.h"

#include <dlfcn.h>

namespace jex::core::library {

std::string folder_of(const void* object) {
  Dl_info info;
  if (!dladdr(object, &info) || !info.dli_fname) return {};
  const std::string path = info.dli_fname;
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

void* open(const std::string& path, std::string& fault) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) fault = dlerror();
  return library;
}

void close(void* library) { dlclose(library); }

const void* base_of(const void* address) {
  Dl_info info;
  return dladdr(address, &info) ? info.dli_fbase : nullptr;
}

void* symbol(void* library, const char* name, const void* base) {
  void* found = dlsym(library, name);
  return found && (!base || base_of(found) == base) ? found : nullptr;
}

}  // namespace jex::core::library
