// What the Eigen peers share: maps that promise no alignment, and Fortran symbols, which let the
// benchmark treat them as any other BLAS.
#pragma once

#include <complex>
#include <cstdint>

#include <Eigen/Core>

#define EXPORT extern "C" __attribute__((visibility("default")))

namespace jex::bench {

using Int = int32_t;
using scomplex = std::complex<float>;
using dcomplex = std::complex<double>;

template <class T>
using Vector = Eigen::Map<Eigen::Matrix<T, Eigen::Dynamic, 1>>;
template <class T>
using ConstVector = Eigen::Map<const Eigen::Matrix<T, Eigen::Dynamic, 1>>;
template <class T>
using Dense = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;
template <class T>
using Matrix = Eigen::Map<Dense<T>, 0, Eigen::OuterStride<>>;
template <class T>
using ConstMatrix = Eigen::Map<const Dense<T>, 0, Eigen::OuterStride<>>;

inline bool is(const char* option, char letter) { return (*option & ~0x20) == letter; }

/// y := beta y, cleared where beta is 0.
template <class Map, class T>
void scale(Map y, T beta) {
  if (beta == T(0))
    y.setZero();
  else if (beta != T(1))
    y *= beta;
}

}  // namespace jex::bench
