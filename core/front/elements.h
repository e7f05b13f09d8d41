// Single elements of any type, as the fronts look at them.
#pragma once

#include <jex/types.h>

#include <type_traits>

namespace jex::front {

template <class T>
inline constexpr bool is_complex = !std::is_floating_point_v<T>;

template <class T>
bool is_zero(const T& a) {
  if constexpr (is_complex<T>)
    return a.re == 0 && a.im == 0;
  else
    return a == 0;
}
template <class T>
bool is_one(const T& a) {
  if constexpr (is_complex<T>)
    return a.re == 1 && a.im == 0;
  else
    return a == 1;
}

// A real number, or an element itself, as an element.
template <class T, class S>
T as_element(S a) {
  if constexpr (std::is_same_v<T, S> || !is_complex<T>)
    return T(a);
  else
    return {decltype(T::re)(a), 0};
}

}  // namespace jex::front
