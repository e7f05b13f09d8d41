// Peer library: the copies of level 1 by the C library's memcpy, unit strides only, and work
// buffers by its malloc.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#define COPY(name, size)                                                          \
  extern "C" __attribute__((visibility("default"))) void name(                    \
      const int32_t* n, const void* x, const int32_t*, void* y, const int32_t*) { \
    std::memcpy(y, x, static_cast<size_t>(*n) * size);                            \
  }
COPY(scopy_, 4)
COPY(dcopy_, 8)
COPY(ccopy_, 8)
COPY(zcopy_, 16)

extern "C" __attribute__((visibility("default"))) void* buffer_(uint32_t size, int32_t) {
  return std::malloc(size);
}
