// The kernels of one dimension.
#include <jex/core_imports.h>

#include "dft/commit/commit.h"
#include "dft/engine/kernels.h"
#include "dft/engine/large.h"

namespace jex::dft {
namespace {

// A real transform of even length runs on complex elements of half the number.
int32_t complex_length(const Record& record) {
  const int32_t n = get(record, length);
  const bool is_halved = get(record, forward_domain) == JEX_DFT_REAL &&
                         get(record, dimension_index) == 0 && n % 2 == 0;
  return is_halved ? n / 2 : n;
}

template <class T>
int32_t build_plan(Record& descriptor, Record& record, Word<void*> slot) {
  const int32_t n = complex_length(record);
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
  release_chain(descriptor);
  set(descriptor, child, nullptr);
  return code == engine_no_memory ? JEX_DFT_NO_MEMORY : JEX_DFT_FAILURE;
}

template <class T>
void store_pair(Record& record, Kernel forward, Kernel backward) {
  set(record, Words<T>::forward_kernel, forward);
  set(record, Words<T>::backward_kernel, backward);
}

template <class T>
void store_real_kernels(Record& record) {
  for (const int first : {Words<T>::real_kernels, Words<T>::pack_kernels})
    for (const int word : {first, first + 1}) set(record, Word<Kernel>{word}, no_kernel());
}

}  // namespace

template <class T>
int32_t init_large(Record* record, Record* descriptor) {
  const int32_t status = make_large_table<T>(*record);
  if (status == JEX_DFT_NO_MEMORY) {
    release_chain(*descriptor);
    set(*descriptor, child, nullptr);
  }
  return status;
}

template <class T>
int32_t select_kernels(Record& descriptor, Record& record) {
  constexpr auto forward = Direction::forward, backward = Direction::backward;
  for (int word = JEX_DFT_KERNEL_AUX; word < JEX_DFT_KERNEL_AUX + 4; ++word) record.word[word] = 0;
  if (get(record, forward_domain) == JEX_DFT_REAL) store_real_kernels<T>(record);

  const int32_t n = complex_length(record);
  if (get(descriptor, complex_storage) == JEX_DFT_SEPARATE) {
    set(record, uses_engine, 1);
    store_pair<T>(record, separate_kernel<T>(forward), separate_kernel<T>(backward));
    return build_plan<T>(descriptor, record, Words<T>::separate_plan);
  }
  const bool is_scrambled = get(descriptor, ordering) != JEX_DFT_ORDERED;
  const Order order = is_scrambled ? Order::scrambled : Order::natural;
  if (is_pow2(n) && is_scrambled && n > Words<T>::longest_scrambled_engine &&
      get(record, forward_domain) == JEX_DFT_COMPLEX && jex_serv_cpu_detect()) {
    set(record, uses_engine, 0);
    store_pair<T>(record, large_kernel<T>(forward), large_kernel<T>(backward));
    return init_large<T>(&record, &descriptor);
  }
  set(record, uses_engine, 1);
  if (!is_pow2(n) && n <= 64)
    store_pair<T>(record, fixed_kernel<T>(n, forward, order), fixed_kernel<T>(n, backward, order));
  else
    store_pair<T>(record, engine_kernel<T>(forward, order), engine_kernel<T>(backward, order));
  return build_plan<T>(descriptor, record,
                       is_scrambled ? Words<T>::scrambled_plan : Words<T>::ordered_plan);
}

template int32_t init_large<jex_dcomplex>(Record*, Record*);
template int32_t init_large<jex_scomplex>(Record*, Record*);
template int32_t select_kernels<jex_dcomplex>(Record&, Record&);
template int32_t select_kernels<jex_scomplex>(Record&, Record&);

}  // namespace jex::dft
