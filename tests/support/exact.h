// Numbers in long double, for references whose own rounding does not count.
#pragma once

#include "support/vectors.h"

#include <complex>

namespace jex::test {

using Exact = std::complex<long double>;

template <class T>
Exact exact(T a) {
  if constexpr (is_complex<T>)
    return {a.re, a.im};
  else
    return a;
}
inline long double size_of(Exact a) { return std::abs(a.real()) + std::abs(a.imag()); }

}  // namespace jex::test
