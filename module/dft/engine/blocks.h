// Memory of a plan: blocks that live and die together, or pieces of one block.
#pragma once

#include <stdint.h>

namespace jex::dft {

class Blocks {
 public:
  // Pieces of the region from here on, until it is full; a fresh Blocks takes blocks of its own.
  void use_region(void* begin, uint32_t bytes) {
    region_ = static_cast<char*>(begin);
    left_ = bytes;
  }
  // count elements at a multiple of 64; null when there is no memory.
  template <class E>
  E* take(uint32_t count) {
    return static_cast<E*>(take_bytes(uint64_t(count) * sizeof(E)));
  }
  void release();

 private:
  void* take_bytes(uint64_t bytes);
  static constexpr int most = 40;
  void* blocks_[most] = {};
  int count_ = 0;
  char* region_ = nullptr;
  uint32_t left_ = 0;
};

}  // namespace jex::dft
