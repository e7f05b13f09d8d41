// Forwarding entries of the ELF module (a Windows module forwards in its export table).
//
// An entry must hand on arguments that it does not know, variable ones included, so it may not
// have a frame: it is a jump through a slot. The slot is filled by the first call with the address
// of the core's export of the same name. The module exports that name too, so the address is asked
// of the core's library itself and not of the global scope.

#include <jex/exports/serv.h>

#include "serv/shell.h"

#include <dlfcn.h>

// Stands in for an entry that a foreign core lacks: its callers read 0 as "nothing done".
static int missing_in_core() { return 0; }

extern "C" __attribute__((used, visibility("hidden"))) void* jex_serv_resolve_forward(
    const char* name, void** slot) {
  void* target = nullptr;
  if (void* core = dlopen("libjex_core.so", RTLD_LAZY | RTLD_NOLOAD)) {
    target = dlsym(core, name);
    dlclose(core);
  }
  if (!target) target = reinterpret_cast<void*>(missing_in_core);
  __atomic_store_n(slot, target, __ATOMIC_RELEASE);
  return target;
}

// EAX, ECX and EDX are free at the entry of a cdecl function; everything else, the stack included,
// stands as the caller left it when the jump is made.
#define JEX_FORWARD(result, name, params)             \
  asm(".text\n"                                       \
      ".globl " #name                                 \
      "\n"                                            \
      ".type " #name ", @function\n" #name            \
      ":\n"                                           \
      "  call .Lforward_pc\n"                         \
      "1: addl $_GLOBAL_OFFSET_TABLE_+(.-1b), %eax\n" \
      "  movl .Lslot_" #name                          \
      "@GOTOFF(%eax), %ecx\n"                         \
      "  testl %ecx, %ecx\n"                          \
      "  je 2f\n"                                     \
      "  jmp *%ecx\n"                                 \
      "2: leal .Lslot_" #name                         \
      "@GOTOFF(%eax), %ecx\n"                         \
      "  leal .Lname_" #name                          \
      "@GOTOFF(%eax), %edx\n"                         \
      "  pushl %ecx\n"                                \
      "  pushl %edx\n"                                \
      "  call jex_serv_resolve_forward\n"             \
      "  addl $8, %esp\n"                             \
      "  jmp *%eax\n"                                 \
      ".size " #name ", .-" #name                     \
      "\n"                                            \
      ".local .Lslot_" #name                          \
      "\n"                                            \
      ".comm .Lslot_" #name                           \
      ", 4, 4\n"                                      \
      ".section .rodata\n"                            \
      ".Lname_" #name ": .string \"" #name            \
      "\"\n"                                          \
      ".text\n");

asm(".text\n"
    ".Lforward_pc:\n"
    "  movl (%esp), %eax\n"
    "  ret\n");

#undef JEX_EXPORT
#define JEX_EXPORT(result, name, params, call)
#define JEX_EMPTY(name)

#include "serv/exports.inc"
