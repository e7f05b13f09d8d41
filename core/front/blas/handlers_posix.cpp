#include "front/blas/handlers.h"

// The dynamic linker resolves these when the core is loaded: to the program's, else to those of the
// drop-in library.
extern "C" {
[[gnu::weak]] JEX_API void xerbla_(const char* routine, const jex_int* position, jex_int length);
[[gnu::weak]] JEX_API void cblas_xerbla(jex_int position, const char* entry, const char* format,
                                        ...);
[[gnu::weak]] JEX_API extern int RowMajorStrg;
}

namespace jex::front {

Handlers handlers() {
  return {&xerbla_ ? &xerbla_ : &jex_xerbla_, &cblas_xerbla ? &cblas_xerbla : &jex_cblas_xerbla,
          &RowMajorStrg};
}

}  // namespace jex::front
