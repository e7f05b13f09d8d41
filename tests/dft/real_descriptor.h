// Real transforms for tests: packed spectra place by place, and what both directions must give.
#pragma once

#include "dft/descriptor.h"

namespace jex::test {

enum class Packed { ccs, pack, perm, complex };
inline constexpr Packed all_packed[] = {Packed::ccs, Packed::pack, Packed::perm, Packed::complex};

// Where the parts of a spectrum of n values are, 2 k for a real and 2 k + 1 for an imaginary part;
// -1 for a number that is always zero.
inline std::vector<int> places_of(Packed format, int n) {
  std::vector<int> all{0};
  if (format == Packed::perm && n % 2 == 0) all.push_back(n);
  if (format == Packed::ccs || format == Packed::complex) all.push_back(-1);
  for (int k = 1; k < (n + 1) / 2; ++k) all.insert(all.end(), {2 * k, 2 * k + 1});
  if (n % 2 == 0 && format != Packed::perm) all.push_back(n);
  if (n % 2 == 0 && (format == Packed::ccs || format == Packed::complex)) all.push_back(-1);
  return all;
}

inline std::vector<long double> packed(const Spectrum& y, Packed format) {
  std::vector<long double> all;
  for (const int place : places_of(format, int(y.size())))
    all.push_back(place < 0 ? 0 : place % 2 == 0 ? y[place / 2].real() : y[place / 2].imag());
  return all;
}

// The whole spectrum that packed values stand for.
template <class R>
Spectrum unpacked(const R* values, int n, Packed format) {
  const auto places = places_of(format, n);
  Spectrum y(n);
  for (size_t i = 0; i < places.size(); ++i) {
    const int k = places[i] / 2;
    if (places[i] < 0) continue;
    y[k] = places[i] % 2 == 0 ? Wide(values[i], y[k].imag()) : Wide(y[k].real(), values[i]);
    if (k > 0) y[n - k] = std::conj(y[k]);
  }
  return y;
}

inline void set_packed(Descriptor& d, Packed format) {
  d[JEX_DFT_CONJUGATE_EVEN_STORAGE] =
      format == Packed::complex ? JEX_DFT_INTERLEAVED : JEX_DFT_REAL_ELEMENTS;
  d[JEX_DFT_PACKED_FORMAT] = format == Packed::pack   ? JEX_DFT_PACK
                             : format == Packed::perm ? JEX_DFT_PERM
                                                      : JEX_DFT_CCS;
}

template <class T>
Descriptor real_1d(jex_int n, Packed format, bool in_place) {
  Descriptor d(is_double<T> ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE, JEX_DFT_REAL, {n});
  set_packed(d, format);
  d[JEX_DFT_PLACEMENT] = in_place ? JEX_DFT_IN_PLACE : JEX_DFT_NOT_IN_PLACE;
  return d;
}

// Numbers against an unreadable page, offset bytes beyond a 16-byte boundary.
template <class R>
class Numbers {
 public:
  Numbers(size_t n, size_t offset = 0, Against side = Against::back)
      : n_(n),
        memory_(n * sizeof(R) + 32),
        p_(static_cast<R*>(memory_.place(n * sizeof(R), offset, side))) {
    for (size_t i = 0; i < n_; ++i) p_[i] = R(NAN);
  }
  R* data() { return p_; }
  size_t size() const { return n_; }
  R& operator[](size_t i) { return p_[i]; }

 private:
  size_t n_;
  Guarded memory_;
  R* p_;
};

// Root-mean-square distance relative to the expected values; NaN stays NaN.
template <class R>
double relative_error(const R* y, const std::vector<long double>& expected) {
  long double distance = 0, size = 0;
  for (size_t i = 0; i < expected.size(); ++i) {
    distance += (y[i] - expected[i]) * (y[i] - expected[i]);
    size += expected[i] * expected[i];
  }
  return double(sqrtl(distance / size));
}

}  // namespace jex::test
