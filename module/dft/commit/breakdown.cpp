// Ready-made cases of one complex transform: fixed lengths from a table, and small plans.
#include <math.h>

#include "dft/commit/commit.h"
#include "dft/engine/kernels.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

template <class T>
constexpr int32_t precision_of = std::is_same_v<T, jex_dcomplex> ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE;

bool is_in_place(const Record& d) { return get(d, placement) != JEX_DFT_NOT_IN_PLACE; }

// One complex transform of this precision, side by side from offset 0 on.
template <class T>
bool is_plain(const Record& d) {
  const bool in_place = is_in_place(d);
  return get(d, precision) == precision_of<T> && get(d, forward_domain) == JEX_DFT_COMPLEX &&
         get(d, rank) == 1 && get(d, complex_storage) == JEX_DFT_INTERLEAVED &&
         get(d, input_offset) == 0 && (in_place || get(d, output_offset) == 0) &&
         get(d, number_of_transforms) == 1 && get(d, input_stride) == 1 &&
         (in_place || get(d, output_stride) == 1);
}

// First steps of every apply.
void take_over(Record& d, const jex_dft_breakdown* self) {
  set(d, commit_state, JEX_DFT_UNCOMMITTED);
  set(d, forward_entry, nullptr);
  set(d, backward_entry, nullptr);
  const jex_dft_breakdown* active = get(d, active_breakdown);
  if (active && active != self) active->release(&d);
  set(d, active_breakdown, self);
}

void install(Record& d, ComputeEntry forward, ComputeEntry backward) {
  set(d, forward_entry, forward);
  set(d, backward_entry, backward);
  set(d, commit_state, JEX_DFT_COMMITTED);
}

// A table of lengths; its entries are those of fixed_entry().
template <class T, int32_t... lengths>
struct TableBreakdown {
  static bool has(int32_t n) { return ((n == lengths) || ...); }

  static double score(const Record* d) {
    const bool is_unscaled =
        scale_of<T>(*d, Direction::forward) == 1 && scale_of<T>(*d, Direction::backward) == 1;
    return is_plain<T>(*d) && is_unscaled && has(get(*d, length)) ? 1.0 : 0.0;
  }
  static int32_t apply(Record* d) {
    take_over(*d, &object);
    const int32_t n = get(*d, length);
    if (!has(n)) return JEX_DFT_NOT_IN_TABLE;
    install(*d, fixed_entry<T>(n, Direction::forward, is_in_place(*d)),
            fixed_entry<T>(n, Direction::backward, is_in_place(*d)));
    return JEX_DFT_SUCCESS;
  }
  static int32_t release(Record*) { return JEX_DFT_SUCCESS; }
  static const jex_dft_breakdown object;
};
template <class T, int32_t... lengths>
constexpr jex_dft_breakdown TableBreakdown<T, lengths...>::object = {score, apply, release};

// A plan of the engine that needs little work space: it comes from the stack.
struct PlanCache {
  void* plan;
  int32_t length, mode, spare;
};
static_assert(sizeof(PlanCache) == 16);

constexpr int32_t longest_small = 4096, most_small_work = 2048;

// The scaling mode that the scales stand for, compared exactly; 0 for none.
template <class T>
int32_t scaling_mode(const Record& d) {
  const double n = get(d, length);
  const auto forward = scale_of<T>(d, Direction::forward);
  const auto backward = scale_of<T>(d, Direction::backward);
  const auto whole = Real<T>(1 / n), root = Real<T>(1 / sqrt(n));
  if (forward == 1 && backward == 1) return scale_neither;
  if (forward == whole && backward == 1) return scale_forward;
  if (forward == 1 && backward == whole) return scale_backward;
  if (forward == root && backward == root) return scale_both;
  return 0;
}

template <class T, Direction d>
[[gnu::noinline]] void run_small(const Plan<T>& plan, const T* in, T* out) {
  alignas(64) char work[most_small_work + 64];
  run_plan(plan, d, in, out, work, Real<T>(1));
}

template <class T, Direction d>
int32_t compute_small(Record* record, T* in, T* out) {
  const auto* cache = static_cast<const PlanCache*>(get(*record, breakdown_cache));
  const auto* plan = static_cast<const Plan<T>*>(cache->plan);
  // The short way for short lengths: no work area.
  if (plan->fixed[int(d)] && is_aligned(in, out))
    plan->fixed[int(d)](in, out, whole_scale(*plan, d, Real<T>(1)));
  else
    run_small<T, d>(*plan, in, out);
  return JEX_DFT_SUCCESS;
}
template <class T, Direction d>
int32_t compute_small_in_place(Record* record, T* x) {
  return compute_small<T, d>(record, x, x);
}

template <class T>
struct SmallBreakdown {
  static double score(const Record* d) {
    const int32_t n = get(*d, length);
    return is_plain<T>(*d) && n >= 1 && n <= longest_small && scaling_mode<T>(*d) ? 1.0 : 0.0;
  }

  static int32_t apply(Record* d) {
    take_over(*d, &object);
    auto* cache = static_cast<PlanCache*>(get(*d, breakdown_cache));
    if (!cache) {
      cache = static_cast<PlanCache*>(serv::aligned_calloc(1, sizeof(PlanCache), 16));
      if (!cache) return JEX_DFT_NO_MEMORY;
      set(*d, breakdown_cache, cache);
    }
    const int32_t n = get(*d, length), mode = scaling_mode<T>(*d);
    if (!cache->plan || cache->length != n || cache->mode != mode)
      if (const int32_t status = renew(*cache, n, mode)) {
        release(d);
        return status;
      }
    constexpr auto forward = Direction::forward, backward = Direction::backward;
    if (is_in_place(*d))
      install(*d, reinterpret_cast<ComputeEntry>(compute_small_in_place<T, forward>),
              reinterpret_cast<ComputeEntry>(compute_small_in_place<T, backward>));
    else
      install(*d, reinterpret_cast<ComputeEntry>(compute_small<T, forward>),
              reinterpret_cast<ComputeEntry>(compute_small<T, backward>));
    return JEX_DFT_SUCCESS;
  }

  static int32_t release(Record* d) {
    auto* cache = static_cast<PlanCache*>(get(*d, breakdown_cache));
    if (!cache) return JEX_DFT_SUCCESS;
    destroy_plan(static_cast<Plan<T>*>(cache->plan));
    serv::aligned_free(cache);
    set(*d, breakdown_cache, nullptr);
    return JEX_DFT_SUCCESS;
  }
  static const jex_dft_breakdown object;

 private:
  static int32_t renew(PlanCache& cache, int32_t n, int32_t mode) {
    destroy_plan(static_cast<Plan<T>*>(cache.plan));
    cache = {};
    Plan<T>* plan = nullptr;
    if (const EngineCode code = create_plan<T>(&plan, n, mode, 0))
      return code == engine_no_memory ? JEX_DFT_NO_MEMORY : JEX_DFT_FAILURE;
    cache = {plan, n, mode, 0};
    return plan->plan_work_bytes <= most_small_work ? JEX_DFT_SUCCESS : JEX_DFT_NOT_IN_TABLE;
  }
};
template <class T>
constexpr jex_dft_breakdown SmallBreakdown<T>::object = {score, apply, release};

template <class T>
int32_t apply_list(Record& d) {
  static constexpr const jex_dft_breakdown* list[] = {
      &TableBreakdown<T, 8, 16, 32, 64, 128>::object,
      &TableBreakdown<T, 2, 4, 8, 16, 32, 64>::object, &SmallBreakdown<T>::object, nullptr};
  for (const jex_dft_breakdown* const* at = list; *at; ++at)
    if ((*at)->score(&d) != 0 && (*at)->apply(&d) == JEX_DFT_SUCCESS) return JEX_DFT_SUCCESS;
  return JEX_DFT_NO_BREAKDOWN;
}

}  // namespace

int32_t apply_complex_1d_double(Record& d) { return apply_list<jex_dcomplex>(d); }
int32_t apply_complex_1d_single(Record& d) { return apply_list<jex_scomplex>(d); }

}  // namespace jex::dft
