// What a row of an export list becomes where its kernels live: the exported function.
// The file that stamps them includes the header made from its list: it tells the linkage.
#pragma once

#include <jex/types.h>

#define JEX_EXPORT(result, name, params, call) \
  extern "C" result name params { return call; }
