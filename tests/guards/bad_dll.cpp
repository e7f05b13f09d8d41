// A DLL that breaks every rule that the guards hold the module to. Nobody loads it.

#include <jex/core.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#define API extern "C" __declspec(dllexport)

// Not in the export list; a program's thing to do; not one of the core's services.
API int jex_extra() { return MessageBeep(0) + jex_core_load(); }

// A function of its own where a forwarder should be, and data where code should be.
API void jex_gmp___gmpz_add_here() {}
API int jex_serv_lsame_here;
int jex_serv_lsame_here = 1;

// A section that is writable and executable.
asm(".section .wx, \"wx\"\n"
    "nop\n"
    ".text\n");
