#include "dft/engine/bitrev.h"

#include <jex/types.h>

namespace jex::dft {

namespace {

// Counts i = 0, 1, .. and its reversal at once: adding 1 from the other end carries downward.
class Counter {
 public:
  explicit Counter(int bits) : top_(bits ? 1u << (bits - 1) : 0) {}
  uint32_t value() const { return value_; }
  uint32_t reversal() const { return reversal_; }
  void next() {
    ++value_;
    uint32_t bit = top_;
    for (; reversal_ & bit; bit >>= 1) reversal_ ^= bit;
    reversal_ |= bit;
  }

 private:
  uint32_t top_, value_ = 0, reversal_ = 0;
};

}  // namespace

template <class T>
void reverse_in_place(T* x, ptrdiff_t stride, int order) {
  if (order < 1) return;
  Counter i(order);
  for (uint32_t left = (1u << order) - 1; left > 0; --left) {
    i.next();
    if (i.reversal() <= i.value()) continue;
    T* const a = x + ptrdiff_t(i.value()) * stride;
    T* const b = x + ptrdiff_t(i.reversal()) * stride;
    const T keep = *a;
    *a = *b;
    *b = keep;
  }
}

// An index is (high, middle, low), high and low of `edge` bits. Squares of equal middle bits go
// through a buffer; rows of both arrays lie within one line or two.
template <class T>
void reverse_copy(const T* in, T* out, int order) {
  constexpr int edge = 3, side = 1 << edge;
  if (order < 0) return;
  if (order < 2 * edge) {
    for (uint32_t i = 0; i < 1u << order; ++i) out[reversed(i, order)] = in[i];
    return;
  }
  const int middle = order - 2 * edge;
  constexpr int bits[side] = {0, 4, 2, 6, 1, 5, 3, 7};
  Counter m(middle);
  for (uint32_t left = 1u << middle; left > 0; --left) {
    const T* const from = in + (ptrdiff_t(m.value()) << edge);
    T* const to = out + (ptrdiff_t(m.reversal()) << edge);
    T square[side][side];
    for (int high = 0; high < side; ++high)
      for (int low = 0; low < side; ++low)
        square[low][high] = from[(ptrdiff_t(high) << (middle + edge)) + low];
    for (int low = 0; low < side; ++low)
      for (int high = 0; high < side; ++high)
        to[(ptrdiff_t(bits[low]) << (middle + edge)) + bits[high]] = square[low][high];
    if (left > 1) m.next();
  }
}

template void reverse_in_place(jex_dcomplex*, ptrdiff_t, int);
template void reverse_in_place(jex_scomplex*, ptrdiff_t, int);
template void reverse_copy(const jex_dcomplex*, jex_dcomplex*, int);
template void reverse_copy(const jex_scomplex*, jex_scomplex*, int);

}  // namespace jex::dft
