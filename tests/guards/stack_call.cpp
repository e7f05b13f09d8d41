// The trampolines. They copy 16 words of arguments to a boundary of 16 bytes less the shift, so
// that the callee finds them where it expects them, and leave EAX, EDX and ST(0) as the callee set
// them.

#include "guards/stack_call.h"

extern "C" {
__attribute__((visibility("hidden"))) void (*jex_shifted_target)();
__attribute__((visibility("hidden"))) int jex_shift;
}

#define TRAMPOLINE(name, leave)                      \
  asm(".text\n"                                      \
      ".globl " #name                                \
      "\n"                                           \
      ".type " #name ", @function\n" #name           \
      ":\n"                                          \
      "  pushl %ebp\n"                               \
      "  movl %esp, %ebp\n"                          \
      "  pushl %esi\n"                               \
      "  pushl %edi\n"                               \
      "  call 1f\n"                                  \
      "1: popl %eax\n"                               \
      "  addl $_GLOBAL_OFFSET_TABLE_+(.-1b), %eax\n" \
      "  subl $96, %esp\n"                           \
      "  andl $-16, %esp\n"                          \
      "  subl jex_shift@GOTOFF(%eax), %esp\n"        \
      "  leal 8(%ebp), %esi\n"                       \
      "  movl %esp, %edi\n"                          \
      "  movl $16, %ecx\n"                           \
      "  rep movsl\n"                                \
      "  call *jex_shifted_target@GOTOFF(%eax)\n"    \
      "  leal -8(%ebp), %esp\n"                      \
      "  popl %edi\n"                                \
      "  popl %esi\n"                                \
      "  popl %ebp\n"                                \
      "  " leave                                     \
      "\n"                                           \
      ".size " #name ", .-" #name "\n");

TRAMPOLINE(jex_shifted_call, "ret")
TRAMPOLINE(jex_shifted_call_hidden, "ret $4")
