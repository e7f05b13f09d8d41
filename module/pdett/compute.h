// A committed transform: its tables, and the computation of one line.
#pragma once

#include "dft/engine/record.h"
#include "pdett/state.h"

namespace jex::pdett {

// Tables of a kind, from element 1 of the real parameters on. h = (n - 1) / 2:
//
//   kinds 0, 1        sin(j pi / n), j = 1 .. h, then cosines
//   kinds 2 to 5      cos(k pi / 2n), k = 1 .. h, then sines
//   kinds 4, 5 also   2 cos((2j + 1) pi / 4n), j = 0 .. n-1; and of an even n, behind room for the
//                     first two, only cos((8j + 1) pi / 8n), j = 0 .. n/2-1, then sines
template <class R>
struct Tables {
  const R *first, *second, *weights;

  Tables(const R* par, jex_int n)
      : first(par + 1), second(first + (n - 1) / 2), weights(second + (n - 1) / 2) {}
};

// False when there is no memory.
template <class R>
bool make_tables(jex_int kind, jex_int n, R* par);

// The core's descriptor behind a handle; null where it is not what commit made for this n and
// precision.
template <class R>
dft::Record* descriptor_of(jex_dft_dfti_handle handle, jex_int n);

// f(0 .. n) in place. A status of the Fourier transform's: 0, or why it could not compute.
template <class R>
jex_int transform(jex_int kind, Side side, R* f, jex_int n, R scale, const R* par,
                  dft::Record* record);

}  // namespace jex::pdett
