#include "dft/multi/lines.h"

namespace jex::dft {
namespace {

// Longer lines take two levels, each by itself.
constexpr int32_t longest_bundled = 8192;

template <class T>
int bundle_width(int32_t n) {
  if (n <= longest_bundled) return bundle_for<T>(n);
  const int32_t most = (1 << 20) / (n * int32_t(sizeof(T)));
  return most < 1 ? 1 : most > narrow_bundle<T> ? narrow_bundle<T> : most;
}

// Lines of a bundle that are laid out one behind the other; powers of two would bring their
// elements to one place of the caches.
template <class T>
constexpr ptrdiff_t line_step(int32_t n) {
  return (n + narrow_bundle<T> - 1) / narrow_bundle<T> * narrow_bundle<T> + narrow_bundle<T> / 2;
}

inline char* next_boundary(char* p) {
  return reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(p) + 63) & ~uintptr_t(63));
}

template <class T>
struct Line {
  int32_t n;
  ptrdiff_t step, across;
};

template <class T>
bool is_row(const Pairs<T>&, ptrdiff_t across) {
  return across == 2;
}
template <class T>
bool is_row(const Parts<T>&, ptrdiff_t) {
  return false;
}
template <class T>
void copy_row(const T* x, T* y, int width) {
  using V = Lanes<T>;
  int c = 0;
  for (; c + V::count <= width; c += V::count) V::load(x + c).store(y + c);
  if (c < width) y[c] = x[c];
}
template <class T>
T* row_of(const Pairs<T>& a) {
  return reinterpret_cast<T*>(a.base);
}
template <class T>
T* row_of(const Parts<T>&) {
  return nullptr;
}

template <class T, class A>
void copy_in(A x, const Line<T>& line, T* to, ptrdiff_t step, ptrdiff_t across, int width) {
  if (across == 1 && is_row(x, line.across)) {
    for (int32_t j = 0; j < line.n; ++j)
      copy_row<T>(row_of(x.at(j * line.step)), to + j * step, width);
    return;
  }
  for (int32_t j = 0; j < line.n; ++j)
    for (int c = 0; c < width; ++c)
      to[j * step + c * across] = x.get(j * line.step + c * line.across);
}
template <class T, class A>
void copy_out(const T* from, ptrdiff_t step, ptrdiff_t across, A y, const Line<T>& line,
              int width) {
  if (across == 1 && is_row(y, line.across)) {
    for (int32_t j = 0; j < line.n; ++j)
      copy_row<T>(from + j * step, row_of(y.at(j * line.step)), width);
    return;
  }
  for (int32_t j = 0; j < line.n; ++j)
    for (int c = 0; c < width; ++c)
      y.put(j * line.step + c * line.across, from[j * step + c * across]);
}

template <class T, Direction d, class A>
struct Bundle {
  Record* record;
  const Plan<T>* plan;
  Kernel kernel;
  Line<T> from, to;
  char* work;
  T* buffer;

  int32_t run(A x, A y, int width) const {
    const int32_t n = from.n;
    if (plan && plan->bundle.count && n <= longest_bundled) {
      copy_in(x, from, buffer, width, 1, width);
      T* const buffers[2] = {buffer + n * width, buffer};
      run_passes<T>(plan->bundle, d, scale_of<T>(*record, d), {buffer, width}, {buffer, width},
                    width, buffers);
      copy_out(buffer, width, 1, y, to, width);
      return JEX_DFT_SUCCESS;
    }
    const ptrdiff_t step = line_step<T>(n);
    copy_in(x, from, buffer, 1, step, width);
    for (int c = 0; c < width; ++c) {
      T* const line = buffer + c * step;
      if (const int32_t status = kernel(line, line, record, work)) return status;
    }
    copy_out(buffer, 1, step, y, to, width);
    return JEX_DFT_SUCCESS;
  }
};

// The dimensions that neither run along the lines nor across the bundles.
struct Others {
  int count = 0;
  int dimension[most_dimensions];
  int64_t units = 1;

  void add(const Grid& grid, int k) {
    dimension[count++] = k;
    units *= grid.n[k];
  }
  // Places of the lines of a unit, the first dimension fastest.
  void place(const Grid& grid, int64_t unit, ptrdiff_t& from, ptrdiff_t& to) const {
    from = to = 0;
    for (int i = 0; i < count; ++i) {
      const int k = dimension[i];
      const int32_t index = int32_t(unit % grid.n[k]);
      unit /= grid.n[k];
      from += index * grid.from[k];
      to += index * grid.to[k];
    }
  }
};

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
  Others others;
  for (int k = 1; k < grid.rank; ++k) others.add(grid, k);
  const int64_t end = share.end(others.units);
  for (int64_t u = share.begin(others.units); u < end; ++u) {
    ptrdiff_t from, to;
    others.place(grid, u, from, to);
    if (const int32_t status = kernel(x + from, y + to, record, work)) return status;
  }
  return JEX_DFT_SUCCESS;
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

}  // namespace

template <class T>
uint64_t bundle_bytes(int32_t n) {
  const uint64_t width = bundle_width<T>(n);
  const uint64_t passes = n <= longest_bundled ? 2 * uint64_t(n) * width : 0;
  const uint64_t lines = width * line_step<T>(n);
  return (passes > lines ? passes : lines) * sizeof(T) + 128;
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
  Others others;
  for (int k = first + 1; k < grid.rank; ++k) {
    if (k == i) continue;
    const bool continues = k < i && others.count == 0 && grid.from[k] == count * grid.from[first] &&
                           grid.to[k] == count * grid.to[first];
    if (continues)
      count *= grid.n[k];
    else
      others.add(grid, k);
  }
  const int32_t n = grid.n[i];
  char* const buffer = next_boundary(work + get(*record, work_size) - bundle_bytes<T>(n));
  const Bundle<T, d, A> bundle{record,
                               get(*record, uses_engine) ? plan_of<T>(*record) : nullptr,
                               has_pairs ? kernel_of<T>(*record, d) : run_plan_on_line<T, d>,
                               {n, grid.from[i], grid.from[first]},
                               {n, grid.to[i], grid.to[first]},
                               work,
                               reinterpret_cast<T*>(buffer)};
  if (!bundle.kernel) return JEX_DFT_FAILURE;
  const int most = bundle_width<T>(n);
  const int64_t bundles = (count + most - 1) / most, units = others.units * bundles;
  const int64_t end = share.end(units);
  for (int64_t u = share.begin(units); u < end; ++u) {
    ptrdiff_t x, y;
    others.place(grid, u / bundles, x, y);
    const int64_t c = u % bundles * most;
    const int width = int(count - c < most ? count - c : most);
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
template uint64_t bundle_bytes<jex_dcomplex>(int32_t);
template uint64_t bundle_bytes<jex_scomplex>(int32_t);

}  // namespace jex::dft
