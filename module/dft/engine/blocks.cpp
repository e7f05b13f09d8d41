#include "dft/engine/blocks.h"

#include "serv/memory_aligned.h"

namespace jex::dft {

void* Blocks::take_bytes(uint64_t bytes) {
  bytes = (bytes + 63) / 64 * 64;
  if (bytes > 0x7fffffff) return nullptr;
  if (region_) {
    if (bytes > left_) return nullptr;
    char* piece = region_;
    region_ += bytes;
    left_ -= uint32_t(bytes);
    return piece;
  }
  if (count_ == most) return nullptr;
  void* block = serv::aligned_malloc(bytes ? uint32_t(bytes) : 64, 64);
  if (block) blocks_[count_++] = block;
  return block;
}

void Blocks::release() {
  while (count_) serv::aligned_free(blocks_[--count_]);
}

}  // namespace jex::dft
