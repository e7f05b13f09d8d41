// What the rows of the front's lists become in the core: exported functions that find the module
// and hand the call on. Without a module, whose absence the loader has reported, functions return
// zero and outputs keep their values.
#pragma once

#include "front/entries.h"

#include <jex/blas.h>

namespace jex::front {

// Address of a C argument as the module takes it: of a value, or of what a pointer points to.
template <class T>
const T* at(const T& value) {
  return &value;
}
template <class T>
const T* at(const void* array) {
  return static_cast<const T*>(array);
}
template <class T>
T* at(void* array) {
  return static_cast<T*>(array);
}

// The same two numbers, in the places where Fortran looks for a complex result.
inline jex_f77_c f77_complex(jex_scomplex x) {
  jex_f77_c result;
  __real__ result = x.re;
  __imag__ result = x.im;
  return result;
}
inline jex_f77_z f77_complex(jex_dcomplex x) {
  jex_f77_z result;
  __real__ result = x.re;
  __imag__ result = x.im;
  return result;
}

// C counts elements from 0, and has no index for "none".
inline jex_cblas_index from_zero(jex_int index) { return index > 0 ? index - 1 : 0; }

}  // namespace jex::front

#define JEX_MODULE(name) module->jex_blas_##name

#define JEX_ENTRY_OF_FRONT(result, symbol, params, call) \
  extern "C" result symbol params {                      \
    const jex::Module* module = jex::front::entries();   \
    if (!module) return result();                        \
    return call;                                         \
  }
#define JEX_SUBROUTINE_OF_FRONT(symbol, params, call)                    \
  extern "C" void symbol params {                                        \
    if (const jex::Module* module = jex::front::entries(); module) call; \
  }

#define JEX_F77(result, name, params, call) JEX_ENTRY_OF_FRONT(result, jex_##name##_, params, call)
#define JEX_F77_SUB(name, params, call) JEX_SUBROUTINE_OF_FRONT(jex_##name##sub_, params, call)
#define JEX_CBLAS(result, name, params, call) \
  JEX_ENTRY_OF_FRONT(result, jex_cblas_##name, params, call)
#define JEX_CBLAS_SUB(name, params, call) \
  JEX_SUBROUTINE_OF_FRONT(jex_cblas_##name##_sub, params, call)
