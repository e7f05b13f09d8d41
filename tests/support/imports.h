// Puts functions of this program in the place of those that a DLL imports. The dynamic linker of
// ELF does so by itself; a DLL names the library of each import, so here its table is written to.
#pragma once

#ifdef _WIN32

#include "support/pages.h"

#include <stdexcept>
#include <string.h>
#include <string>

namespace jex::test {

inline void replace_import(const char* importer, const char* name, void* replacement) {
  char* const base = reinterpret_cast<char*>(GetModuleHandleA(importer));
  if (!base) throw std::runtime_error(std::string(importer) + " is not loaded");
  const auto& dos = *reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos.e_lfanew);
  const auto& directory = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* library =
      reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
  for (; library->Name; ++library) {
    const auto* names =
        reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
    auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
    for (; names->u1.AddressOfData; ++names, ++addresses) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      const auto& import =
          *reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      if (strcmp(reinterpret_cast<const char*>(import.Name), name) != 0) continue;
      if (!allow(addresses, sizeof *addresses, Access::read_write))
        throw std::runtime_error("the import table cannot be written to");
      addresses->u1.Function = reinterpret_cast<uintptr_t>(replacement);
      return;
    }
  }
  throw std::runtime_error(std::string(importer) + " does not import " + name);
}

}  // namespace jex::test

#endif
