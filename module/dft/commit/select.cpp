// The kernels of one dimension.
#include <jex/core_imports.h>

#include "dft/commit/commit.h"
#include "dft/engine/kernels.h"
#include "dft/engine/large.h"
#include "dft/multi/multi.h"
#include "dft/real/sides.h"

namespace jex::dft {

template <class T>
int32_t init_large(Record* record, Record* descriptor) {
  const int32_t status = make_large_table<T>(*record);
  if (status == JEX_DFT_NO_MEMORY) {
    release_chain(*descriptor);
    set(*descriptor, child, nullptr);
  }
  return status;
}

namespace {

// A real transform of even length runs on complex elements of half the number.
int32_t complex_length(const Record& record) {
  const int32_t n = get(record, length);
  const bool is_halved = get(record, forward_domain) == JEX_DFT_REAL &&
                         get(record, dimension_index) == 0 && n % 2 == 0;
  return is_halved ? n / 2 : n;
}

template <class T>
Plan<T>* plan_in(const Record& record, Word<void*> slot) {
  return static_cast<Plan<T>*>(get(record, slot));
}

int32_t fail(Record& descriptor, EngineCode code) {
  release_chain(descriptor);
  set(descriptor, child, nullptr);
  return status_of(code);
}

template <class T>
int32_t build_plan(Record& descriptor, Record& record, int32_t n, Word<void*> slot) {
  if (is_too_long(n)) return JEX_DFT_TOO_LONG;
  Plan<T>* plan = nullptr;
  EngineCode code = create_plan<T>(&plan, n, scale_neither, 0);
  int32_t bytes = 0;
  if (code == engine_success) {
    set(record, slot, plan);
    code = plan_work_size(plan, &bytes);
  }
  if (code == engine_success) {
    set(record, work_size, bytes);
    return JEX_DFT_SUCCESS;
  }
  return fail(descriptor, code);
}

template <class T>
void store_pair(Record& record, Kernel forward, Kernel backward) {
  set(record, Words<T>::forward_kernel, forward);
  set(record, Words<T>::backward_kernel, backward);
}

// Kernels for numbers, and the plan that they run on; it works with the complex plan.
template <class T>
int32_t add_real_plan(Record& descriptor, Record& record, const Plan<T>* complex) {
  const int32_t n = get(record, length);
  for (const Direction d : {Direction::forward, Direction::backward}) {
    set(record, in_pair(Words<T>::real_kernels, d), real_kernel<T>(n, d, Format::ccs));
    set(record, in_pair(Words<T>::pack_kernels, d), real_kernel<T>(n, d, format_of(descriptor)));
  }
  RealPlan<T>* plan = nullptr;
  const EngineCode code = create_real_plan<T>(&plan, n, scale_neither, 0, complex);
  if (code != engine_success) return fail(descriptor, code);
  set(record, Words<T>::real_plan, static_cast<Plan<T>*>(plan));
  const int32_t bytes = real_work_bytes(*plan);
  if (bytes > get(record, work_size)) set(record, work_size, bytes);
  return JEX_DFT_SUCCESS;
}

// The complex kernels of one dimension, and what they run on.
template <class T>
int32_t select_complex(Record& descriptor, Record& record) {
  constexpr auto forward = Direction::forward, backward = Direction::backward;
  const int32_t n = complex_length(record);
  const Word<void*> slot = complex_plan_word<T>(descriptor);
  if (slot.at == Words<T>::separate_plan.at) {
    set(record, uses_engine, 1);
    store_pair<T>(record, separate_kernel<T>(forward), separate_kernel<T>(backward));
    return build_plan<T>(descriptor, record, n, slot);
  }
  const bool is_scrambled = slot.at == Words<T>::scrambled_plan.at;
  const Order order = is_scrambled ? Order::scrambled : Order::natural;
  if (is_pow2(n) && is_scrambled && n > Words<T>::longest_scrambled_engine &&
      jex_serv_cpu_detect()) {
    set(record, uses_engine, 0);
    store_pair<T>(record, large_kernel<T>(forward), large_kernel<T>(backward));
    return init_large<T>(&record, &descriptor);
  }
  set(record, uses_engine, 1);
  if (!is_pow2(n) && n <= 64)
    store_pair<T>(record, fixed_kernel<T>(n, forward, order), fixed_kernel<T>(n, backward, order));
  else
    store_pair<T>(record, engine_kernel<T>(forward, order), engine_kernel<T>(backward, order));
  return build_plan<T>(descriptor, record, n, slot);
}

// The columns of numbers that a packed spectrum of two dimensions has: real transforms of the
// second length, besides the complex ones of the other columns.
template <class T>
int32_t add_real_columns(Record& descriptor, Record& record) {
  const int32_t n = get(record, length);
  Word<void*> slot = Words<T>::ordered_plan;
  if (n % 2 == 0) {
    slot = Words<T>::scrambled_plan;
    const int32_t bytes = get(record, work_size);
    if (const int32_t status = build_plan<T>(descriptor, record, n / 2, slot)) return status;
    if (bytes > get(record, work_size)) set(record, work_size, bytes);
  }
  return add_real_plan<T>(descriptor, record, plan_in<T>(record, slot));
}

// What the drivers of several dimensions need beside the kernels.
template <class T>
int32_t add_bundles(Record& descriptor, Record& record) {
  if (get(record, dimension_index) > 0 && get(record, uses_engine)) {
    Plan<T>* const plan = plan_in<T>(record, complex_plan_word<T>(descriptor));
    if (plan && !make_bundle(*plan)) return fail(descriptor, engine_no_memory);
  }
  const int64_t bytes = (int64_t(get(record, work_size)) + 63) / 64 * 64 +
                        int64_t(bundle_bytes<T>(record));
  set(record, work_size, bytes > 0x7fffffc0 ? 0x7fffffc0 : int32_t(bytes));
  return JEX_DFT_SUCCESS;
}

}  // namespace

template <class T>
int32_t select_kernels(Record& descriptor, Record& record) {
  for (int word = JEX_DFT_KERNEL_AUX; word < JEX_DFT_KERNEL_AUX + 4; ++word) record.word[word] = 0;
  int32_t status = select_complex<T>(descriptor, record);
  const bool is_real = get(descriptor, forward_domain) == JEX_DFT_REAL;
  const int32_t index = get(record, dimension_index), dimensions = get(descriptor, rank);
  if (status == JEX_DFT_SUCCESS && is_real && index == 0)
    status = add_real_plan<T>(descriptor, record, plan_in<T>(record, Words<T>::ordered_plan));
  if (status == JEX_DFT_SUCCESS && is_real && index == 1 && dimensions == 2 &&
      !has_complex_elements(descriptor))
    status = add_real_columns<T>(descriptor, record);
  if (status == JEX_DFT_SUCCESS && dimensions > 1) status = add_bundles<T>(descriptor, record);
  return status;
}

template int32_t init_large<jex_dcomplex>(Record*, Record*);
template int32_t init_large<jex_scomplex>(Record*, Record*);
template int32_t select_kernels<jex_dcomplex>(Record&, Record&);
template int32_t select_kernels<jex_scomplex>(Record&, Record&);

}  // namespace jex::dft
