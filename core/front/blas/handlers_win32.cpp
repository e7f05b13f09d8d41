#include "front/blas/handlers.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace jex::front {

// A library of Windows names the library of each symbol that it imports, so what a program may have
// is asked of its export table, at every report: reports are rare.
Handlers handlers() {
  const HMODULE program = GetModuleHandleA(nullptr);
  const auto exported = [&](const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(program, name));
  };
  Handlers found{&jex_xerbla_, &jex_cblas_xerbla, static_cast<int*>(exported("RowMajorStrg"))};
  if (void* own = exported("xerbla_"))
    found.fortran = reinterpret_cast<decltype(found.fortran)>(own);
  if (void* own = exported("cblas_xerbla")) found.c = reinterpret_cast<decltype(found.c)>(own);
  return found;
}

}  // namespace jex::front
