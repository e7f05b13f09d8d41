// The trampolines. They copy 16 words of arguments to a boundary of 16 bytes less the shift, so
// that the callee finds them where it expects them, and leave EAX, EDX and ST(0) as the callee set
// them.

#include "guards/stack_call.h"

#ifdef _WIN32

// Names have an underscore before them, and code reaches data by its address.
#define LOCAL
#define BEGIN(name) ".globl _" #name "\n_" #name ":\n"
#define END(name) ""
#define ADDRESS_OF_DATA ""
#define DATA(name) "_" #name

#else

#define LOCAL __attribute__((visibility("hidden")))
#define BEGIN(name) ".globl " #name "\n.type " #name ", @function\n" #name ":\n"
#define END(name) ".size " #name ", .-" #name "\n"
#define ADDRESS_OF_DATA \
  "  call 1f\n"         \
  "1: popl %eax\n"      \
  "  addl $_GLOBAL_OFFSET_TABLE_+(.-1b), %eax\n"
#define DATA(name) #name "@GOTOFF(%eax)"

#endif

extern "C" {
LOCAL void (*jex_shifted_target)();
LOCAL int jex_shift;
}

// clang-format off
#define TRAMPOLINE(name, leave)                    \
  asm(".text\n"                                    \
      BEGIN(name)                                  \
      "  pushl %ebp\n"                             \
      "  movl %esp, %ebp\n"                        \
      "  pushl %esi\n"                             \
      "  pushl %edi\n"                             \
      ADDRESS_OF_DATA                              \
      "  subl $96, %esp\n"                         \
      "  andl $-16, %esp\n"                        \
      "  subl " DATA(jex_shift) ", %esp\n"         \
      "  leal 8(%ebp), %esi\n"                     \
      "  movl %esp, %edi\n"                        \
      "  movl $16, %ecx\n"                         \
      "  rep movsl\n"                              \
      "  call *" DATA(jex_shifted_target) "\n"     \
      "  leal -8(%ebp), %esp\n"                    \
      "  popl %edi\n"                              \
      "  popl %esi\n"                              \
      "  popl %ebp\n"                              \
      "  " leave "\n"                              \
      END(name));
// clang-format on

TRAMPOLINE(jex_shifted_call, "ret")
#ifndef _WIN32
TRAMPOLINE(jex_shifted_call_hidden, "ret $4")
#endif
