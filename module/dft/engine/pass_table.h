// The passes of one element type and direction, by kind and radix.
#pragma once

#include "dft/engine/pass.h"

namespace jex::dft {

template <class T, Direction d, Kind kind, int R>
constexpr PassFunction<T> pass_of() {
  if constexpr (kind == Kind::first)
    return run_first<R, d, T>;
  else if constexpr (is_split(kind) && !has_split_radix(R))
    return nullptr;
  else
    return run_pass<R, d, kind, T>;
}

#define JEX_PASSES(kind)                                                                 \
  {                                                                                      \
    nullptr, nullptr, pass_of<T, d, kind, 2>(), pass_of<T, d, kind, 3>(),                \
        pass_of<T, d, kind, 4>(), pass_of<T, d, kind, 5>(), pass_of<T, d, kind, 6>(),    \
        pass_of<T, d, kind, 7>(), pass_of<T, d, kind, 8>(), pass_of<T, d, kind, 9>(),    \
        pass_of<T, d, kind, 10>(), pass_of<T, d, kind, 11>(), pass_of<T, d, kind, 12>(), \
        pass_of<T, d, kind, 13>(), pass_of<T, d, kind, 14>(), pass_of<T, d, kind, 15>(), \
        pass_of<T, d, kind, 16>()                                                        \
  }

template <class T, Direction d>
const PassFunction<T> (&pass_table())[kinds][17] {
  static constexpr PassFunction<T> table[kinds][17] = {
      JEX_PASSES(Kind::inner),        JEX_PASSES(Kind::last),
      JEX_PASSES(Kind::scaled),       JEX_PASSES(Kind::twisted),
      JEX_PASSES(Kind::split_inner),  JEX_PASSES(Kind::split_last),
      JEX_PASSES(Kind::split_scaled), JEX_PASSES(Kind::split_twisted),
      JEX_PASSES(Kind::split_entry),  JEX_PASSES(Kind::first)};
  return table;
}

#undef JEX_PASSES

}  // namespace jex::dft
