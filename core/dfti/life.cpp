// Creation and release.
#include "dfti/transform.h"
#include "threads/threads.h"

#include <new>

namespace jex::dfti {

void link_chain(jex_dft_descriptor* records, jex_int dimensions) {
  for (jex_int i = 0; i < dimensions; ++i) {
    jex_dft_descriptor* const next = i + 1 < dimensions ? &records[i + 1] : nullptr;
    memcpy(&records[i].word[JEX_DFT_CHILD], &next, sizeof next);
  }
}

void release_breakdown(Transform& t) {
  const auto* active = t.pointer<const jex_dft_breakdown*>(JEX_DFT_ACTIVE_BREAKDOWN);
  if (active) active->release(t.records);
  t.word(JEX_DFT_ACTIVE_BREAKDOWN) = 0;
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
  link_chain(t->records, t->dimensions);
  release_breakdown(*t);
  t->entries->jex_dft_free_allocated_buffers(t->records);
  t->entries->jex_serv_jex_free(t->records);
  t->state = 0;
  delete t;
  *handle = nullptr;
  return JEX_DFT_SUCCESS;
}
