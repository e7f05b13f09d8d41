// Commit: the settings hold together, and a ready case, the module or several threads take them.
#include "dfti/transform.h"

#include <cstdlib>

namespace jex::dfti {
namespace {

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

// A shared transform is committed once more, for one thread: its record computes by itself too, as
// whoever finds it behind the handle expects.
jex_int commit_by_module(Transform& t) {
  const auto commit = t.entries->jex_dft_commit_descriptor_core;
  jex_int threads = 1;
  if (Shared::suits(t)) {
    t.word(shares_word) = 1;
    if (const jex_int status = commit(t.records, nullptr)) return status;
    threads = t.word(JEX_DFT_THREADS);
  }
  t.word(shares_word) = 0;
  jex_int status = commit(t.records, nullptr);
  if (status != JEX_DFT_SUCCESS || threads < 2) return status;
  status = Shared::make(t, threads, &t.shared);
  if (status != JEX_DFT_SUCCESS) t.word(JEX_DFT_COMMIT_STATE) = JEX_DFT_UNCOMMITTED;
  return status;
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
  link_chain(t.records, t.dimensions);
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
