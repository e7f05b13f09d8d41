// The kernels that change vectors element by element: axpy, scal, swap, copy and their indexed kin.
#pragma once

#include "blas/level1/streams.h"
#include "blas/level1/zero.h"

namespace jex::blas {

// y := alpha x + y, the product rounded before the sum. alpha = 0 reads and writes nothing.
template <class T>
inline void axpy(int n, T alpha, const T* x, int incx, T* y, int incy) {
  if (n < 1 || is_zero(alpha)) return;
  const Factor<T> a(alpha);
  for_each<T>(
      n, [=](Lanes<T> x, Lanes<T>& y) { y = y + x * a; }, In<T>{x, incx}, InOut<T>{y, incy});
}

// y(indx) := alpha x + y(indx), in the order of the indices: a repeated one is updated twice.
template <class T>
inline void axpyi(int nz, T alpha, const T* x, const jex_int* indx, T* y) {
  if (nz < 1 || is_zero(alpha)) return;
  const Factor<T> a(alpha);
  for_each<T>(
      nz, [=](Lanes<T> x, Lanes<T>& y) { y = y + x * a; }, In<T>{x}, Indexed(InOut<T>{y}, indx));
}

// x := alpha x; A is T, or the real type of a complex T.
template <class T, class A>
inline void scal(int n, A alpha, T* x, int incx) {
  const Factor<A> a(alpha);
  for_each<T>(
      n, [=](Lanes<T>& x) { x = x * a; }, InOut<T>{x, incx});
}

template <class T>
inline void swap(int n, T* x, int incx, T* y, int incy) {
  for_each<T>(
      n,
      [](Lanes<T>& x, Lanes<T>& y) {
        const Lanes<T> t = x;
        x = y;
        y = t;
      },
      InOut<T>{x, incx}, InOut<T>{y, incy});
}

// x := y(indx)
template <class T>
inline void gthr(int nz, const T* y, T* x, const jex_int* indx) {
  for_each<T>(
      nz, [](Lanes<T> y, Lanes<T>& x) { x = y; }, Indexed(In<T>{y}, indx), Out<T>{{x}});
}

// x := y(indx), y(indx) := 0, pair by pair: a repeated index gathers its value once, then zero.
template <class T>
inline void gthrz(int nz, T* y, T* x, const jex_int* indx) {
  for_each<T>(
      nz,
      [](Lanes<T>& y, Lanes<T>& x) {
        x = y;
        y = Lanes<T>::zero();
      },
      Indexed(InOut<T>{y}, indx), Out<T>{{x}});
}

// y(indx) := x
template <class T>
inline void sctr(int nz, const T* x, const jex_int* indx, T* y) {
  for_each<T>(
      nz, [](Lanes<T> x, Lanes<T>& y) { y = x; }, In<T>{x}, Indexed(Out<T>{{y}}, indx));
}

}  // namespace jex::blas
