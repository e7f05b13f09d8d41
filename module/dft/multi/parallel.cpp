#include "dft/multi/parallel.h"

#include "dft/real/sides.h"

namespace jex::dft {
namespace {

// One long transform with unit strides in two levels, of complex numbers or, of half the length, of
// pairs of real ones.
template <class T>
struct LongTransform {
  const RealPlan<T>* real = nullptr;  // null for complex numbers
  const Plan<T>* levels = nullptr;    // null for a transform that is not shared

  explicit LongTransform(const Record& d) {
    if (get(d, rank) != 1 || get(d, input_stride) != 1 || get(d, output_stride) != 1) return;
    if (get(d, forward_domain) == JEX_DFT_REAL) {
      real =
          static_cast<const RealPlan<T>*>(static_cast<const Plan<T>*>(get(d, Words<T>::real_plan)));
      if (real && real->split) levels = real->complex;
    } else if (get(d, complex_storage) != JEX_DFT_SEPARATE && get(d, uses_engine)) {
      levels = static_cast<const Plan<T>*>(get(d, complex_plan_word<T>(d)));
    }
    if (levels && (levels->chirp_len || !levels->transform.has_rows)) levels = nullptr;
  }

  int32_t phases() const { return !levels ? 1 : real ? real_phases : 2; }

  // False for arrays that the kernels do not take.
  bool run(const Record& record, Direction d, int32_t phase, Share share, char* area,
           const void* from, void* to, bool in_place) const {
    if (!levels) return false;
    const uint32_t copy = copy_bytes<T>(levels->plan_length);
    T* const matrix = reinterpret_cast<T*>(get(record, work_buffers) + copy);
    T* const scratch = reinterpret_cast<T*>(area + copy);
    const Real<T> scale = scale_of<T>(record, d);
    if (real) {
      const Real<T>* const in =
          static_cast<const Real<T>*>(from) + input_of(record, d, in_place).offset;
      Real<T>* const out = static_cast<Real<T>*>(to) + output_of(record, d, in_place).offset;
      if (!suits_kernels<T>(d == Direction::forward ? in : out, out)) return false;
      run_real_phase(*real, d, phase, share, in, out, format_of(record), matrix, scratch, scale);
    } else {
      const T* const in = static_cast<const T*>(from) + get(record, input_offset);
      T* const out = static_cast<T*>(to) + get(record, in_place ? input_offset : output_offset);
      if (!suits_kernels<T>(in, out)) return false;
      run_level(levels->transform, d, phase, share, in, out, matrix, scratch, scale);
    }
    return true;
  }
};

bool has_phases(const Record& d) {
  const bool is_packed = get(d, forward_domain) == JEX_DFT_REAL &&
                         get(d, conjugate_even_storage) != JEX_DFT_INTERLEAVED;
  return get(d, rank) > 1 && !(is_packed && get(d, rank) > 2);
}

// By the entry that commit stored.
int32_t run_whole(Record* record, Direction d, const Arrays& x) {
  void* const* a = x.a;
  const ComputeEntry entry = get(*record, d == Direction::forward ? forward_entry : backward_entry);
  if (!entry) return JEX_DFT_FAILURE;
  switch (get(*record, nio_args)) {
    case 1:
      return reinterpret_cast<jex_dft_compute_1>(entry)(record, a[0]);
    case 2:
      return reinterpret_cast<jex_dft_compute_2>(entry)(record, a[0], a[1]);
    default:
      return reinterpret_cast<jex_dft_compute_4>(entry)(record, a[0], a[1], a[2], a[3]);
  }
}

}  // namespace

template <class T>
int32_t phase_count(const Record& d) {
  return has_phases(d) ? get(d, rank) : LongTransform<T>(d).phases();
}

template <class T>
int32_t run_part(Record* record, Direction d, int32_t phase, Share share, void* work,
                 const Arrays& arrays) {
  char* const area = static_cast<char*>(work);
  if (has_phases(*record))
    return run_phase<T>(record, d, arrays, 0, phase, share, area, get(*record, work_buffers));
  const bool in_place = get(*record, placement) != JEX_DFT_NOT_IN_PLACE;
  void *const in = arrays.a[0], *const out = arrays.a[in_place ? 0 : 1];
  if (LongTransform<T>(*record).run(*record, d, phase, share, area, in, out, in_place))
    return JEX_DFT_SUCCESS;
  return phase == 0 && share.part == 0 ? run_whole(record, d, arrays) : int32_t(JEX_DFT_SUCCESS);
}

#define INSTANTIATE(T)                            \
  template int32_t phase_count<T>(const Record&); \
  template int32_t run_part<T>(Record*, Direction, int32_t, Share, void*, const Arrays&);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
