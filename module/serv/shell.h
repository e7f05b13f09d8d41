// What a row of an export list becomes where its kernels live: the exported function.
#pragma once

#include <jex/exports.h>

#define JEX_EXPORT(result, name, params, call) \
  extern "C" result name params { return call; }
