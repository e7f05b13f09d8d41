#include "dfti/shared.h"

#include "dfti/transform.h"
#include "threads/threads.h"

#include <algorithm>
#include <new>
#include <vector>

namespace jex::dfti {
namespace {

// Below these numbers of elements a thread costs more than it saves. One dimension has to be cut
// into two levels first.
constexpr jex_int least_elements = 16384, least_of_one_dimension = 65536;

// Words that say what a transform is; the rest is what commit makes of them.
bool is_setting(int word) {
  return (word >= JEX_DFT_WORD_12 && word <= JEX_DFT_TRANSPOSE) ||
         (word >= JEX_DFT_FORWARD_SCALE_S && word <= JEX_DFT_BACKWARD_SCALE_D + 1) ||
         (word >= JEX_DFT_INPUT_OFFSET && word <= JEX_DFT_OUTPUT_DISTANCE);
}

}  // namespace

bool Shared::suits(jex_dft_dfti_transform& t) {
  const jex_int least = t.dimensions > 1 ? least_elements : least_of_one_dimension;
  return t.thread_limit > 1 && t.word(JEX_DFT_USER_THREADS) < 2 &&
         t.word(JEX_DFT_NUMBER_OF_TRANSFORMS) == 1 && t.word(JEX_DFT_TOTAL_ELEMENTS) >= least;
}

jex_int Shared::make(jex_dft_dfti_transform& t, std::unique_ptr<Shared>* out) {
  std::unique_ptr<Shared> shared(new (std::nothrow)
                                     Shared(*t.entries, t.is_double(), t.word(JEX_DFT_THREADS)));
  if (!shared) return JEX_DFT_NO_MEMORY;
  if (const jex_int status = shared->commit(t)) return status;
  const auto phases =
      t.is_double() ? t.entries->jex_dft_d_phases_par : t.entries->jex_dft_s_phases_par;
  shared->phases_ = phases(shared->records_);
  if (shared->phases_ < 2) return JEX_DFT_SUCCESS;
  if (!shared->make_areas()) return JEX_DFT_NO_MEMORY;
  *out = std::move(shared);
  return JEX_DFT_SUCCESS;
}

jex_int Shared::commit(jex_dft_dfti_transform& t) {
  std::vector<jex_int> lengths;
  for (jex_int i = 0; i < t.dimensions; ++i) lengths.push_back(t.records[i].word[JEX_DFT_LENGTH]);
  const jex_int status = module_.jex_dft_create_descriptor_md(&records_, t.word(JEX_DFT_PRECISION),
                                                              t.word(JEX_DFT_FORWARD_DOMAIN),
                                                              t.dimensions, lengths.data());
  if (status) return status;
  for (jex_int i = 0; i < t.dimensions; ++i)
    for (int word = 0; word < JEX_DFT_WORDS; ++word)
      if (is_setting(word)) records_[i].word[word] = t.records[i].word[word];
  return module_.jex_dft_commit_descriptor_core(records_, nullptr);
}

bool Shared::make_areas() {
  const size_t bytes = size_t(records_->word[JEX_DFT_MAX_WORK_SIZE]) * (threads_ - 1);
  areas_ = static_cast<char*>(
      ::operator new(std::max<size_t>(bytes, 64), std::align_val_t(64), std::nothrow));
  return areas_ != nullptr;
}

Shared::~Shared() {
  ::operator delete(areas_, std::align_val_t(64));
  if (!records_) return;
  link_chain(records_, records_->word[JEX_DFT_RANK]);
  module_.jex_dft_free_allocated_buffers(records_);
  module_.jex_serv_jex_free(records_);
}

jex_int Shared::compute(bool forward, void* const (&a)[4]) {
  const auto run = is_double_ ? module_.jex_dft_d_dft_par : module_.jex_dft_s_dft_par;
  const size_t bytes = size_t(records_->word[JEX_DFT_MAX_WORK_SIZE]);
  char* first;
  memcpy(&first, &records_->word[JEX_DFT_WORK_BUFFERS], sizeof first);
  std::vector<jex_int> statuses(threads_, JEX_DFT_SUCCESS);
  for (jex_int phase = 0; phase < phases_; ++phase) {
    in_parallel(threads_, [&](jex_int i) {
      char* const area = i == 0 ? first : areas_ + (i - 1) * bytes;
      const jex_int status =
          run(records_, forward ? -1 : 1, phase, i, threads_, area, a[0], a[1], a[2], a[3]);
      if (status) statuses[i] = status;
    });
    const jex_int worst = *std::max_element(statuses.begin(), statuses.end());
    if (worst) return worst;
  }
  return JEX_DFT_SUCCESS;
}

}  // namespace jex::dfti
