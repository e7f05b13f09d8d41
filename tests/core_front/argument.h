// Memory behind one argument of an entry, and the argument of any type that it makes.
#pragma once

#include <string.h>
#include <type_traits>

namespace jex::test {

template <size_t size>
struct ArgumentMemory {
  alignas(16) unsigned char bytes[size];
  bool operator==(const ArgumentMemory&) const = default;
};

// Its address, or the value that it begins with.
template <class A, size_t size>
A argument(ArgumentMemory<size>& memory) {
  if constexpr (std::is_pointer_v<A>) {
    return reinterpret_cast<A>(memory.bytes);
  } else {
    A value;
    memcpy(&value, memory.bytes, sizeof value);
    return value;
  }
}

}  // namespace jex::test
