#include "dft/engine/plan.h"

#include <math.h>

#include "dft/engine/chirp.h"
#include "dft/engine/strided.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

template <class T>
EngineCode set_scaling(Plan<T>& plan, int32_t mode) {
  const double n = plan.plan_length;
  switch (mode) {
    case scale_neither:
      return engine_success;
    case scale_forward:
    case scale_backward:
      plan.fwd_scaled = mode == scale_forward;
      plan.bwd_scaled = mode == scale_backward;
      plan.plan_scale = 1 / n;
      return engine_success;
    case scale_both:
      plan.fwd_scaled = plan.bwd_scaled = 1;
      plan.plan_scale = 1 / sqrt(n);
      return engine_success;
    default:
      return engine_bad_mode;
  }
}

int32_t bytes_or_limit(uint64_t bytes) { return bytes > 0x7fffffc0 ? 0x7fffffc0 : int32_t(bytes); }

// Passes, for lengths that factor.
template <class T>
EngineCode make_factored(Plan<T>& plan) {
  const int32_t n = plan.plan_length;
  if (!make_transform(plan.transform, n, plan.blocks)) return engine_no_memory;
  plan.plan_work_bytes =
      bytes_or_limit(copy_bytes<T>(n) + uint64_t(scratch_elements(plan.transform)) * sizeof(T));
  return engine_success;
}

template <class T>
EngineCode make_tables(Plan<T>& plan) {
  const int32_t n = plan.plan_length;
  for (const Direction d : {Direction::forward, Direction::backward})
    plan.fixed[int(d)] = fixed_function<T>(n, d);
  if (n < shortest_planned) {
    make_transform(plan.transform, n, plan.blocks);
    return engine_success;
  }
  if ((n & (n - 1)) == 0) {
    plan.is_pow2 = 1;
    while ((1 << plan.pow2_tables.order) < n) ++plan.pow2_tables.order;
    return make_factored(plan);
  }
  if (n < factored_limit) {
    if (const int count = factorise(n, plan.factors)) {
      plan.mixed_radix = 1;
      plan.last_stage = count - 1;
      return make_factored(plan);
    }
  }
  if (n <= longest_direct) {
    if (!make_transform(plan.transform, n, plan.blocks)) return engine_no_memory;
    plan.direct_table = &plan.transform.columns.stages[0].odd;
    plan.plan_work_bytes = 2 * int32_t(sizeof(Real<T>)) * (n + 2);
    return engine_success;
  }
  if (n >= chirp_limit) return engine_bad_length;
  if (!make_chirp(plan)) return engine_no_memory;
  plan.plan_work_bytes = bytes_or_limit(
      copy_bytes<T>(n) + (uint64_t(plan.chirp_len) + scratch_elements(plan.transform)) * sizeof(T));
  return engine_success;
}

}  // namespace

template <class T>
EngineCode create_plan(Plan<T>** out, int32_t n, int32_t mode, int32_t hint) {
  if (!out) return engine_null_pointer;
  if (n < 1) return engine_bad_length;
  auto* plan = static_cast<Plan<T>*>(serv::aligned_calloc(1, sizeof(Plan<T>), 64));
  if (!plan) return engine_no_memory;
  plan->plan_kind = complex_plan;
  plan->plan_length = n;
  plan->plan_hint = hint;
  EngineCode code = set_scaling(*plan, mode);
  if (code == engine_success) code = make_tables(*plan);
  if (code == engine_success)
    *out = plan;
  else
    destroy_plan(plan);
  return code;
}

template <class T>
bool make_bundle(Plan<T>& plan) {
  if (plan.plan_length < 2 || plan.chirp_len) return true;
  return make_passes(plan.bundle, plan.plan_length, Use::columns, plan.blocks);
}

template <class T>
EngineCode plan_work_size(const Plan<T>* plan, int32_t* bytes) {
  if (!plan || !bytes) return engine_null_pointer;
  *bytes = plan->plan_work_bytes;
  return engine_success;
}

template <class T>
EngineCode destroy_plan(Plan<T>* plan) {
  if (!plan) return engine_null_pointer;
  plan->blocks.release();
  serv::aligned_free(plan);
  return engine_success;
}

namespace {

template <class T>
void run_aligned(const Plan<T>& plan, Direction d, const T* in, T* out, T* scratch, Real<T> scale) {
  if (plan.fixed[int(d)])
    plan.fixed[int(d)](in, out, scale);
  else if (plan.chirp_len)
    run_chirp(plan, d, in, out, scratch, scale);
  else if (plan.plan_length > 1)
    run_transform(plan.transform, d, in, out, scratch, scale);
  else
    *out = {in->re * scale, in->im * scale};
}

template <class T>
void run_on_copy(const Plan<T>& plan, Direction d, const T* in, T* out, T* copy, T* scratch,
                 Real<T> scale) {
  const int32_t n = plan.plan_length;
  gather(in, 1, copy, n);
  run_aligned(plan, d, copy, copy, scratch, scale);
  spread(copy, n, out, 1);
}

template <class T>
[[gnu::noinline]] void run_on_small_copy(const Plan<T>& plan, Direction d, const T* in, T* out,
                                         T* scratch, Real<T> scale) {
  alignas(64) T small[longest_direct];
  run_on_copy(plan, d, in, out, small, scratch, scale);
}

}  // namespace

template <class T>
void run_plan(const Plan<T>& plan, Direction d, const T* in, T* out, void* work, Real<T> scale) {
  scale = whole_scale(plan, d, scale);
  const bool fits = suits_kernels<T>(in, out);
  if (plan.fixed[int(d)] && fits) return plan.fixed[int(d)](in, out, scale);
  const int32_t n = plan.plan_length;
  T* const copy = static_cast<T*>(work);
  T* const scratch = copy + copy_bytes<T>(n) / sizeof(T);
  if (fits)
    run_aligned(plan, d, in, out, scratch, scale);
  else if (n <= longest_direct)
    run_on_small_copy(plan, d, in, out, scratch, scale);
  else
    run_on_copy(plan, d, in, out, copy, scratch, scale);
}

#define INSTANTIATE(T)                                                   \
  template EngineCode create_plan(Plan<T>**, int32_t, int32_t, int32_t); \
  template bool make_bundle(Plan<T>&);                                   \
  template EngineCode plan_work_size(const Plan<T>*, int32_t*);          \
  template EngineCode destroy_plan(Plan<T>*);                            \
  template void run_plan(const Plan<T>&, Direction, const T*, T*, void*, Real<T>);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
