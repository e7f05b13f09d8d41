// What the rows of the front's lists become in the drop-in BLAS: the published names. Each is one
// jump to the core's entry of that name with jex_ before it: no frame is made, so arguments and
// results of every kind pass as the caller and the core agree.
//
// EAX is free at the entry of a cdecl function, so it can hold the address of the global offset
// table. The table is filled at load: a jump through it never comes to the lazy binder.
#pragma once

asm(".text\n"
    ".Lpc:\n"
    "  movl (%esp), %eax\n"
    "  ret\n");

// clang-format off
#define PUBLISH(name)                         \
  asm(".text\n"                               \
      ".p2align 4\n"                          \
      ".globl " #name "\n"                    \
      ".type " #name ", @function\n"          \
      #name ":\n"                             \
      "  call .Lpc\n"                         \
      "  addl $_GLOBAL_OFFSET_TABLE_, %eax\n" \
      "  jmp *jex_" #name "@GOT(%eax)\n"      \
      ".size " #name ", .-" #name "\n");
// clang-format on

#define JEX_F77(result, name, params, call) PUBLISH(name##_)
#define JEX_F77_SUB(name, params, call) PUBLISH(name##sub_)
#define JEX_CBLAS(result, name, params, call) PUBLISH(cblas_##name)
#define JEX_CBLAS_SUB(name, params, call) PUBLISH(cblas_##name##_sub)
