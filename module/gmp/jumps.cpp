// The GNU MP entries: each is a jump to the library's function of that name. Without a frame, all
// arguments and the result, variable ones included, stay where the caller and the library expect
// them.

// EAX is free at the entry of a cdecl function. The slot of the global offset table is filled when
// the module is loaded.
#define JEX_JUMP(result, name, params, target)        \
  asm(".text\n"                                       \
      ".p2align 4\n"                                  \
      ".globl " #name                                 \
      "\n"                                            \
      ".type " #name ", @function\n" #name            \
      ":\n"                                           \
      "  call .Ljump_pc\n"                            \
      "1: addl $_GLOBAL_OFFSET_TABLE_+(.-1b), %eax\n" \
      "  jmp *" #target                               \
      "@GOT(%eax)\n"                                  \
      ".size " #name ", .-" #name "\n");

asm(".text\n"
    ".Ljump_pc:\n"
    "  movl (%esp), %eax\n"
    "  ret\n");

#include <gmp/exports.inc>
