// Extended precision of the x87, which long double arithmetic relies on.
#pragma once

#include <stdint.h>

namespace jex::simd {

// As long as it lives the x87 rounds to 64 bits, whatever the program has set: the threads of
// Windows begin with 53.
class ExtendedPrecision {
 public:
  ExtendedPrecision() {
    asm volatile("fnstcw %0" : "=m"(before_));
    const uint16_t extended = before_ | 0x300;
    asm volatile("fldcw %0" : : "m"(extended) : "memory");
  }
  ExtendedPrecision(const ExtendedPrecision&) = delete;
  ~ExtendedPrecision() { asm volatile("fldcw %0" : : "m"(before_) : "memory"); }

 private:
  uint16_t before_;
};

}  // namespace jex::simd
