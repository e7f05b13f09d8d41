#include "dft/real/plan.h"

#include <math.h>

#include "dft/engine/roots.h"
#include "dft/engine/strided.h"
#include "dft/real/odd_direct.h"
#include "dft/real/odd_levels.h"
#include "dft/real/short.h"
#include "dft/real/split.h"
#include "dft/real/whole.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

template <class T>
const T* make_split(int32_t n, Blocks& blocks) {
  using R = Real<T>;
  const int32_t pairs = n / 4;
  T* const table = blocks.take<T>(uint32_t(pairs));
  Roots roots;
  if (!table || !roots.make(uint32_t(n))) return nullptr;
  for (int32_t k = 1; k <= pairs; ++k) {
    const Root w = roots(uint32_t(k));
    table[k - 1] = {R(-w.s), R(-w.c)};
  }
  return table;
}

// A fixed kernel goes without the ways of a plan where its arrays suit.
template <class T>
void run_half(const RealPlan<T>& plan, Direction d, const T* in, T* out, void* work,
              Real<T> scale) {
  const FixedFunction<T> fixed = plan.complex->fixed[int(d)];
  if (fixed && suits_kernels<T>(in, out))
    fixed(in, out, scale);
  else
    run_plan<T>(*plan.complex, d, in, out, work, scale);
}

constexpr int32_t boundary = 64;

template <class T>
EngineCode make_tables(RealPlan<T>& plan) {
  const int32_t n = plan.plan_length;
  plan.is_pow2 = (n & (n - 1)) == 0;
  plan.is_short = is_short_real<Real<T>>(n);
  if (plan.is_short) return engine_success;
  uint64_t bytes = 0;
  if (n % 2 == 0) {
    if (!plan.complex) return engine_null_pointer;
    plan.split = make_split<T>(n, plan.blocks);
    if (!plan.split) return engine_no_memory;
    plan.mixed_radix = plan.complex->mixed_radix;
    plan.chirp_len = plan.complex->chirp_len;
    bytes = uint32_t(plan.complex->plan_work_bytes);
  } else if (has_odd_levels(n)) {
    plan.mixed_radix = 1;
    plan.odd = make_odd_levels<T>(n, plan.blocks);
    if (!plan.odd) return engine_no_memory;
    bytes = odd_levels_elements(*plan.odd) * sizeof(T);
  } else if (n <= longest_odd_direct) {
    if (!make_odd_roots(n, plan.odd_roots, plan.blocks)) return engine_no_memory;
  } else {
    if (!plan.complex) return engine_null_pointer;
    plan.chirp_len = plan.complex->chirp_len;
    bytes = copy_bytes<T>(n) + uint64_t(uint32_t(plan.complex->plan_work_bytes));
  }
  // The area of a caller need not begin on a boundary.
  if (bytes) bytes += boundary;
  plan.plan_work_bytes = bytes > 0x7fffffc0 ? 0x7fffffc0 : int32_t(bytes);
  return engine_success;
}

template <class T>
EngineCode set_scaling(RealPlan<T>& plan, int32_t mode) {
  const double n = plan.plan_length;
  if (mode == scale_neither) return engine_success;
  plan.fwd_scaled = mode == scale_forward || mode == scale_both;
  plan.bwd_scaled = mode == scale_backward || mode == scale_both;
  plan.plan_scale = mode == scale_both ? 1 / sqrt(n) : 1 / n;
  return plan.fwd_scaled || plan.bwd_scaled ? engine_success : engine_bad_mode;
}

// The steps of an even length beside the transform of its pairs.
template <class T>
void split_pairs(const RealPlan<T>& plan, Direction d, const Real<T>* in, Real<T>* out,
                 Format format, Real<T> scale, PairRange pairs) {
  const int32_t n = plan.plan_length;
  T* const z = reinterpret_cast<T*>(out);
  if (d == Direction::forward) return split_forward(z, n / 2, plan.split, scale, pairs);
  if (format == Format::pack) in = out, format = Format::perm;
  split_backward(reinterpret_cast<const T*>(in), in + last_real(format, n), z, n / 2, plan.split,
                 pairs);
}
template <class T>
void change_format(const RealPlan<T>& plan, Direction d, const Real<T>* in, Real<T>* out,
                   Format format) {
  if (d == Direction::forward)
    pack(out, plan.plan_length, format);
  else if (format == Format::pack)
    unpack(in, out, plan.plan_length, format);
}

// PairRange of numbers as complex elements, and the split step.
template <class T>
void run_even(const RealPlan<T>& plan, Direction d, const Real<T>* in, Real<T>* out, Format format,
              void* work, Real<T> scale) {
  T* const z = reinterpret_cast<T*>(out);
  if (d == Direction::forward) {
    run_half<T>(plan, d, reinterpret_cast<const T*>(in), z, work, 1);
    split_pairs(plan, d, in, out, format, scale, PairRange::all(plan.plan_length / 2));
    change_format(plan, d, in, out, format);
  } else {
    change_format(plan, d, in, out, format);
    split_pairs(plan, d, in, out, format, scale, PairRange::all(plan.plan_length / 2));
    run_half<T>(plan, d, z, z, work, scale);
  }
}

// The complex transform of the numbers, or of the whole spectrum.
template <class T>
void run_as_complex(const RealPlan<T>& plan, Direction d, const Real<T>* in, Real<T>* out,
                    void* work, Real<T> scale) {
  const int32_t n = plan.plan_length;
  T* const x = static_cast<T*>(work);
  void* const rest = static_cast<char*>(work) + copy_bytes<T>(n);
  widen(d, in, x, n);
  run_plan<T>(*plan.complex, d, x, x, rest, scale);
  narrow(d, x, out, n);
}

template <class T>
void run_odd(const RealPlan<T>& plan, Direction d, const Real<T>* in, Real<T>* out, void* work,
             Real<T> scale) {
  if (plan.odd)
    run_odd_levels(*plan.odd, d, in, out, static_cast<T*>(work), scale);
  else if (plan.plan_length <= longest_odd_direct)
    run_odd_direct(plan.plan_length, plan.odd_roots, d, in, out, scale);
  else
    run_as_complex(plan, d, in, out, work, scale);
}

template <class T>
void run_packed(const RealPlan<T>& plan, Direction d, const Real<T>* in, Real<T>* out,
                Format format, void* work, Real<T> scale) {
  const int32_t n = plan.plan_length;
  if (d == Direction::backward && format != Format::perm) {
    unpack(in, out, n, format);
    in = out;
  }
  run_odd<T>(plan, d, in, out, work, scale);
  if (d == Direction::forward) pack(out, n, format);
}

}  // namespace

template <class T>
EngineCode create_real_plan(RealPlan<T>** out, int32_t n, int32_t mode, int32_t hint,
                            const Plan<T>* complex) {
  if (!out) return engine_null_pointer;
  if (n < 1) return engine_bad_length;
  auto* plan = static_cast<RealPlan<T>*>(serv::aligned_calloc(1, sizeof(RealPlan<T>), 64));
  if (!plan) return engine_no_memory;
  plan->plan_kind = real_plan_kind;
  plan->plan_length = n;
  plan->plan_hint = hint;
  plan->complex = complex;
  EngineCode code = set_scaling(*plan, mode);
  if (code == engine_success) code = make_tables(*plan);
  if (code == engine_success)
    *out = plan;
  else
    destroy_real_plan(plan);
  return code;
}

template <class T>
EngineCode destroy_real_plan(RealPlan<T>* plan) {
  if (plan && plan->odd) release_odd_levels(*plan->odd);
  return destroy_plan<T>(plan);
}

template <class T>
void run_real_phase(const RealPlan<T>& plan, Direction d, int32_t phase, Share share,
                    const Real<T>* in, Real<T>* out, Format format, T* matrix, T* scratch,
                    Real<T> scale) {
  const bool is_forward = d == Direction::forward;
  T* const z = reinterpret_cast<T*>(out);
  const int32_t level = is_forward ? phase : phase - 2;
  const PairRange all = PairRange::all(plan.plan_length / 2);
  if (level == 0 || level == 1)
    run_level(plan.complex->transform, d, level, share,
              is_forward ? reinterpret_cast<const T*>(in) : z, z, matrix, scratch,
              is_forward ? Real<T>(1) : scale);
  else if (phase == (is_forward ? 2 : 1))
    split_pairs(plan, d, in, out, format, scale,
                {int32_t(share.begin(all.end)), int32_t(share.end(all.end))});
  else if (share.part == 0)
    change_format(plan, d, in, out, format);
}

template <class T>
EngineCode run_real_plan(const Plan<T>* base, Direction d, const Real<T>* in, Real<T>* out,
                         Format format, void* work, Real<T> scale) {
  if (!base || !in || !out) return engine_null_pointer;
  if (base->plan_kind != real_plan_kind) return engine_wrong_kind;
  const auto& plan = *static_cast<const RealPlan<T>*>(base);
  if (d == Direction::forward ? plan.fwd_scaled : plan.bwd_scaled)
    scale = Real<T>(scale * plan.plan_scale);
  void* own = nullptr;
  if (plan.plan_work_bytes > 0) {
    if (!work) work = own = serv::aligned_malloc(uint32_t(plan.plan_work_bytes), boundary);
    if (!work) return engine_no_memory;
    work = reinterpret_cast<void*>((reinterpret_cast<uintptr_t>(work) + boundary - 1) &
                                   ~uintptr_t(boundary - 1));
  }
  if (plan.is_short && d == Direction::forward)
    run_short<T, Direction::forward>(plan.plan_length, in, out, format, scale);
  else if (plan.is_short)
    run_short<T, Direction::backward>(plan.plan_length, in, out, format, scale);
  else if (plan.split)
    run_even<T>(plan, d, in, out, format, work, scale);
  else
    run_packed<T>(plan, d, in, out, format, work, scale);
  if (own) serv::aligned_free(own);
  return engine_success;
}

#define INSTANTIATE(T)                                                                            \
  template void run_real_phase(const RealPlan<T>&, Direction, int32_t, Share,                     \
                               const simd::Real<T>*, simd::Real<T>*, Format, T*, T*,              \
                               simd::Real<T>);                                                    \
  template EngineCode create_real_plan(RealPlan<T>**, int32_t, int32_t, int32_t, const Plan<T>*); \
  template EngineCode destroy_real_plan(RealPlan<T>*);                                            \
  template EngineCode run_real_plan(const Plan<T>*, Direction, const simd::Real<T>*,              \
                                    simd::Real<T>*, Format, void*, simd::Real<T>);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
