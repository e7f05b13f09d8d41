// Compute calls, and how the transforms of one are shared out among threads.
#include "dfti/transform.h"
#include "threads/threads.h"

#include <algorithm>
#include <cstdarg>
#include <new>
#include <vector>

namespace jex::dfti {
namespace {

using Entry = void (*)();

jex_int call(Entry entry, jex_dft_descriptor* record, jex_int arrays, void* const (&a)[4]) {
  switch (arrays) {
    case 1:
      return reinterpret_cast<jex_dft_compute_1>(entry)(record, a[0]);
    case 2:
      return reinterpret_cast<jex_dft_compute_2>(entry)(record, a[0], a[1]);
    default:
      return reinterpret_cast<jex_dft_compute_4>(entry)(record, a[0], a[1], a[2], a[3]);
  }
}

// The descriptor as one of several threads sees it: its transforms, its work area.
jex_dft_descriptor share_of(const jex_dft_descriptor& whole, jex_int first, jex_int count,
                            jex_int thread) {
  jex_dft_descriptor share = whole;
  share.word[JEX_DFT_NUMBER_OF_TRANSFORMS] = count;
  share.word[JEX_DFT_INPUT_OFFSET] += first * whole.word[JEX_DFT_INPUT_DISTANCE];
  share.word[JEX_DFT_OUTPUT_OFFSET] += first * whole.word[JEX_DFT_OUTPUT_DISTANCE];
  share.word[JEX_DFT_WORK_BUFFERS] += thread * whole.word[JEX_DFT_MAX_WORK_SIZE];
  return share;
}

}  // namespace

jex_int compute(Transform& t, int entry_word, void* const (&arrays)[4]) {
  if (t.shared) return t.shared->compute(entry_word == JEX_DFT_FORWARD_ENTRY, arrays);
  const Entry entry = t.pointer<Entry>(entry_word);
  const jex_int count = t.word(JEX_DFT_NUMBER_OF_TRANSFORMS), nio = t.word(JEX_DFT_NIO_ARGS);
  const jex_int threads = std::min(t.word(JEX_DFT_THREADS), count);
  if (threads < 2 || t.word(JEX_DFT_USER_THREADS) > 1) return call(entry, t.records, nio, arrays);

  std::vector<jex_dft_descriptor> shares;
  std::vector<jex_int> statuses(threads, JEX_DFT_SUCCESS);
  for (jex_int i = 0, first = 0; i < threads; ++i) {
    const jex_int end = jex_int(int64_t(count) * (i + 1) / threads);
    shares.push_back(share_of(*t.records, first, end - first, i));
    first = end;
  }
  in_parallel(threads, [&](jex_int i) { statuses[i] = call(entry, &shares[i], nio, arrays); });
  return *std::max_element(statuses.begin(), statuses.end());
}

namespace {

jex_int compute_call(Transform* t, int entry_word, void* first, va_list rest) {
  if (!is_valid(t)) return JEX_DFTI_BAD_DESCRIPTOR;
  if (!t->is_committed()) return JEX_DFTI_INCONSISTENT_CONFIGURATION;
  void* arrays[4] = {first};
  for (jex_int i = 1; i < t->word(JEX_DFT_NIO_ARGS); ++i) arrays[i] = va_arg(rest, void*);
  for (jex_int i = 0; i < t->word(JEX_DFT_NIO_ARGS); ++i)
    if (!arrays[i]) return JEX_DFTI_INVALID_CONFIGURATION;
  try {
    return compute(*t, entry_word, arrays);
  } catch (const std::bad_alloc&) {
    return JEX_DFT_NO_MEMORY;
  }
}

}  // namespace
}  // namespace jex::dfti

jex_int jex_dft_dfti_compute_forward(jex_dft_dfti_handle handle, void* array, ...) {
  va_list rest;
  va_start(rest, array);
  const jex_int status = jex::dfti::compute_call(handle, JEX_DFT_FORWARD_ENTRY, array, rest);
  va_end(rest);
  return status;
}

jex_int jex_dft_dfti_compute_backward(jex_dft_dfti_handle handle, void* array, ...) {
  va_list rest;
  va_start(rest, array);
  const jex_int status = jex::dfti::compute_call(handle, JEX_DFT_BACKWARD_ENTRY, array, rest);
  va_end(rest);
  return status;
}
