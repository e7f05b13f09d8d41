#include "loader/library.h"

#include <system_error>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace jex::core::library {

std::string folder_of(const void* object) {
  HMODULE library;
  if (!GetModuleHandleExA(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          static_cast<const char*>(object), &library))
    return {};
  std::string path(MAX_PATH, '\0');
  DWORD length;
  while ((length = GetModuleFileNameA(library, path.data(), path.size())) == path.size())
    path.resize(2 * path.size());
  path.resize(length);
  const size_t slash = path.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// What the library needs is looked for beside it first.
void* open(const std::string& path, std::string& fault) {
  HMODULE library = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (!library) {
    const int error = GetLastError();
    fault =
        path + ": " + std::system_category().message(error) + " (" + std::to_string(error) + ")";
  }
  return library;
}

void close(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

// A search by handle finds what the library exports and nothing else.
const void* base_of(const void*) { return nullptr; }

void* symbol(void* library, const char* name, const void*) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace jex::core::library
