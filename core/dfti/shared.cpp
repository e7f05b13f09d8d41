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

}  // namespace

bool Shared::suits(jex_dft_dfti_transform& t) {
  const jex_int least = t.dimensions > 1 ? least_elements : least_of_one_dimension;
  return t.thread_limit > 1 && t.word(JEX_DFT_USER_THREADS) < 2 &&
         t.word(JEX_DFT_NUMBER_OF_TRANSFORMS) == 1 && t.word(JEX_DFT_TOTAL_ELEMENTS) >= least;
}

jex_int Shared::make(jex_dft_dfti_transform& t, jex_int threads, std::unique_ptr<Shared>* out) {
  std::unique_ptr<Shared> shared(new (std::nothrow) Shared(t, threads));
  if (!shared) return JEX_DFT_NO_MEMORY;
  const auto phases =
      t.is_double() ? t.entries->jex_dft_d_phases_par : t.entries->jex_dft_s_phases_par;
  shared->phases_ = phases(t.records);
  if (shared->phases_ < 2) return JEX_DFT_SUCCESS;
  if (!shared->make_areas()) return JEX_DFT_NO_MEMORY;
  *out = std::move(shared);
  return JEX_DFT_SUCCESS;
}

bool Shared::make_areas() {
  const size_t bytes = size_t(transform_.word(JEX_DFT_MAX_WORK_SIZE)) * (threads_ - 1);
  areas_ = static_cast<char*>(
      ::operator new(std::max<size_t>(bytes, 64), std::align_val_t(64), std::nothrow));
  return areas_ != nullptr;
}

Shared::~Shared() { ::operator delete(areas_, std::align_val_t(64)); }

jex_int Shared::compute(bool forward, void* const (&a)[4]) {
  const Module& m = *transform_.entries;
  const auto run = transform_.is_double() ? m.jex_dft_d_dft_par : m.jex_dft_s_dft_par;
  const size_t bytes = size_t(transform_.word(JEX_DFT_MAX_WORK_SIZE));
  char* const first = transform_.pointer<char*>(JEX_DFT_WORK_BUFFERS);
  std::vector<jex_int> statuses(threads_, JEX_DFT_SUCCESS);
  for (jex_int phase = 0; phase < phases_; ++phase) {
    in_parallel(threads_, [&](jex_int i) {
      char* const area = i == 0 ? first : areas_ + (i - 1) * bytes;
      const jex_int status = run(transform_.records, forward ? -1 : 1, phase, i, threads_, area,
                                 a[0], a[1], a[2], a[3]);
      if (status) statuses[i] = status;
    });
    const jex_int worst = *std::max_element(statuses.begin(), statuses.end());
    if (worst) return worst;
  }
  return JEX_DFT_SUCCESS;
}

}  // namespace jex::dfti
