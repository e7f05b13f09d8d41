// Peer library: the copies of level 1 by the C library's memcpy. Unit strides only.
#include <cstdint>
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
