// Shared libraries as the loader needs them of the operating system. Each target has its own source
// file.
#pragma once

#include <string>

namespace jex::core::library {

// Folder, with a slash at its end, of the library that has this object; empty if it is not known.
std::string folder_of(const void* object);

// Null and the fault, if the library cannot be loaded.
void* open(const std::string& path, std::string& fault);
void close(void* library);

// What tells the libraries of two addresses apart; null if nothing is known of this one.
const void* base_of(const void* address);

// The library's symbol, or null. A search may also find those of the libraries that it needs, and
// the core has some of the module's names, so of a symbol with another base than this, unless that
// is null, nothing is known.
void* symbol(void* library, const char* name, const void* base);

}  // namespace jex::core::library
