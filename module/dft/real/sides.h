// Operands and results of real transforms where they are not side by side.
#pragma once

#include "dft/engine/strided.h"
#include "dft/engine/work_area.h"
#include "dft/real/kernels.h"

namespace jex::dft {

// One side of a line: numbers, or a packed spectrum of numbers or of complex elements; how many
// numbers it has, and the stride between its elements.
struct Side {
  int32_t count;
  bool is_complex;
  ptrdiff_t stride;
};

// Strided operands of these lengths go through the stack.
constexpr int32_t most_on_stack = 192;

template <class R>
constexpr int32_t real_copy_bytes(int32_t n) {
  return n + 2 > most_on_stack ? int32_t((uint32_t(n + 2) * sizeof(R) + 63) / 64 * 64) : 0;
}

template <class T>
void gather_side(const Real<T>* x, const Side& side, Real<T>* to) {
  if (side.is_complex)
    gather(reinterpret_cast<const T*>(x), side.stride, reinterpret_cast<T*>(to), side.count / 2);
  else
    gather(x, side.stride, to, side.count);
}
template <class T>
void spread_side(const Real<T>* from, const Side& side, Real<T>* x) {
  if (side.is_complex)
    spread(reinterpret_cast<const T*>(from), side.count / 2, reinterpret_cast<T*>(x), side.stride);
  else
    spread(from, side.count, x, side.stride);
}

// A kernel on one line; the copy is at the end of the work area.
template <class T>
int32_t run_line(Kernel kernel, const Real<T>* in, const Side& from, Real<T>* out, const Side& to,
                 Record* record, char* work) {
  if (from.stride == 1 && to.stride == 1) return kernel(in, out, record, work);
  alignas(64) Real<T> small[most_on_stack];
  const int32_t bytes = real_copy_bytes<Real<T>>(get(*record, length));
  Real<T>* const copy =
      bytes ? reinterpret_cast<Real<T>*>(work + get(*record, work_size) - bytes) : small;
  gather_side<T>(in, from, copy);
  const int32_t status = kernel(copy, copy, record, work);
  spread_side<T>(copy, to, out);
  return status;
}

inline bool has_complex_elements(const Record& record) {
  return get(record, conjugate_even_storage) == JEX_DFT_INTERLEAVED;
}
inline Format format_of(const Record& record) {
  const int32_t format = get(record, packed_format);
  if (has_complex_elements(record)) return Format::ccs;
  return format == JEX_DFT_PACK   ? Format::pack
         : format == JEX_DFT_PERM ? Format::perm
                                  : Format::ccs;
}

// One side of a call. In place, offsets and distances count numbers on both sides.
struct Operand : Side {
  ptrdiff_t offset, distance;

  Operand(const Record& record, const Layout& layout, bool is_packed, bool in_place) {
    const int32_t n = get(record, length);
    is_complex = is_packed && has_complex_elements(record);
    count = is_packed ? packed_length(format_of(record), n) : n;
    stride = layout.stride;
    const int unit = is_complex && !in_place ? 2 : 1;
    offset = unit * layout.offset;
    distance = unit * layout.distance;
  }
};

inline Operand input_of(const Record& record, Direction d, bool in_place) {
  return {record, input_layout(record), d == Direction::backward, in_place};
}
inline Operand output_of(const Record& record, Direction d, bool in_place) {
  return {record, output_layout(record, in_place), d == Direction::forward, in_place};
}

}  // namespace jex::dft
