// The one routine behind all empty entries. Error reports of the extended-precision routines go to
// it: routine name, negative position, value, null.
#pragma once

#include "serv/platform.h"

extern "C" JEX_LOCAL void jex_serv_empty(...);
