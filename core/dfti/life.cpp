// Creation, commit, release, and the texts of the statuses.
#include "dfti/transform.h"
#include "threads/threads.h"

#include <cstdlib>
#include <new>

namespace jex::dfti {
namespace {

// A failed commit of several dimensions leaves the chain open behind its first record.
void link_chain(Transform& t) {
  for (jex_int i = 0; i < t.dimensions; ++i) {
    jex_dft_descriptor* const next = i + 1 < t.dimensions ? &t.records[i + 1] : nullptr;
    memcpy(&t.records[i].word[JEX_DFT_CHILD], &next, sizeof next);
  }
}

void release_breakdown(Transform& t) {
  const auto* active = t.pointer<const jex_dft_breakdown*>(JEX_DFT_ACTIVE_BREAKDOWN);
  if (active) active->release(t.records);
  t.word(JEX_DFT_ACTIVE_BREAKDOWN) = 0;
}

jex_int apply_breakdowns(Transform& t) {
  const Module& m = *t.entries;
  const bool one = t.dimensions == 1, complex = t.word(JEX_DFT_FORWARD_DOMAIN) == JEX_DFT_COMPLEX;
  if (t.is_double())
    return (complex ? one ? m.jex_dft_apply_bkdowns_d_c2c_1d : m.jex_dft_apply_bkdowns_d_c2c_md
            : one   ? m.jex_dft_apply_bkdowns_d_r2c_1d
                    : m.jex_dft_apply_bkdowns_d_r2c_md)(t.records);
  return (complex ? one ? m.jex_dft_apply_bkdowns_s_c2c_1d : m.jex_dft_apply_bkdowns_s_c2c_md
          : one   ? m.jex_dft_apply_bkdowns_s_r2c_1d
                  : m.jex_dft_apply_bkdowns_s_r2c_md)(t.records);
}

// A word that commit asks before it gives a single transform more than one thread, and no kernels.
constexpr int shares_word = JEX_DFT_WORD_66;

jex_int commit_by_module(Transform& t) {
  const auto commit = t.entries->jex_dft_commit_descriptor_core;
  t.word(shares_word) = Shared::suits(t);
  jex_int status = commit(t.records, nullptr);
  if (!t.word(shares_word) || status != JEX_DFT_SUCCESS) return status;
  status = Shared::make(t, &t.shared);
  if (status != JEX_DFT_SUCCESS) t.word(JEX_DFT_COMMIT_STATE) = JEX_DFT_UNCOMMITTED;
  if (status != JEX_DFT_SUCCESS || t.shared) return status;
  t.word(shares_word) = 0;
  return commit(t.records, nullptr);
}

// In place, the rows of a spectrum of complex elements take more room than those of the numbers.
bool has_room_for_rows(Transform& t) {
  if (t.dimensions < 2 || t.word(JEX_DFT_PLACEMENT) != JEX_DFT_IN_PLACE ||
      t.word(JEX_DFT_CONJUGATE_EVEN_STORAGE) != JEX_DFT_INTERLEAVED)
    return true;
  const int64_t along = t.word(JEX_DFT_INPUT_STRIDE);
  const int64_t row = t.records[1].word[JEX_DFT_INPUT_STRIDE];
  const int64_t elements = t.word(JEX_DFT_LENGTH) / 2 + 1;
  // Rows side by side may lie across them.
  return std::abs(row) >= 2 * elements * std::abs(along) || std::abs(along) > std::abs(row);
}

bool is_consistent(Transform& t) {
  if (t.word(JEX_DFT_FORWARD_DOMAIN) == JEX_DFT_REAL) {
    if (t.word(JEX_DFT_COMPLEX_STORAGE) == JEX_DFT_SEPARATE) return false;
    // Packed formats of numbers are told for one dimension and for two.
    if (t.dimensions > 2 && t.word(JEX_DFT_CONJUGATE_EVEN_STORAGE) != JEX_DFT_INTERLEAVED)
      return false;
    if (!has_room_for_rows(t)) return false;
  }
  // Several transforms in one place would overwrite each other.
  const bool in_place = t.word(JEX_DFT_PLACEMENT) == JEX_DFT_IN_PLACE;
  if (t.word(JEX_DFT_NUMBER_OF_TRANSFORMS) == 1) return true;
  return t.word(in_place ? JEX_DFT_INPUT_DISTANCE : JEX_DFT_OUTPUT_DISTANCE) != 0;
}

}  // namespace

jex_int commit(Transform& t) {
  if (!is_consistent(t)) return JEX_DFTI_INCONSISTENT_CONFIGURATION;
  link_chain(t);
  t.shared.reset();
  t.word(JEX_DFT_THREADS) = t.thread_limit;
  if (apply_breakdowns(t) == JEX_DFT_SUCCESS) {
    t.word(JEX_DFT_NIO_ARGS) = t.entries->jex_dft_determine_nioargs(t.records);
    t.word(JEX_DFT_THREADS) = 1;
    return JEX_DFT_SUCCESS;
  }
  release_breakdown(t);
  return commit_by_module(t);
}

}  // namespace jex::dfti

using namespace jex::dfti;

jex_int jex_dft_dfti_create_descriptor_d_md(jex_dft_dfti_handle* handle, jex_int precision,
                                            jex_int domain, jex_int dimension,
                                            const jex_int* lengths) {
  if (!handle) return JEX_DFTI_BAD_DESCRIPTOR;
  *handle = nullptr;
  if ((precision != JEX_DFT_SINGLE && precision != JEX_DFT_DOUBLE) ||
      (domain != JEX_DFT_COMPLEX && domain != JEX_DFT_REAL) || dimension < 1 ||
      dimension > Transform::most_dimensions || !lengths)
    return JEX_DFTI_INVALID_CONFIGURATION;
  jex_int fastest_first[Transform::most_dimensions];
  int64_t elements = 1;
  for (jex_int i = 0; i < dimension; ++i) {
    const jex_int length = lengths[dimension - 1 - i];
    if (length < 1) return JEX_DFTI_INVALID_CONFIGURATION;
    elements *= length;
    if (elements > INT32_MAX) return JEX_DFT_TOO_LONG;
    fastest_first[i] = length;
  }
  const jex::Module* entries = jex::module();
  if (!entries) return JEX_DFT_FAILURE;
  auto* t = new (std::nothrow) Transform;
  if (!t) return JEX_DFT_NO_MEMORY;
  t->entries = entries;
  t->dimensions = dimension;
  t->thread_limit = jex::thread_limit();
  const jex_int status = entries->jex_dft_create_descriptor_md(&t->records, precision, domain,
                                                               dimension, fastest_first);
  if (status == JEX_DFT_SUCCESS)
    *handle = t;
  else
    delete t;
  return status;
}

jex_int jex_dft_dfti_create_descriptor_d_1d(jex_dft_dfti_handle* handle, jex_int precision,
                                            jex_int domain, jex_int dimension, jex_int length) {
  if (handle) *handle = nullptr;
  if (dimension != 1) return handle ? JEX_DFTI_INVALID_CONFIGURATION : JEX_DFTI_BAD_DESCRIPTOR;
  return jex_dft_dfti_create_descriptor_d_md(handle, precision, domain, 1, &length);
}

jex_int jex_dft_dfti_commit_descriptor_external(jex_dft_dfti_handle handle) {
  return is_valid(handle) ? commit(*handle) : JEX_DFTI_BAD_DESCRIPTOR;
}

jex_int jex_dft_dfti_free_descriptor_external(jex_dft_dfti_handle* handle) {
  if (!handle || !is_valid(*handle)) return JEX_DFTI_BAD_DESCRIPTOR;
  Transform* const t = *handle;
  link_chain(*t);
  release_breakdown(*t);
  t->entries->jex_dft_free_allocated_buffers(t->records);
  t->entries->jex_serv_jex_free(t->records);
  t->state = 0;
  delete t;
  *handle = nullptr;
  return JEX_DFT_SUCCESS;
}

const char* jex_dft_dfti_error_message_external(jex_int status) {
  static constexpr const char* texts[] = {
      "no error",
      "there is no memory for the transform",
      "no such parameter, or a value that it cannot have",
      "the settings do not fit together, or the transform is not committed",
      "threads failed",
      "no valid handle",
      "this case is not offered",
      "the kernel module is missing, or has no driver for this case",
      "more threads compute at the same time than were announced",
      "a length is beyond the transform engine"};
  constexpr jex_int count = sizeof texts / sizeof *texts;
  return status >= 0 && status < count ? texts[status] : "an unknown status";
}
