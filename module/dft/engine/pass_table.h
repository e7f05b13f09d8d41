// The passes of one element type and direction, by radix and kind.
#pragma once

#include <utility>

#include "dft/engine/pass.h"

namespace jex::dft {

template <class T>
struct PassTable {
  PassKinds<T> radix[largest_kernel_radix + 1];
};
template <class T, Direction d>
struct PassTables {
  static const PassTable<T> table;
};

template <class T, Direction d, int R>
constexpr PassKinds<T> passes_of() {
  if constexpr (has_kernel(R))
    return {{run_pass<R, d, Kind::inner, T>, run_pass<R, d, Kind::last, T>,
             run_pass<R, d, Kind::scaled, T>, run_pass<R, d, Kind::twisted, T>,
             run_first<R, d, T>}};
  else
    return {};
}

template <class T, Direction d>
constexpr PassTable<T> make_pass_table() {
  return []<int... R>(std::integer_sequence<int, R...>) {
    return PassTable<T>{{passes_of<T, d, R>()...}};
  }
  (std::make_integer_sequence<int, largest_kernel_radix + 1>());
}

}  // namespace jex::dft
