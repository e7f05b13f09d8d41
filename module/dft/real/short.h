// Lengths with a direct kernel.
#pragma once

#include "dft/real/plan.h"

namespace jex::dft {

template <class T, Direction d>
[[gnu::always_inline]] inline void run_short(int32_t n, const Real<T>* in, Real<T>* out,
                                             Format format, Real<T> scale) {
  using R = Real<T>;
  if (d == Direction::backward && format != Format::perm) {
    unpack(in, out, n, format);
    in = out;
  }
  if (n > longest_real_kernel)
    halved_kernels<R, d>().scaled[n / 2](in, out, scale);
  else if (const RealKernels<R>& kernels = real_kernels<R, d>(); scale == 1)
    kernels.plain[n](in, out);
  else
    kernels.scaled[n](in, out, scale);
  if (d == Direction::forward) pack(out, n, format);
}

}  // namespace jex::dft
