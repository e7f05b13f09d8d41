// Memory for one operand between two unreadable pages: an access outside it ends the test program.
#pragma once

#include <stdexcept>
#include <stddef.h>

#include <sys/mman.h>

namespace jex::test {

enum class Against { front, back };  // the guard page that the operand touches

class Guarded {
 public:
  explicit Guarded(size_t capacity) : capacity_((capacity + page - 1) / page * page) {
    base_ = static_cast<char*>(
        mmap(nullptr, capacity_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED || mprotect(base_ + page, capacity_, PROT_READ | PROT_WRITE) != 0)
      throw std::runtime_error("no memory for a guarded operand");
  }
  Guarded(const Guarded&) = delete;
  ~Guarded() { munmap(base_, capacity_ + 2 * page); }

  // Place for bytes at an address that is offset beyond a multiple of 16. Against the back page the
  // end is as near to it as the alignment allows.
  void* place(size_t bytes, size_t offset, Against side) const {
    char* const first = base_ + page;
    if (side == Against::front) return first + offset;
    const size_t last = capacity_ - bytes;
    return first + last - (last - offset) % 16;
  }

 private:
  static constexpr size_t page = 4096;
  size_t capacity_;
  char* base_;
};

}  // namespace jex::test
