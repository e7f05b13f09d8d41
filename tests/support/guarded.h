// Memory for one operand between two unreadable pages: an access outside it ends the test program.
#pragma once

#include "support/pages.h"

#include <stdexcept>
#include <stddef.h>

namespace jex::test {

enum class Against { front, back };  // the guard page that the operand touches

class Guarded {
 public:
  explicit Guarded(size_t capacity) : capacity_((capacity + page - 1) / page * page) {
    base_ = take_pages(capacity_ + 2 * page);
    if (!base_ || (capacity_ && !allow(base_ + page, capacity_, Access::read_write)))
      throw std::runtime_error("no memory for a guarded operand");
  }
  Guarded(const Guarded&) = delete;
  ~Guarded() { give_pages_back(base_, capacity_ + 2 * page); }

  // Place for bytes at an address that is offset beyond a multiple of 16. Against the back page the
  // end is as near to it as the alignment allows.
  void* place(size_t bytes, size_t offset, Against side) const {
    char* const first = base_ + page;
    if (side == Against::front) return first + offset;
    const size_t last = capacity_ - bytes;
    return first + last - (last - offset) % 16;
  }

 private:
  static constexpr size_t page = page_size;
  size_t capacity_;
  char* base_;
};

}  // namespace jex::test
