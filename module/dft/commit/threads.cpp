// How many threads one compute call may use.
#include <math.h>

#include "dft/commit/commit.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

// Work of a call, in threads that it keeps busy.
int32_t worthwhile_threads(const Record& d) {
  double bytes = double(get(d, total_elements)) * get(d, number_of_transforms);
  if (get(d, forward_domain) == JEX_DFT_COMPLEX) bytes *= 2;
  bytes *= get(d, precision) == JEX_DFT_DOUBLE ? 8 : 4;
  const double t = floor(sqrt(bytes * log(bytes) / 313600.0) + 0.5);
  return t > 0 ? t < 0x7fffffff ? int32_t(t) : 0x7fffffff : 0;
}

bool all_zero(const Record& d, std::initializer_list<int> words) {
  for (const int word : words)
    if (d.word[word]) return false;
  return true;
}

void set_flags(Record& d) {
  uint32_t flags = get(d, layout_flags) & ~uint32_t(unit_single | two_level | one_call);
  if (get(d, number_of_transforms) == 1 && get(d, input_stride) == 1 &&
      get(d, output_stride) == 1 && all_zero(d, {61, 69}))
    flags |= unit_single | one_call;
  set(d, layout_flags, flags);
}

}  // namespace

void settle_threads(Record& d) {
  int32_t t = worthwhile_threads(d);
  if (const int32_t users = get(d, user_threads); users > 1) {
    set(d, threads, 1);
    set(d, per_thread_slots,
        static_cast<int32_t*>(serv::aligned_calloc(uint32_t(users), sizeof(int32_t), 16)));
    set(d, layout_flags, get(d, layout_flags) & ~uint32_t(two_level));
    return;
  }
  set_flags(d);
  const bool is_single = get(d, number_of_transforms) == 1;
  if (is_single && all_zero(d, {58, 59, 60, 61, 66, 67, 68, 69})) {
    set(d, threads, 1);
    return;
  }
  const int32_t least = is_single ? 2 : 1;
  if (t < least) t = least;
  if (get(d, threads) > t) set(d, threads, t);
}

}  // namespace jex::dft
