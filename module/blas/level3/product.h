// The matrix multiply as the other level-3 routines call it: one name for all types.
#pragma once

#include "blas/gemm/gemm.h"

namespace jex::blas {

enum class Side { left, right };

// C := alpha a b + beta C, a m x k and b k x n as their operands show them.
template <class T>
inline void product(int m, int n, int k, const T& alpha, const Operand<T>& a, const Operand<T>& b,
                    const T& beta, T* c, int ldc, Wanted wanted = Wanted::all) {
  if constexpr (is_complex<T>)
    gemm4(a.op, b.op, m, n, k, alpha, a.x, a.ld, b.x, b.ld, beta, c, ldc, wanted);
  else
    gemm(a.op, b.op, m, n, k, alpha, a.x, a.ld, b.x, b.ld, beta, c, ldc, wanted);
}

template <class T>
inline constexpr T one_of = real_element<T>(1);

// The operation that mirrors a symmetric or, with conjugation, a Hermitian matrix.
constexpr Op mirror(Conj conj) { return conj == Conj::yes ? Op::conj_transpose : Op::transpose; }

}  // namespace jex::blas
