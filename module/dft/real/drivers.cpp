// Real transforms of one dimension: kernels, and compute entries.
#include "dft/real/short.h"
#include "dft/real/sides.h"

namespace jex::dft {
namespace {

template <class T, Direction d, Format format>
int32_t run_real_kernel(const void* in, void* out, Record* record, void* work) {
  const auto* plan = static_cast<const Plan<T>*>(get(*record, Words<T>::real_plan));
  return status_of(run_real_plan<T>(plan, d, static_cast<const Real<T>*>(in),
                                    static_cast<Real<T>*>(out), format, work,
                                    scale_of<T>(*record, d)));
}

// Lengths with a direct kernel: straight to it.
template <class T, Direction d, Format format>
int32_t run_short_kernel(const void* in, void* out, Record* record, void*) {
  using R = Real<T>;
  const auto* plan = static_cast<const Plan<T>*>(get(*record, Words<T>::real_plan));
  if (!in || !out || !plan || plan->plan_kind != real_plan_kind)
    return status_of(engine_null_pointer);
  run_short<T, d>(plan->plan_length, static_cast<const R*>(in), static_cast<R*>(out), format,
                  scale_of<T>(*record, d));
  return JEX_DFT_SUCCESS;
}

template <class T, Direction d>
Kernel short_kernel_of(Format format) {
  return format == Format::ccs    ? run_short_kernel<T, d, Format::ccs>
         : format == Format::pack ? run_short_kernel<T, d, Format::pack>
                                  : run_short_kernel<T, d, Format::perm>;
}

template <class T, Direction d>
Kernel kernel_of(int32_t n, Format format) {
  if (is_short_real<Real<T>>(n)) return short_kernel_of<T, d>(format);
  return format == Format::ccs    ? run_real_kernel<T, d, Format::ccs>
         : format == Format::pack ? run_real_kernel<T, d, Format::pack>
                                  : run_real_kernel<T, d, Format::perm>;
}

template <class T, Direction d>
[[gnu::noinline]] int32_t compute_many(Kernel kernel, Record* record, const Real<T>* in,
                                       Real<T>* out, const Operand& from, const Operand& to) {
  const WorkArea work(*record);
  if (work.is_missing(*record)) return JEX_DFT_NO_SLOT;
  int32_t status = JEX_DFT_SUCCESS;
  const int32_t count = get(*record, number_of_transforms);
  for (int32_t t = 0; t < count && status == JEX_DFT_SUCCESS; ++t) {
    status = run_line<T>(kernel, in, from, out, to, record, work.address());
    in += from.distance;
    out += to.distance;
  }
  return status;
}

template <class T, Direction d>
[[gnu::always_inline]] inline int32_t compute_real(Record* record, const Real<T>* in, Real<T>* out,
                                                   bool in_place) {
  const Kernel kernel = get(*record, in_pair(Words<T>::pack_kernels, d));
  if (!kernel) return JEX_DFT_FAILURE;
  const Operand from = input_of(*record, d, in_place), to = output_of(*record, d, in_place);
  in += from.offset;
  out += to.offset;
  if ((get(*record, layout_flags) & one_call) && get(*record, user_threads) < 2)
    return kernel(in, out, record, get(*record, work_buffers));
  return compute_many<T, d>(kernel, record, in, out, from, to);
}

template <class T, Direction d>
int32_t compute_real_in_place(Record* record, void* x) {
  return compute_real<T, d>(record, static_cast<Real<T>*>(x), static_cast<Real<T>*>(x), true);
}
template <class T, Direction d>
int32_t compute_real_apart(Record* record, const void* x, void* y) {
  return compute_real<T, d>(record, static_cast<const Real<T>*>(x), static_cast<Real<T>*>(y),
                            false);
}

template <class T, Direction d>
ComputeEntry entry_of(bool in_place) {
  return in_place ? reinterpret_cast<ComputeEntry>(compute_real_in_place<T, d>)
                  : reinterpret_cast<ComputeEntry>(compute_real_apart<T, d>);
}

}  // namespace

template <class T>
int32_t real_work_bytes(const RealPlan<T>& plan) {
  const int64_t bytes =
      (int64_t(plan.plan_work_bytes) + 63) / 64 * 64 + real_copy_bytes<Real<T>>(plan.plan_length);
  return bytes > 0x7fffffc0 ? 0x7fffffc0 : int32_t(bytes);
}

template <class T>
Kernel real_kernel(int32_t n, Direction d, Format format) {
  return d == Direction::forward ? kernel_of<T, Direction::forward>(n, format)
                                 : kernel_of<T, Direction::backward>(n, format);
}

template <class T>
ComputeEntry real_entry(Direction d, bool in_place) {
  return d == Direction::forward ? entry_of<T, Direction::forward>(in_place)
                                 : entry_of<T, Direction::backward>(in_place);
}

#define INSTANTIATE(T)                                        \
  template int32_t real_work_bytes(const RealPlan<T>&);       \
  template Kernel real_kernel<T>(int32_t, Direction, Format); \
  template ComputeEntry real_entry<T>(Direction, bool);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
