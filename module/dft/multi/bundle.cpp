#include "dft/multi/bundle.h"

namespace jex::dft {
namespace {

template <class T, Direction d>
void run_wide(Real<T> scale, const Pass<T>& pass) {
  if (scale == 1)
    run_pass<wide_radix, d, Kind::last>(pass);
  else
    run_pass<wide_radix, d, Kind::scaled>(pass);
}

}  // namespace

template <class T>
void run_wide_pass(Direction d, Real<T> scale, View<const T> in, View<T> out, int width) {
  Pass<T> pass{};
  pass.in = in.base;
  pass.in_k = in.step;
  pass.out = out.base;
  pass.out_k = out.step;
  pass.scale = scale;
  pass.p_count = pass.q_count = 1;
  pass.c_count = width;
  if (d == Direction::forward)
    run_wide<T, Direction::forward>(scale, pass);
  else
    run_wide<T, Direction::backward>(scale, pass);
}

template void run_wide_pass<jex_dcomplex>(Direction, double, View<const jex_dcomplex>,
                                          View<jex_dcomplex>, int);
template void run_wide_pass<jex_scomplex>(Direction, float, View<const jex_scomplex>,
                                          View<jex_scomplex>, int);

}  // namespace jex::dft
