#include "dft/real/split.h"

namespace jex::dft {
namespace {

// Calls step(k, whole) for the pairs k, m - k, registers of neighbours while they last; whole is a
// constant of the compiler. The middle, m even, is its own partner and remains.
template <class T, class Step>
JEX_INLINE inline void for_pairs(int32_t m, Step step) {
  constexpr int width = Lanes<T>::count;
  int32_t k = 1;
  for (; k + width - 1 < m - k - (width - 1); k += width) step(k, std::true_type());
  if (width > 1)
    for (; k < m - k; ++k) step(k, std::false_type());
}

template <class T, bool whole>
struct Side {
  using V = Lanes<T>;
  static constexpr int behind = whole ? V::count - 1 : 0;
  JEX_INLINE static V load(const T* p) { return whole ? V::load(p) : V::load_first(p); }
  JEX_INLINE static void store(V v, T* p) { whole ? v.store(p) : v.store_first(p); }
  // Element 0 of the register is at p, element 1 in front of it.
  JEX_INLINE static V load_mirrored(const T* p) {
    return simd::conjugate(whole ? simd::reversed(load(p - behind)) : load(p));
  }
  JEX_INLINE static void store_mirrored(V v, T* p) {
    v = simd::conjugate(v);
    store(whole ? simd::reversed(v) : v, p - behind);
  }
};

}  // namespace

template <class T>
void split_forward(T* z, int32_t m, const T* roots, Real<T> scale) {
  using V = Lanes<T>;
  const T first = z[0];
  z[0] = {(first.re + first.im) * scale, (first.re - first.im) * scale};
  const Real<T> half = scale * Real<T>(0.5);
  for_pairs<T>(m, [&](int32_t k, auto whole) JEX_INLINE {
    using S = Side<T, whole>;
    const V a = S::load(z + k), b = S::load_mirrored(z + m - k);
    const V even = simd::scaled(a + b, half), odd = simd::scaled(a - b, half);
    const V turned = simd::times_elements<1>(odd, S::load(roots + k - 1));
    S::store(even + turned, z + k);
    S::store_mirrored(even - turned, z + m - k);
  });
  if (m % 2 == 0) z[m / 2] = {z[m / 2].re * scale, -z[m / 2].im * scale};
}

template <class T>
void split_backward(const T* x, Real<T> last, T* z, int32_t m, const T* roots) {
  using V = Lanes<T>;
  const Real<T> first = x[0].re;
  for_pairs<T>(m, [&](int32_t k, auto whole) JEX_INLINE {
    using S = Side<T, whole>;
    const V a = S::load(x + k), b = S::load_mirrored(x + m - k);
    const V even = a + b;
    const V turned = simd::times_elements<-1>(a - b, S::load(roots + k - 1));
    S::store(even + turned, z + k);
    S::store_mirrored(even - turned, z + m - k);
  });
  if (m % 2 == 0) z[m / 2] = {2 * x[m / 2].re, -2 * x[m / 2].im};
  z[0] = {first + last, first - last};
}

#define INSTANTIATE(T)                                               \
  template void split_forward(T*, int32_t, const T*, simd::Real<T>); \
  template void split_backward(const T*, simd::Real<T>, T*, int32_t, const T*);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
