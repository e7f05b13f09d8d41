// Peer library: level 1 as a user of Eigen writes it, on maps that promise no alignment.
// Unit strides only. The Fortran symbols let the benchmark treat it as any other BLAS.
#include <Eigen/Jacobi>

#include "eigen_maps.h"

namespace {

using namespace jex::bench;

template <class T, class S>
void rotate(Int n, T* x, T* y, S c, S s) {
  Vector<T> vx(x, n), vy(y, n);
  Eigen::internal::apply_rotation_in_the_plane(vx, vy, Eigen::JacobiRotation<S>(c, s));
}

template <class T>
auto magnitudes(const ConstVector<T>& x) {
  if constexpr (Eigen::NumTraits<T>::IsComplex) {
    return x.real().cwiseAbs() + x.imag().cwiseAbs();
  } else {
    return x.cwiseAbs();
  }
}

// A Fortran caller takes complex results as C's _Complex.
using FortranComplex8 = _Complex float;
using FortranComplex16 = _Complex double;

template <class F, class R>
F fortran(std::complex<R> z) {
  F result;
  __real__ result = z.real();
  __imag__ result = z.imag();
  return result;
}

}  // namespace

#define ANY_TYPE(t, T, asum, nrm2, R)                                                          \
  EXPORT void t##axpy_(const Int* n, const T* a, const T* x, const Int*, T* y, const Int*) {   \
    Vector<T>(y, *n) += *a * ConstVector<T>(x, *n);                                            \
  }                                                                                            \
  EXPORT void t##scal_(const Int* n, const T* a, T* x, const Int*) { Vector<T>(x, *n) *= *a; } \
  EXPORT void t##copy_(const Int* n, const T* x, const Int*, T* y, const Int*) {               \
    Vector<T>(y, *n) = ConstVector<T>(x, *n);                                                  \
  }                                                                                            \
  EXPORT void t##swap_(const Int* n, T* x, const Int*, T* y, const Int*) {                     \
    Vector<T>(x, *n).swap(Vector<T>(y, *n));                                                   \
  }                                                                                            \
  EXPORT R nrm2(const Int* n, const T* x, const Int*) { return ConstVector<T>(x, *n).norm(); } \
  EXPORT R asum(const Int* n, const T* x, const Int*) {                                        \
    return magnitudes<T>(ConstVector<T>(x, *n)).sum();                                         \
  }                                                                                            \
  EXPORT Int i##t##amax_(const Int* n, const T* x, const Int*) {                               \
    Eigen::Index place;                                                                        \
    magnitudes<T>(ConstVector<T>(x, *n)).maxCoeff(&place);                                     \
    return place + 1;                                                                          \
  }                                                                                            \
  EXPORT Int i##t##amin_(const Int* n, const T* x, const Int*) {                               \
    Eigen::Index place;                                                                        \
    magnitudes<T>(ConstVector<T>(x, *n)).minCoeff(&place);                                     \
    return place + 1;                                                                          \
  }
ANY_TYPE(s, float, sasum_, snrm2_, float)
ANY_TYPE(d, double, dasum_, dnrm2_, double)
ANY_TYPE(c, scomplex, scasum_, scnrm2_, float)
ANY_TYPE(z, dcomplex, dzasum_, dznrm2_, double)

#define DOT(name, T, R)                                                          \
  EXPORT R name(const Int* n, const T* x, const Int*, const T* y, const Int*) {  \
    return ConstVector<T>(x, *n).cast<R>().dot(ConstVector<T>(y, *n).cast<R>()); \
  }
DOT(sdot_, float, float)
DOT(ddot_, double, double)
DOT(dsdot_, float, double)
EXPORT float sdsdot_(const Int* n, const float* b, const float* x, const Int*, const float* y,
                     const Int*) {
  return static_cast<float>(
      *b + ConstVector<float>(x, *n).cast<double>().dot(ConstVector<float>(y, *n).cast<double>()));
}

#define COMPLEX_DOT(t, T, F)                                                            \
  EXPORT F t##dotc_(const Int* n, const T* x, const Int*, const T* y, const Int*) {     \
    return fortran<F>(ConstVector<T>(x, *n).dot(ConstVector<T>(y, *n)));                \
  }                                                                                     \
  EXPORT F t##dotu_(const Int* n, const T* x, const Int*, const T* y, const Int*) {     \
    return fortran<F>(ConstVector<T>(x, *n).cwiseProduct(ConstVector<T>(y, *n)).sum()); \
  }
COMPLEX_DOT(c, scomplex, FortranComplex8)
COMPLEX_DOT(z, dcomplex, FortranComplex16)

#define ROT(name, T, R)                                                                        \
  EXPORT void name(const Int* n, T* x, const Int*, T* y, const Int*, const R* c, const R* s) { \
    rotate(*n, x, y, *c, *s);                                                                  \
  }
ROT(srot_, float, float)
ROT(drot_, double, double)
ROT(csrot_, scomplex, float)
ROT(zdrot_, dcomplex, double)

#define REAL_SCAL(name, T, R) \
  EXPORT void name(const Int* n, const R* a, T* x, const Int*) { Vector<T>(x, *n) *= *a; }
REAL_SCAL(csscal_, scomplex, float)
REAL_SCAL(zdscal_, dcomplex, double)
