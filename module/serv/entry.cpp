// Module entry, branch number, option characters and the empty entries.

#include <jex/exports/serv.h>

#include "serv/empty.h"
#include "serv/lsame.h"
#include "serv/shell.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

// The C library is a DLL, which the system has initialised when it comes here, and the module has
// nothing else to initialise. Nothing is done when threads come and go, and nothing at unload: the
// core releases the buffers.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
  return TRUE;
}
#endif

// An ELF module needs no entry: threads notify nobody, and the runtime initialises itself.

extern "C" __attribute__((used)) JEX_LOCAL void jex_serv_empty(...) {}

// Without exceptions every function is nothrow; an alias that does not say so is no loss.
#pragma GCC diagnostic ignored "-Wmissing-attributes"
#define JEX_EMPTY(name) extern "C" void name(...) __attribute__((alias("jex_serv_empty")));
#define JEX_FORWARD(result, name, params)

#include "serv/exports.inc"
