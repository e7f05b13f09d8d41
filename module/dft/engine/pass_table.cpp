// Which function runs a pass. The functions themselves are compiled one element type and direction
// at a time.
#include "dft/engine/pass.h"

namespace jex::dft {

template <class T, Direction d>
const PassFunction<T> (&pass_table())[kinds][largest_kernel_radix + 1];

extern template const PassFunction<jex_dcomplex> (
    &pass_table<jex_dcomplex, Direction::forward>())[kinds][largest_kernel_radix + 1];
extern template const PassFunction<jex_dcomplex> (
    &pass_table<jex_dcomplex, Direction::backward>())[kinds][largest_kernel_radix + 1];
extern template const PassFunction<jex_scomplex> (
    &pass_table<jex_scomplex, Direction::forward>())[kinds][largest_kernel_radix + 1];
extern template const PassFunction<jex_scomplex> (
    &pass_table<jex_scomplex, Direction::backward>())[kinds][largest_kernel_radix + 1];

template <class T>
PassFunction<T> pass_function(int radix, Direction d, Kind kind) {
  if (radix > largest_kernel_radix) return nullptr;
  return d == Direction::forward ? pass_table<T, Direction::forward>()[int(kind)][radix]
                                 : pass_table<T, Direction::backward>()[int(kind)][radix];
}

template PassFunction<jex_dcomplex> pass_function<jex_dcomplex>(int, Direction, Kind);
template PassFunction<jex_scomplex> pass_function<jex_scomplex>(int, Direction, Kind);

}  // namespace jex::dft
