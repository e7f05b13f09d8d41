// Calls a function with the stack off a 16-byte boundary by 0, 4, 8 or 12 bytes.
#pragma once

#include <type_traits>
#include <utility>

extern "C" {
// What the trampoline calls, and by how much it shifts the stack: 0, 4, 8 or 12.
extern void (*jex_shifted_target)();
extern int jex_shift;
// Called as if they were the target, with up to 64 bytes of arguments. The second one is for
// results returned through a hidden pointer, which the callee removes from the stack; on Windows
// none does.
void jex_shifted_call();
#ifndef _WIN32
void jex_shifted_call_hidden();
#endif
}

namespace jex::test {

// Not reentrant: the target stands in a variable.
template <class R, class... P, class... A>
R call_shifted(int shift, R (*target)(P...), A... arguments) {
  jex_shifted_target = reinterpret_cast<void (*)()>(target);
  jex_shift = shift;
#ifdef _WIN32
  const auto trampoline = jex_shifted_call;
#else
  const auto trampoline = std::is_class_v<R> ? jex_shifted_call_hidden : jex_shifted_call;
#endif
  return reinterpret_cast<R (*)(P...)>(trampoline)(arguments...);
}

}  // namespace jex::test
