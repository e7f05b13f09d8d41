// The pieces of the mixed multiply, for a caller that packs once and multiplies often.
#pragma once

#include "blas/gemm/gemm.h"

namespace jex::blas {

template <class T>
void mixed_block_info(jex_int* rows, jex_int* columns, jex_int* steps, jex_int* a_bytes,
                      jex_int* b_bytes) {
  using R = Real<T>;
  *steps = steps_in_block<R>();
  *rows = rows_in_block<R>(*steps);
  *columns = staged_columns<R> / MixedScheme<T>::parts;
  *a_bytes = jex_int(*rows / Lanes<R>::count * lane_stride<R>(*steps) * sizeof(R));
  *b_bytes = jex_int(staged_columns<R> * *steps * Lanes<R>::count * sizeof(R));
}

template <class T>
void mixed_copy_a(Op op, int rows, int steps, const Real<T>* a, int lda, Real<T>* packed) {
  if (rows < 1 || steps < 1) return;
  pack_a<0>(MixedScheme<T>{T{}}, {a, lda, op}, rows, steps, packed);
}

template <class T>
void mixed_copy_b(Op op, int columns, int steps, T alpha, const T* b, int ldb, Real<T>* staged) {
  if (columns < 1 || steps < 1) return;
  stage_b<0>(MixedScheme<T>{alpha}, {b, ldb, op}, steps, columns, staged);
}

template <class T>
void mixed_inner(int rows, int columns, int steps, const Real<T>* packed, const Real<T>* staged,
                 T* c, int ldc) {
  if (rows < 1 || columns < 1 || steps < 1) return;
  using Scheme = MixedScheme<T>;
  add_block<0, First::accumulate, Source::staged>(
      Scheme{T{}}, packed, rows, staged_block<Scheme>(staged, steps), columns, steps, c, ldc);
}

}  // namespace jex::blas
