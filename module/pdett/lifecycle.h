// Init, commit, compute and free of a transform.
#pragma once

#include "pdett/state.h"

namespace jex::pdett {

// The spelling with two underscores marks its state as unfinished first.
enum class Spelling { one_underscore, two_underscores };

template <class R>
void init(Spelling spelling, jex_int n, jex_int kind, jex_int* ipar, R* par, jex_int* stat);
template <class R>
void commit(const R* f, jex_dft_dfti_handle* handle, jex_int* ipar, R* par, jex_int* stat);
template <class R>
void compute(Side side, R* f, jex_dft_dfti_handle* handle, jex_int* ipar, const R* par,
             jex_int* stat);
void free(jex_dft_dfti_handle* handle, jex_int* ipar, jex_int* stat);

}  // namespace jex::pdett
