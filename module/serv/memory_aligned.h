// Public aligned allocation. One header word in front of each block holds the address that the
// allocator beneath gave, and nothing else is known of it.
#pragma once

#include <stdint.h>

#include "serv/platform.h"

namespace jex::serv {

JEX_LOCAL void* aligned_malloc(uint32_t size, uint32_t alignment);
JEX_LOCAL void* aligned_calloc(uint32_t count, uint32_t size, uint32_t alignment);
JEX_LOCAL void* aligned_realloc(void* block, uint32_t size);
JEX_LOCAL void aligned_free(void* block);

}  // namespace jex::serv
