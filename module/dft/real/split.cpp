#include "dft/real/split.h"

namespace jex::dft {
namespace {

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

// From the pairs k, m - k of x to those of z, their even and odd parts times half: registers of
// neighbours while they last. Pointers that walk take fewer instructions than an index. The middle,
// m even, is its own partner and remains.
template <class T, int sign>
JEX_INLINE inline void combine_pairs(const T* x, T* z, int32_t m, const T* roots, Real<T> half,
                                     PairRange pairs) {
  using V = Lanes<T>;
  T *low = z + 1 + pairs.first, *high = z + m - 1 - pairs.first;
  T* const end = z + 1 + pairs.end;
  roots += pairs.first;
  const uintptr_t apart = reinterpret_cast<uintptr_t>(x) - reinterpret_cast<uintptr_t>(z);
  const auto operand = [=](T* p) JEX_INLINE {
    return reinterpret_cast<const T*>(reinterpret_cast<uintptr_t>(p) + apart);
  };
  const auto combine = [&](auto whole) JEX_INLINE {
    using S = Side<T, whole>;
    const V a = S::load(operand(low)), b = S::load_mirrored(operand(high));
    V odd = a - b, even = a + b;
    if constexpr (sign > 0) even = simd::scaled(even, half), odd = simd::scaled(odd, half);
    odd = simd::pinned(odd);  // which the compiler would put on the stack meanwhile
    const V turned = simd::times_elements<sign>(odd, S::load(roots));
    S::store(even + turned, low);
    S::store_mirrored(even - turned, high);
    constexpr int width = S::behind + 1;
    low += width, high -= width;
    roots += width;
  };
  while (low + V::count <= end) combine(std::true_type());
  while (V::count > 1 && low < end) combine(std::false_type());
}

}  // namespace

template <class T>
void split_forward(T* z, int32_t m, const T* roots, Real<T> scale, PairRange pairs) {
  combine_pairs<T, 1>(z, z, m, roots, scale * Real<T>(0.5), pairs);
  if (pairs.first > 0) return;
  if (m % 2 == 0) z[m / 2] = {z[m / 2].re * scale, -z[m / 2].im * scale};
  const T first = z[0];
  z[0] = {(first.re + first.im) * scale, (first.re - first.im) * scale};
}

template <class T>
void split_backward(const T* x, const Real<T>* last, T* z, int32_t m, const T* roots,
                    PairRange pairs) {
  combine_pairs<T, -1>(x, z, m, roots, 1, pairs);
  if (pairs.first > 0) return;
  if (m % 2 == 0) z[m / 2] = {2 * x[m / 2].re, -2 * x[m / 2].im};
  const Real<T> first = x[0].re, middle = *last;
  z[0] = {first + middle, first - middle};
}

#define INSTANTIATE(T)                                                          \
  template void split_forward(T*, int32_t, const T*, simd::Real<T>, PairRange); \
  template void split_backward(const T*, const simd::Real<T>*, T*, int32_t, const T*, PairRange);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
