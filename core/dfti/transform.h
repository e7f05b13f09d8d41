// A user's transform: the module's descriptor, and what the core adds to it.
#pragma once

#include <jex/core.h>
#include <jex/dfti.h>

#include <memory>
#include <string.h>

#include "dfti/shared.h"

struct jex_dft_dfti_transform {
  static constexpr uint32_t living = 0x4a784674;
  static constexpr int most_dimensions = 7;

  jex_dft_descriptor* records = nullptr;  // one for each dimension, the fastest one first
  uint32_t state = living;                // anything else after the release
  const jex::Module* entries = nullptr;
  jex_int dimensions = 0;
  jex_int thread_limit = 1;
  std::unique_ptr<jex::dfti::Shared> shared;  // where commit left the transform to several threads

  jex_int& word(int at) { return records[0].word[at]; }
  template <class P>
  P pointer(int at) const {
    P value;
    memcpy(&value, &records[0].word[at], sizeof value);
    return value;
  }
  bool is_double() { return word(JEX_DFT_PRECISION) == JEX_DFT_DOUBLE; }
  bool is_committed() { return word(JEX_DFT_COMMIT_STATE) == JEX_DFT_COMMITTED; }
};

namespace jex::dfti {

using Transform = jex_dft_dfti_transform;

inline bool is_valid(const Transform* t) { return t && t->state == Transform::living; }

// A failed commit of several dimensions leaves the chain open behind its first record.
void link_chain(jex_dft_descriptor* records, jex_int dimensions);
// Takes back what a ready case allocated, if one is active.
void release_breakdown(Transform& t);
jex_int commit(Transform& t);
jex_int compute(Transform& t, int entry_word, void* const (&arrays)[4]);

}  // namespace jex::dfti
