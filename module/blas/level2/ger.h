// Rank-one updates.
#pragma once

#include "blas/level1/dot.h"
#include "blas/level2/gemv_real.h"
#include "simd/prefetch.h"

namespace jex::blas {

// a(i) := a(i) + x(i) t, each element alone: the bits depend on no alignment.
template <Memory memory, class T>
[[gnu::noinline]] void update_column(int m, T t, const T* x, T* a) {
  constexpr int width = Lanes<T>::count;
  const Factor<T> factor(t);
  const auto rows = [&](int i) __attribute__((always_inline)) {
    const Lanes<T> product = pinned(pinned(Lanes<T>::load(x + i)) * factor);
    (Lanes<T>::load(a + i) + product).store(a + i);
  };
  const auto row = [&] __attribute__((always_inline)) {
    (Lanes<T>::load_first(a) + Lanes<T>::load_first(x) * factor).store_first(a);
  };
  const auto advance = [&](int count) __attribute__((always_inline)) {
    x = pinned(x + count);
    a = pinned(a + count);
  };
  T* const end = a + m;
  for (T* const begin = a + elements_to_boundary(a, m); a < begin; advance(1)) row();
  for (T* const last = end - 4 * width; a <= last; advance(4 * width)) {
    if constexpr (memory == Memory::far) simd::prefetch(a + bytes_ahead / sizeof(T));
    unrolled<4>([&](auto r) __attribute__((always_inline)) { rows(r * width); });
  }
  for (T* const last = end - width; a <= last; advance(width)) rows(0);
  for (; a < end; advance(1)) row();
}

// A matrix that is read and written is fetched best by the hardware alone while the third cache
// holds it; beyond, a prefetch gains up to a fifth, and within it would cost as much.
inline constexpr size_t held_bytes = 40 << 20;

// A := alpha x y' + A; column j receives x (alpha y(j)), or with Conj::yes x (alpha conj(y(j))).
template <Conj conj, class T>
[[gnu::noinline]] void ger(int m, int n, T alpha, const T* x, int incx, const T* y, int incy, T* a,
                           int lda) {
  if (m < 1 || n < 1 || is_zero(alpha)) return;
  const bool far = is_far<T>(lda, n, held_bytes);
  y = start_of(y, n, incy);
  for (int j = 0; j < n; ++j, y += incy, a += lda) {
    const T t = multiply(alpha, conj == Conj::yes ? conjugate(*y) : *y);
    if (incx != 1) {
      const Factor<T> factor(t);
      for_each<T>(
          m, [=](Lanes<T> x, Lanes<T>& a) { a = a + x * factor; }, In<T>{x, incx}, InOut<T>{a});
    } else if (far) {
      update_column<Memory::far>(m, t, x, a);
    } else {
      update_column<Memory::near>(m, t, x, a);
    }
  }
}

}  // namespace jex::blas
