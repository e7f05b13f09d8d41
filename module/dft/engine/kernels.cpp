// Kernels of one dimension: one transform, unit strides.
#include "dft/engine/kernels.h"

#include "dft/engine/fixed.h"
#include "dft/engine/strided.h"

namespace jex::dft {
namespace {

template <class T, Direction d>
int32_t run_engine(const void* in, void* out, const Plan<T>* plan, const Record& record,
                   void* work) {
  if (!plan) return JEX_DFT_FAILURE;
  run_plan(*plan, d, static_cast<const T*>(in), static_cast<T*>(out), work, scale_of<T>(record, d));
  return JEX_DFT_SUCCESS;
}

template <class T, Direction d, Order order>
int32_t run_engine_kernel(const void* in, void* out, Record* record, void* work) {
  constexpr auto word = order == Order::natural ? Words<T>::ordered_plan : Words<T>::scrambled_plan;
  return run_engine<T, d>(in, out, static_cast<const Plan<T>*>(get(*record, word)), *record, work);
}

template <class T, Direction d>
int32_t run_separate_kernel(const void* in, void* out, Record* record, void* work) {
  auto* from = static_cast<const void* const*>(in);
  auto* to = static_cast<void* const*>(out);
  const auto* plan = static_cast<const Plan<T>*>(get(*record, Words<T>::separate_plan));
  if (!plan) return JEX_DFT_FAILURE;
  const int32_t n = plan->plan_length;
  alignas(64) T small[longest_direct];
  T* const copy = n > longest_direct ? static_cast<T*>(work) : small;
  using R = Real<T>;
  gather_parts(static_cast<const R*>(from[0]), static_cast<const R*>(from[1]), 1, copy, n);
  const int32_t status = run_engine<T, d>(copy, copy, plan, *record, work);
  spread_parts(copy, n, static_cast<R*>(to[0]), static_cast<R*>(to[1]), 1);
  return status;
}

template <class T, Direction d, Order order, int n>
int32_t run_fixed_kernel(const void* in, void* out, Record* record, void* work) {
  if (!is_aligned(in, out)) return run_engine_kernel<T, d, order>(in, out, record, work);
  fixed_function<T>(n, d)(static_cast<const T*>(in), static_cast<T*>(out), scale_of<T>(*record, d));
  return JEX_DFT_SUCCESS;
}

template <class T, Direction d, Order order>
Kernel fixed_kernel_of(int32_t n) {
  struct Table {
    Kernel kernel[longest_fixed + 1];
  };
  static constexpr Table table = []<int... i>(std::integer_sequence<int, i...>) {
    Table kernels{};
    ((kernels.kernel[i + 2] = run_fixed_kernel<T, d, order, i + 2>), ...);
    return kernels;
  }
  (std::make_integer_sequence<int, longest_fixed - 1>());
  return n >= 2 && n <= longest_fixed ? table.kernel[n] : nullptr;
}

template <class T, Direction d, int n>
[[gnu::noinline]] void run_fixed_on_copy(const T* in, T* out) {
  alignas(64) T copy[n];
  gather(in, 1, copy, n);
  fixed_function<T>(n, d)(copy, copy, Real<T>(1));
  spread(copy, n, out, 1);
}

template <class T, Direction d, int n>
int32_t fixed_apart(Record*, const T* in, T* out) {
  if (is_aligned(in, out))
    fixed_function<T>(n, d)(in, out, Real<T>(1));
  else
    run_fixed_on_copy<T, d, n>(in, out);
  return JEX_DFT_SUCCESS;
}
template <class T, Direction d, int n>
int32_t fixed_in_place(Record* record, T* x) {
  return fixed_apart<T, d, n>(record, x, x);
}

template <class T, Direction d, int n>
ComputeEntry fixed_entry_of(bool in_place) {
  return in_place ? reinterpret_cast<ComputeEntry>(fixed_in_place<T, d, n>)
                  : reinterpret_cast<ComputeEntry>(fixed_apart<T, d, n>);
}

template <class T, Direction d>
ComputeEntry fixed_entry_of(int32_t n, bool in_place) {
  switch (n) {
    case 2:
      return fixed_entry_of<T, d, 2>(in_place);
    case 4:
      return fixed_entry_of<T, d, 4>(in_place);
    case 8:
      return fixed_entry_of<T, d, 8>(in_place);
    case 16:
      return fixed_entry_of<T, d, 16>(in_place);
    case 32:
      return fixed_entry_of<T, d, 32>(in_place);
    case 64:
      return fixed_entry_of<T, d, 64>(in_place);
    case 128:
      return fixed_entry_of<T, d, 128>(in_place);
    default:
      return nullptr;
  }
}

}  // namespace

template <class T>
Kernel engine_kernel(Direction d, Order order) {
  constexpr auto forward = Direction::forward, backward = Direction::backward;
  if (order == Order::natural)
    return d == forward ? run_engine_kernel<T, forward, Order::natural>
                        : run_engine_kernel<T, backward, Order::natural>;
  return d == forward ? run_engine_kernel<T, forward, Order::scrambled>
                      : run_engine_kernel<T, backward, Order::scrambled>;
}

template <class T>
Kernel separate_kernel(Direction d) {
  return d == Direction::forward ? run_separate_kernel<T, Direction::forward>
                                 : run_separate_kernel<T, Direction::backward>;
}

template <class T>
Kernel fixed_kernel(int32_t n, Direction d, Order order) {
  constexpr auto forward = Direction::forward, backward = Direction::backward;
  if (order == Order::natural)
    return d == forward ? fixed_kernel_of<T, forward, Order::natural>(n)
                        : fixed_kernel_of<T, backward, Order::natural>(n);
  return d == forward ? fixed_kernel_of<T, forward, Order::scrambled>(n)
                      : fixed_kernel_of<T, backward, Order::scrambled>(n);
}

template <class T>
ComputeEntry fixed_entry(int32_t n, Direction d, bool in_place) {
  return d == Direction::forward ? fixed_entry_of<T, Direction::forward>(n, in_place)
                                 : fixed_entry_of<T, Direction::backward>(n, in_place);
}

#define INSTANTIATE(T)                                        \
  template Kernel engine_kernel<T>(Direction, Order);         \
  template Kernel separate_kernel<T>(Direction);              \
  template Kernel fixed_kernel<T>(int32_t, Direction, Order); \
  template ComputeEntry fixed_entry<T>(int32_t, Direction, bool);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
