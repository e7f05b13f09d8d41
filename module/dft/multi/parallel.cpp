#include "dft/multi/parallel.h"

namespace jex::dft {
namespace {

// The plan of one long complex transform with unit strides, in two levels; null for others.
template <class T>
const Plan<T>* two_levels(const Record& d) {
  if (get(d, rank) != 1 || get(d, forward_domain) != JEX_DFT_COMPLEX ||
      get(d, complex_storage) == JEX_DFT_SEPARATE || !get(d, uses_engine) ||
      get(d, input_stride) != 1 || get(d, output_stride) != 1)
    return nullptr;
  const auto* plan = static_cast<const Plan<T>*>(get(d, complex_plan_word<T>(d)));
  return plan && !plan->chirp_len && plan->transform.has_rows ? plan : nullptr;
}

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
  return has_phases(d) ? get(d, rank) : two_levels<T>(d) ? 2 : 1;
}

template <class T>
int32_t run_part(Record* record, Direction d, int32_t phase, Share share, void* work,
                 const Arrays& arrays) {
  char* const area = static_cast<char*>(work);
  if (has_phases(*record))
    return run_phase<T>(record, d, arrays, 0, phase, share, area, get(*record, work_buffers));
  const Plan<T>* const plan = two_levels<T>(*record);
  const bool in_place = get(*record, placement) != JEX_DFT_NOT_IN_PLACE;
  if (plan) {
    const T* const in = static_cast<const T*>(arrays.a[0]) + get(*record, input_offset);
    T* const out = static_cast<T*>(arrays.a[in_place ? 0 : 1]) +
                   get(*record, in_place ? input_offset : output_offset);
    if (std::is_same_v<T, jex_scomplex> || is_aligned(in, out)) {
      const uint32_t copy = copy_bytes<T>(plan->plan_length);
      run_level(plan->transform, d, phase, share.part, share.parts, in, out,
                reinterpret_cast<T*>(get(*record, work_buffers) + copy),
                reinterpret_cast<T*>(area + copy), scale_of<T>(*record, d));
      return JEX_DFT_SUCCESS;
    }
  }
  return phase == 0 && share.part == 0 ? run_whole(record, d, arrays) : int32_t(JEX_DFT_SUCCESS);
}

#define INSTANTIATE(T)                            \
  template int32_t phase_count<T>(const Record&); \
  template int32_t run_part<T>(Record*, Direction, int32_t, Share, void*, const Arrays&);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
