// Compute entries of one dimension: one transform or many, any strides, storage and placement.
#include "dft/engine/kernels.h"
#include "dft/engine/strided.h"
#include "dft/engine/work_area.h"

namespace jex::dft {
namespace {

template <class T>
struct Interleaved {
  static int32_t run(Kernel kernel, const T* in, ptrdiff_t in_stride, T* out, ptrdiff_t out_stride,
                     Record* record, char* work) {
    if (in_stride == 1 && out_stride == 1) return kernel(in, out, record, work);
    const int32_t n = get(*record, length);
    alignas(64) T small[longest_direct];
    const bool is_small = n <= longest_direct;
    T* const copy = is_small ? small : copy_area(*record, work, n);
    gather(in, in_stride, copy, n);
    const int32_t status = kernel(copy, copy, record, work);
    spread(copy, n, out, out_stride);
    return status;
  }

 private:
  // The engine's work area begins with room for it, that of the large kernel ends so.
  static T* copy_area(const Record& record, char* work, int32_t n) {
    if (get(record, uses_engine)) return reinterpret_cast<T*>(work);
    return reinterpret_cast<T*>(work + get(record, work_size)) - n;
  }
};

template <class T, Direction d>
int32_t compute_interleaved(Record* record, const T* in, T* out, bool in_place) {
  const Kernel kernel = get(*record, kernel_word<T>(d));
  if (!kernel) return JEX_DFT_FAILURE;
  const Layout from = input_layout(*record), to = output_layout(*record, in_place);
  in += from.offset;
  out += to.offset;
  if ((get(*record, layout_flags) & one_call) && get(*record, user_threads) < 2)
    return kernel(in, out, record, get(*record, work_buffers));
  const WorkArea work(*record);
  if (work.is_missing(*record)) return JEX_DFT_NO_SLOT;
  int32_t status = JEX_DFT_SUCCESS;
  const int32_t count = get(*record, number_of_transforms);
  for (int32_t t = 0; t < count && status == JEX_DFT_SUCCESS; ++t)
    status = Interleaved<T>::run(kernel, in + t * from.distance, from.stride, out + t * to.distance,
                                 to.stride, record, work.address());
  return status;
}

// A kernel for separate parts takes unit strides: others pass through a copy, side by side.
template <class T, Direction d>
int32_t compute_separate(Record* record, const Real<T>* const (&in)[2], Real<T>* const (&out)[2],
                         bool in_place) {
  using R = Real<T>;
  const Kernel kernel = get(*record, kernel_word<T>(d));
  const auto* plan = static_cast<const Plan<T>*>(get(*record, Words<T>::separate_plan));
  if (!kernel || !plan) return JEX_DFT_FAILURE;
  const Layout from = input_layout(*record), to = output_layout(*record, in_place);
  const WorkArea work(*record);
  if (work.is_missing(*record)) return JEX_DFT_NO_SLOT;
  const int32_t count = get(*record, number_of_transforms), n = get(*record, length);
  alignas(64) T small[longest_direct];
  T* const copy = n > longest_direct ? reinterpret_cast<T*>(work.address()) : small;
  int32_t status = JEX_DFT_SUCCESS;
  for (int32_t t = 0; t < count && status == JEX_DFT_SUCCESS; ++t) {
    const ptrdiff_t i = from.offset + t * from.distance, o = to.offset + t * to.distance;
    const R* const source[2] = {in[0] + i, in[1] + i};
    R* const target[2] = {out[0] + o, out[1] + o};
    if (from.stride == 1 && to.stride == 1) {
      status = kernel(source, const_cast<R**>(target), record, work.address());
      continue;
    }
    gather_parts(source[0], source[1], from.stride, copy, n);
    run_plan(*plan, d, copy, copy, work.address(), scale_of<T>(*record, d));
    spread_parts(copy, n, target[0], target[1], to.stride);
  }
  return status;
}

bool is_separate(const Record& record) { return get(record, complex_storage) == JEX_DFT_SEPARATE; }

// An entry reads as many of its arguments as there are arrays.
template <class T, Direction d>
int32_t compute_in_place(Record* record, void* a, void* b) {
  using R = Real<T>;
  if (!is_separate(*record))
    return compute_interleaved<T, d>(record, static_cast<T*>(a), static_cast<T*>(a), true);
  R* const x[2] = {static_cast<R*>(a), static_cast<R*>(b)};
  const R* const in[2] = {x[0], x[1]};
  return compute_separate<T, d>(record, in, x, true);
}

template <class T, Direction d>
int32_t compute_apart(Record* record, void* a, void* b, void* c, void* e) {
  using R = Real<T>;
  if (!is_separate(*record))
    return compute_interleaved<T, d>(record, static_cast<T*>(a), static_cast<T*>(b), false);
  const R* const in[2] = {static_cast<R*>(a), static_cast<R*>(b)};
  R* const out[2] = {static_cast<R*>(c), static_cast<R*>(e)};
  return compute_separate<T, d>(record, in, out, false);
}

int32_t compute_nothing(Record*) { return JEX_DFT_FAILURE; }
int32_t run_nothing(const void*, void*, Record*, void*) { return JEX_DFT_FAILURE; }

template <class T, Direction d>
ComputeEntry entry_of(bool in_place) {
  return in_place ? reinterpret_cast<ComputeEntry>(compute_in_place<T, d>)
                  : reinterpret_cast<ComputeEntry>(compute_apart<T, d>);
}

}  // namespace

template <class T>
ComputeEntry compute_entry(Direction d, bool in_place) {
  return d == Direction::forward ? entry_of<T, Direction::forward>(in_place)
                                 : entry_of<T, Direction::backward>(in_place);
}

ComputeEntry no_compute_entry() { return reinterpret_cast<ComputeEntry>(compute_nothing); }
Kernel no_kernel() { return run_nothing; }

template ComputeEntry compute_entry<jex_dcomplex>(Direction, bool);
template ComputeEntry compute_entry<jex_scomplex>(Direction, bool);

}  // namespace jex::dft
