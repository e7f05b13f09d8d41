// Export shells of the memory manager, stamped from the list.
//
// This file is compiled without the realignment of the stack that other exports make: the warm
// path uses no vector registers, and all else that is called from here realigns it for itself.

#include <jex/exports/serv/memory.h>

#include "serv/memory.h"
#include "serv/memory_aligned.h"
#include "serv/shell.h"

using namespace jex::serv;

#include "serv/memory_exports.inc"
