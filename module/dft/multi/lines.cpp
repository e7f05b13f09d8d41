#include "dft/multi/lines.h"

#include <optional>

#include "dft/multi/bundle.h"

namespace jex::dft {
namespace {

template <class T>
Kernel kernel_of(const Record& record, Direction d) {
  return get(record, kernel_word<T>(d));
}

// Rows of unit stride need no copies.
template <class T, Direction d>
int32_t run_rows(Record* record, const Grid& grid, Real<T>* x, Real<T>* y, char* work,
                 Share share) {
  const Kernel kernel = kernel_of<T>(*record, d);
  if (!kernel) return JEX_DFT_FAILURE;
  return for_result_rows<T>(
      *record, grid, share, x, y, 2 * grid.n[0], work,
      [=](const Real<T>* from, Real<T>* to) { return kernel(from, to, record, work); });
}

template <class T>
const Plan<T>* plan_of(const Record& record) {
  return static_cast<const Plan<T>*>(get(record, complex_plan_word<T>(record)));
}

// A kernel for separate parts takes pairs of addresses; on a line it runs the plan.
template <class T, Direction d>
int32_t run_plan_on_line(const void* in, void* out, Record* record, void* work) {
  const auto* plan = plan_of<T>(*record);
  if (!plan) return JEX_DFT_FAILURE;
  run_plan(*plan, d, static_cast<const T*>(in), static_cast<T*>(out), work,
           scale_of<T>(*record, d));
  return JEX_DFT_SUCCESS;
}

// Passes for lines side by side, where the engine has such for the length.
template <class T>
const Passes<T>* bundle_passes(const Record& record) {
  const auto* plan = get(record, uses_engine) ? plan_of<T>(record) : nullptr;
  return plan && plan->bundle.count && plan->plan_length <= longest_bundled ? &plan->bundle
                                                                            : nullptr;
}

}  // namespace

template <class T>
uint64_t bundle_bytes(const Record& record) {
  const int32_t n = get(record, length), width = last_bundle_width<T>(n);
  const Passes<T>* const passes = bundle_passes<T>(record);
  const uint64_t elements =
      passes ? Steps<T>(*passes).elements(width) : uint64_t(width) * line_step<T>(n);
  return elements * sizeof(T) + 128;
}

template <class T, Direction d, class A>
int32_t run_lines(Record* record, const Grid& grid, int i, A from, A to, char* work, Share share) {
  constexpr bool has_pairs = A::unit == 2;
  if constexpr (has_pairs)
    if (i == 0 && grid.from[0] == 2 && grid.to[0] == 2)
      return run_rows<T, d>(record, grid, from.base, to.base, work, share);

  // Across: dimension 0 and those that continue it, or dimension 1.
  const int first = i == 0 ? 1 : 0;
  int64_t count = first < grid.rank ? grid.n[first] : 1;
  Units others(grid);
  for (int k = first + 1; k < grid.rank; ++k) {
    if (k == i) continue;
    const bool continues = k < i && others.is_empty() && grid.from[k] == count * grid.from[first] &&
                           grid.to[k] == count * grid.to[first];
    if (continues)
      count *= grid.n[k];
    else
      others.add(k);
  }
  const int32_t n = grid.n[i];
  const Passes<T>* const passes = bundle_passes<T>(*record);
  std::optional<Steps<T>> steps;
  if (passes) steps.emplace(*passes);
  const Bundle<T, d, A> bundle{record,
                               steps ? &*steps : nullptr,
                               has_pairs ? kernel_of<T>(*record, d) : run_plan_on_line<T, d>,
                               {n, grid.from[i], grid.from[first]},
                               {n, grid.to[i], grid.to[first]},
                               work,
                               bundle_buffer<T>(*record, work)};
  if (!bundle.kernel) return JEX_DFT_FAILURE;
  // Parts share groups of lines as narrow as a bundle may be.
  constexpr int group = narrow_bundle<T>;
  const int64_t groups = (count + group - 1) / group, all = others.count() * groups;
  const int64_t end = share.end(all);
  for (int64_t g = share.begin(all); g < end;) {
    const int64_t unit = g / groups, c = g % groups * group;
    const int64_t own = (end - unit * groups) * group, left = (own < count ? own : count) - c;
    const int width = int(left <= last_bundle_width<T>(n) ? left : bundle_width<T>(n));
    g += (width + group - 1) / group;
    others.seek(unit);
    const ptrdiff_t x = others.from, y = others.to;
    const int32_t status =
        bundle.run(from.at(x + c * grid.from[first]), to.at(y + c * grid.to[first]), width);
    if (status) return status;
  }
  return JEX_DFT_SUCCESS;
}

#define INSTANTIATE(T, d)                                                                        \
  template int32_t run_lines<T, d>(Record*, const Grid&, int, Pairs<T>, Pairs<T>, char*, Share); \
  template int32_t run_lines<T, d>(Record*, const Grid&, int, Parts<T>, Parts<T>, char*, Share);
INSTANTIATE(jex_dcomplex, Direction::forward)
INSTANTIATE(jex_dcomplex, Direction::backward)
INSTANTIATE(jex_scomplex, Direction::forward)
INSTANTIATE(jex_scomplex, Direction::backward)
template uint64_t bundle_bytes<jex_dcomplex>(const Record&);
template uint64_t bundle_bytes<jex_scomplex>(const Record&);

}  // namespace jex::dft
