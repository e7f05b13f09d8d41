#include "dft/commit/commit.h"
#include "dft/real/plan.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

template <class V>
void free_buffer(Record& record, Word<V> word) {
  serv::aligned_free(get(record, word));
  set(record, word, nullptr);
}

template <class T>
void destroy(Record& record, Word<void*> word) {
  destroy_plan(static_cast<Plan<T>*>(get(record, word)));
  set(record, word, nullptr);
}

template <class T>
void destroy_real(Record& record) {
  auto* plan = static_cast<Plan<T>*>(get(record, Words<T>::real_plan));
  destroy_real_plan(static_cast<RealPlan<T>*>(plan));
  set(record, Words<T>::real_plan, nullptr);
}

void run_cleanup(Record& record) {
  const Cleanup cleanup = get(record, cleanup_fn);
  if (!get(record, cleanup_pending) || !cleanup) return;
  cleanup(&record);
  set(record, cleanup_pending, 0);
  set(record, cleanup_fn, nullptr);
}

void release_record(Record& record) {
  free_buffer(record, work_buffers);
  free_buffer(record, aux_buffer_c);
  set(record, max_work_size, 0);
  set(record, work_size, 0);
  set(record, word_99, 0);
  destroy<jex_dcomplex>(record, Words<jex_dcomplex>::ordered_plan);
  destroy<jex_scomplex>(record, Words<jex_scomplex>::ordered_plan);
  destroy<jex_dcomplex>(record, Words<jex_dcomplex>::separate_plan);
  destroy<jex_scomplex>(record, Words<jex_scomplex>::separate_plan);
  run_cleanup(record);
  destroy<jex_dcomplex>(record, Words<jex_dcomplex>::scrambled_plan);
  destroy<jex_scomplex>(record, Words<jex_scomplex>::scrambled_plan);
  free_buffer(record, aux_buffer_b);
  free_buffer(record, aux_buffer_a);
  free_buffer(record, aux_buffer_e);
  free_buffer(record, aux_buffer_d);
  destroy_real<jex_dcomplex>(record);
  destroy_real<jex_scomplex>(record);
}

}  // namespace

int32_t release_chain(Record& descriptor) {
  free_buffer(descriptor, per_thread_slots);
  free_buffer(descriptor, work_buffers);
  free_buffer(descriptor, aux_buffer_c);
  Record* record = &descriptor;
  while (Record* next = get(*record, child)) record = next;
  for (;; record = get(*record, parent)) {
    release_record(*record);
    if (record == &descriptor) return JEX_DFT_SUCCESS;
  }
}

}  // namespace jex::dft
