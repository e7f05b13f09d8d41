#include "dft/commit/commit.h"

#include "dft/engine/kernels.h"
#include "dft/multi/multi.h"
#include "dft/real/kernels.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

// What a descriptor keeps when it is committed again.
struct Kept {
  void *a = nullptr, *b = nullptr, *c = nullptr;
  int32_t cleanup = 0;

  static Kept take(Record& d) {
    const Kept kept{get(d, aux_buffer_a), get(d, aux_buffer_b), get(d, aux_buffer_c),
                    get(d, cleanup_pending)};
    Kept().put_into(d);
    return kept;
  }
  void put_into(Record& record) const {
    set(record, aux_buffer_a, a);
    set(record, aux_buffer_b, b);
    set(record, aux_buffer_c, c);
    set(record, cleanup_pending, cleanup);
  }
};

// What the dimensions of a transform share.
void copy_settings(const Record& from, Record& to) {
  const auto copy = [&](int first, int last) {
    for (int word = first; word <= last; ++word) to.word[word] = from.word[word];
  };
  copy(JEX_DFT_WORD_12, JEX_DFT_PLACEMENT);
  copy(JEX_DFT_WORD_23, JEX_DFT_TRANSPOSE);
  copy(JEX_DFT_INPUT_OFFSET, JEX_DFT_OUTPUT_DISTANCE);
}

template <class T>
int32_t plan_dimensions(Record& descriptor) {
  Record* record = &descriptor;
  const int32_t count = get(descriptor, rank);
  for (int32_t i = 0; i < count; ++i, record = get(*record, child)) {
    if (!record) return JEX_DFT_FAILURE;
    copy_settings(descriptor, *record);
    set(*record, dimension_index, i);
    if (const int32_t status = select_kernels<T>(descriptor, *record)) return status;
    if (get(*record, work_size) > get(descriptor, max_work_size))
      set(descriptor, max_work_size, get(*record, work_size));
    set(*record, commit_state, JEX_DFT_COMMITTED);
  }
  return JEX_DFT_SUCCESS;
}

// A transform that several threads share has no kernels of its own, nor those of an earlier commit.
template <class T>
void forget_kernels(Record& descriptor) {
  for (Record* record = &descriptor; record; record = get(*record, child)) {
    set(*record, Words<T>::forward_kernel, nullptr);
    set(*record, Words<T>::backward_kernel, nullptr);
  }
}

template <class T>
int32_t make_work_buffers(Record& d) {
  const int64_t bytes =
      (int64_t(get(d, max_work_size)) + 63) / 64 * 64 + int64_t(scratch_bytes<T>(d));
  if (bytes == 0) return JEX_DFT_SUCCESS;
  const int32_t users = get(d, user_threads);
  const int64_t total = bytes * (users < 2 ? get(d, threads) : users);
  char* block = nullptr;
  if (bytes <= 0x7fffffff && total <= 0x7fffffff) {
    set(d, max_work_size, int32_t(bytes));
    block = static_cast<char*>(serv::aligned_malloc(uint32_t(total), 64));
  }
  set(d, work_buffers, block);
  if (block) return JEX_DFT_SUCCESS;
  release_chain(d);
  return JEX_DFT_NO_MEMORY;
}

template <class T>
int32_t plan_all(Record& d) {
  settle_threads(d);
  if (get(d, user_threads) > 1 && !get(d, per_thread_slots)) {
    release_chain(d);
    return JEX_DFT_NO_MEMORY;
  }
  if (get(d, number_of_transforms) < 2 && get(d, threads) != 1)
    forget_kernels<T>(d);
  else if (const int32_t status = plan_dimensions<T>(d))
    return status;
  return make_work_buffers<T>(d);
}

template <class T>
void store_entries(Record& d, int32_t domain, bool is_single_dimension) {
  const bool in_place = get(d, placement) != JEX_DFT_NOT_IN_PLACE;
  int32_t arrays = in_place ? 1 : 2;
  if (get(d, complex_storage) == JEX_DFT_SEPARATE) arrays *= 2;
  set(d, nio_args, arrays);
  const auto entry = [&](Direction direction) {
    if (!is_single_dimension) return multi_entry<T>(d, direction, in_place);
    return domain == JEX_DFT_COMPLEX ? compute_entry<T>(direction, in_place)
                                     : real_entry<T>(direction, in_place);
  };
  set(d, forward_entry, entry(Direction::forward));
  set(d, backward_entry, entry(Direction::backward));
  set(d, commit_state, JEX_DFT_COMMITTED);
}

}  // namespace

template <class T>
int32_t commit(Record& d, int32_t domain, bool whole_chain) {
  set(d, commit_state, JEX_DFT_UNCOMMITTED);
  set(d, forward_entry, nullptr);
  set(d, backward_entry, nullptr);
  const Kept kept = Kept::take(d);
  release_chain(d);
  kept.put_into(d);
  if (const int32_t status = plan_all<T>(d)) {
    set(d, commit_state, JEX_DFT_UNCOMMITTED);
    return status;
  }
  store_entries<T>(d, domain, !whole_chain || get(d, rank) == 1);
  return JEX_DFT_SUCCESS;
}

int32_t commit_any(Record& d) {
  const int32_t domain = get(d, forward_domain);
  const bool whole_chain = get(d, rank) > 1;
  return get(d, precision) == JEX_DFT_SINGLE ? commit<jex_scomplex>(d, domain, whole_chain)
                                             : commit<jex_dcomplex>(d, domain, whole_chain);
}

template int32_t commit<jex_dcomplex>(Record&, int32_t, bool);
template int32_t commit<jex_scomplex>(Record&, int32_t, bool);

}  // namespace jex::dft
