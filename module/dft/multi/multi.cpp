#include "dft/multi/multi.h"

#include "dft/engine/work_area.h"
#include "dft/real/sides.h"

namespace jex::dft {
namespace {

bool is_in_place(const Record& record) { return get(record, placement) != JEX_DFT_NOT_IN_PLACE; }
bool is_real(const Record& record) { return get(record, forward_domain) == JEX_DFT_REAL; }

// A call on one array or two: where each begins, counted in numbers, and its strides.
struct Place {
  ptrdiff_t offset;
  ptrdiff_t stride[most_dimensions];
};

// unit: numbers of an element; unit0: of one along dimension 0, where it differs.
Place place_of(Record* record, bool output, int unit, int unit0, int32_t index) {
  const bool uses_output = output && !is_in_place(*record);
  Place place;
  const ptrdiff_t distance = get(*record, uses_output ? output_distance : input_distance);
  place.offset =
      unit * (get(*record, uses_output ? output_offset : input_offset) + index * distance);
  for (int k = 0; record && k < most_dimensions; ++k, record = get(*record, child))
    place.stride[k] = (k == 0 ? unit0 : unit) *
                      ptrdiff_t(get(*record, uses_output ? output_stride : input_stride));
  return place;
}

Grid grid_of(Record* record, const Place& from, const Place& to) {
  Grid grid{};
  for (; record && grid.rank < most_dimensions; record = get(*record, child), ++grid.rank) {
    grid.n[grid.rank] = get(*record, length);
    grid.from[grid.rank] = from.stride[grid.rank];
    grid.to[grid.rank] = to.stride[grid.rank];
  }
  return grid;
}

Record* record_of(Record* record, int dimension) {
  for (; dimension > 0 && record; --dimension) record = get(*record, child);
  return record;
}

// Dimension phase, the first from operand to result and the others on the results.
template <class T, Direction d, class A>
int32_t complex_phase(Record* first, A in, A out, int32_t index, int phase, Share share,
                      char* work) {
  const Place from = place_of(first, false, A::unit, A::unit, index);
  const Place to = place_of(first, true, A::unit, A::unit, index);
  Record* const record = record_of(first, phase);
  if (!record) return JEX_DFT_FAILURE;
  const A y = out.at(to.offset);
  if (phase > 0) return run_lines<T, d>(record, grid_of(first, to, to), phase, y, y, work, share);
  return run_lines<T, d>(record, grid_of(first, from, to), 0, in.at(from.offset), y, work, share);
}

// Rows of numbers and their spectra.
template <class T>
int32_t run_real_rows(Record* first, Kernel kernel, const Real<T>* x, const Side& from, Real<T>* y,
                      const Side& to, const Grid& grid, char* work, Share share) {
  if (from.stride == 1 && to.stride == 1)
    return for_result_rows<T>(
        *first, grid, share, x, y, to.count, work,
        [=](const Real<T>* in, Real<T>* out) { return kernel(in, out, first, work); });
  return for_rows(grid, share, [&](ptrdiff_t i, ptrdiff_t o) {
    return run_line<T>(kernel, x + i, from, y + o, to, first, work);
  });
}

// Real transforms with a spectrum of complex elements, n0/2 + 1 in a row.
template <class T, Direction d>
struct ComplexElements {
  using R = Real<T>;
  static constexpr bool is_forward = d == Direction::forward;
  Record* first;
  R *in, *out;
  int32_t index;
  char *work, *common;

  int32_t run(int phase, Share share) const {
    const bool in_place = is_in_place(*first);
    const int unit = in_place ? 1 : 2;
    const int dimensions = get(*first, rank);
    const Place numbers = place_of(first, !is_forward, 1, 1, index);
    const Place spectrum = place_of(first, is_forward, unit, 2, index);
    const int dimension = is_forward ? phase : dimensions - 1 - phase;
    // Backward, from array to array: the rows between the phases.
    Place between = spectrum;
    R* rows = is_forward ? out : in;
    if (!is_forward && !in_place) {
      rows = reinterpret_cast<R*>(common + get(*first, max_work_size) - scratch_bytes<T>(*first));
      between = dense();
    }
    if (dimension > 0) {
      const bool is_operand = !is_forward && dimension == dimensions - 1;
      const Place& from = is_operand ? spectrum : between;
      Grid grid = grid_of(first, from, between);
      grid.n[0] = grid.n[0] / 2 + 1;
      const Pairs<T> x{(is_operand ? in : rows) + from.offset}, y{rows + between.offset};
      Record* const record = record_of(first, dimension);
      return record ? run_lines<T, d>(record, grid, dimension, x, y, work, share) : JEX_DFT_FAILURE;
    }
    const int32_t n = get(*first, length);
    const Side real_side{n, false, numbers.stride[0]};
    const Side packed_side{packed_length(Format::ccs, n), true, between.stride[0] / 2};
    const Kernel kernel = real_kernel<T>(n, d, Format::ccs);
    if (is_forward)
      return run_real_rows<T>(first, kernel, in + numbers.offset, real_side, rows + between.offset,
                              packed_side, grid_of(first, numbers, between), work, share);
    return run_real_rows<T>(first, kernel, rows + between.offset, packed_side, out + numbers.offset,
                            real_side, grid_of(first, between, numbers), work, share);
  }

 private:
  Place dense() const {
    Place place{};
    ptrdiff_t step = 2;
    int k = 0;
    for (Record* r = first; r && k < most_dimensions; r = get(*r, child), ++k) {
      place.stride[k] = step;
      step *= k == 0 ? get(*r, length) / 2 + 1 : get(*r, length);
    }
    return place;
  }
};

// Real transforms of two dimensions with a packed spectrum: rows in the format; of the columns
// those of r0 and r(n0/2) in the format too, and those of complex results as complex transforms.
template <class T, Direction d>
struct PackedElements {
  using R = Real<T>;
  static constexpr bool is_forward = d == Direction::forward;
  Record* first;
  R *in, *out;
  int32_t index;
  char* work;

  int32_t run(int phase, Share share) const {
    const bool in_place = is_in_place(*first);
    const Place from = place_of(first, false, 1, 1, index), to = place_of(first, true, 1, 1, index);
    const Format format = format_of(*first);
    // From array to array the spectrum has no room but Perm's between the phases.
    const Format between = is_forward || in_place ? format : Format::perm;
    R *const x = in + from.offset, *const y = out + to.offset;
    if (is_forward && phase == 1) return columns(y, to, format, y, to, format, share);
    if (!is_forward && phase == 0) return columns(x, from, format, y, to, between, share);
    const Place& source = is_forward ? from : to;
    const int32_t n = get(*first, length);
    const Side numbers{n, false, is_forward ? from.stride[0] : to.stride[0]};
    const Side packed{packed_length(between, n), false, to.stride[0]};
    return run_real_rows<T>(first, real_kernel<T>(n, d, between), is_forward ? x : y,
                            is_forward ? numbers : packed, y, is_forward ? packed : numbers,
                            grid_of(first, source, to), work, share);
  }

 private:
  int32_t columns(R* x, const Place& from, Format from_format, R* y, const Place& to,
                  Format to_format, Share share) const {
    Record* const second = get(*first, child);
    if (!second) return JEX_DFT_FAILURE;
    const int32_t n = get(*first, length), m = get(*second, length);
    Grid grid = grid_of(first, from, to);
    grid.n[0] = (n - 1) / 2;
    grid.from[0] *= 2;
    grid.to[0] *= 2;
    R* const pairs = x + first_pair(from_format, n) * from.stride[0];
    R* const results = y + first_pair(to_format, n) * to.stride[0];
    // One part does the columns of numbers.
    if (share.part == 0)
      for (int i = 0; i < 2 - n % 2; ++i) {
        const ptrdiff_t source = i == 0 ? 0 : last_real(from_format, n) * from.stride[0];
        const ptrdiff_t target = i == 0 ? 0 : last_real(to_format, n) * to.stride[0];
        const int32_t count = packed_length(format_of(*first), m);
        const Side operand{is_forward ? m : count, false, from.stride[1]};
        const Side result{is_forward ? count : m, false, to.stride[1]};
        const Kernel kernel = real_kernel<T>(m, d, format_of(*first));
        if (const int32_t status =
                run_line<T>(kernel, x + source, operand, y + target, result, second, work))
          return status;
      }
    if (grid.n[0] == 0) return JEX_DFT_SUCCESS;
    if (from.stride[0] == 1 && to.stride[0] == 1)
      return run_lines<T, d>(second, grid, 1, Pairs<T>{pairs}, Pairs<T>{results}, work, share);
    return run_lines<T, d>(second, grid, 1, Parts<T>{pairs, pairs + from.stride[0]},
                           Parts<T>{results, results + to.stride[0]}, work, share);
  }
};

template <class T, Direction d>
int32_t run_phase_of(Record* first, const Arrays& arrays, int32_t index, int phase, Share share,
                     char* work, char* common) {
  using R = Real<T>;
  void* const* a = arrays.a;
  const bool in_place = is_in_place(*first);
  const auto number = [&](int i) { return static_cast<R*>(a[i]); };
  R* const out = number(in_place ? 0 : 1);
  if (is_real(*first)) {
    if (has_complex_elements(*first))
      return ComplexElements<T, d>{first, number(0), out, index, work, common}.run(phase, share);
    return PackedElements<T, d>{first, number(0), out, index, work}.run(phase, share);
  }
  if (get(*first, complex_storage) == JEX_DFT_SEPARATE) {
    const int y = in_place ? 0 : 2;
    return complex_phase<T, d>(first, Parts<T>{number(0), number(1)},
                               Parts<T>{number(y), number(y + 1)}, index, phase, share, work);
  }
  return complex_phase<T, d>(first, Pairs<T>{number(0)}, Pairs<T>{out}, index, phase, share, work);
}

// Two phases that meet in the planes of dimensions 0 and 1 are done plane by plane.
int first_of_planes(const Record& first, Direction d) {
  const int dimensions = get(first, rank);
  if (dimensions < 3) return -1;
  return is_real(first) && d == Direction::backward ? dimensions - 2 : 0;
}

template <class T, Direction d>
int32_t compute(Record* first, const Arrays& arrays) {
  if (!get(*first, kernel_word<T>(d))) return JEX_DFT_FAILURE;
  const WorkArea area(*first);
  if (area.is_missing(*first)) return JEX_DFT_NO_SLOT;
  const int32_t count = get(*first, number_of_transforms);
  const int phases = get(*first, rank), plane = first_of_planes(*first, d);
  int32_t planes = 1;
  for (int k = 2; k < phases; ++k) planes *= get(*record_of(first, k), length);
  int32_t status = JEX_DFT_SUCCESS;
  const auto run = [&](int32_t t, int phase, Share share) {
    if (status == JEX_DFT_SUCCESS)
      status = run_phase_of<T, d>(first, arrays, t, phase, share, area.address(), area.address());
  };
  for (int32_t t = 0; t < count; ++t)
    for (int phase = 0; phase < phases; ++phase) {
      if (phase != plane) {
        run(t, phase, {});
        continue;
      }
      for (int32_t p = 0; p < planes; ++p) {
        run(t, phase, {p, planes});
        run(t, phase + 1, {p, planes});
      }
      ++phase;
    }
  return status;
}

template <class T, Direction d>
int32_t compute_1(Record* record, void* a) {
  return compute<T, d>(record, {{a}});
}
template <class T, Direction d>
int32_t compute_2(Record* record, void* a, void* b) {
  return compute<T, d>(record, {{a, b}});
}
template <class T, Direction d>
int32_t compute_4(Record* record, void* a, void* b, void* c, void* e) {
  return compute<T, d>(record, {{a, b, c, e}});
}

template <class T, Direction d>
ComputeEntry entry_of(const Record& descriptor, bool in_place) {
  const bool is_separate =
      !is_real(descriptor) && get(descriptor, complex_storage) == JEX_DFT_SEPARATE;
  if (in_place && !is_separate) return reinterpret_cast<ComputeEntry>(compute_1<T, d>);
  if (in_place || !is_separate) return reinterpret_cast<ComputeEntry>(compute_2<T, d>);
  return reinterpret_cast<ComputeEntry>(compute_4<T, d>);
}

}  // namespace

template <class T>
ComputeEntry multi_entry(const Record& descriptor, Direction d, bool in_place) {
  if (is_real(descriptor) && get(descriptor, rank) > 2 && !has_complex_elements(descriptor))
    return no_compute_entry();
  return d == Direction::forward ? entry_of<T, Direction::forward>(descriptor, in_place)
                                 : entry_of<T, Direction::backward>(descriptor, in_place);
}

template <class T>
int32_t run_phase(Record* descriptor, Direction d, const Arrays& arrays, int32_t index, int phase,
                  Share share, char* work, char* common) {
  if (!get(*descriptor, kernel_word<T>(d))) return JEX_DFT_FAILURE;
  return d == Direction::forward ? run_phase_of<T, Direction::forward>(descriptor, arrays, index,
                                                                       phase, share, work, common)
                                 : run_phase_of<T, Direction::backward>(descriptor, arrays, index,
                                                                        phase, share, work, common);
}

template <class T>
uint64_t scratch_bytes(const Record& descriptor) {
  if (!is_real(descriptor) || get(descriptor, rank) < 2 || is_in_place(descriptor) ||
      !has_complex_elements(descriptor))
    return 0;
  return (uint64_t(uint32_t(get(descriptor, total_ce_elements))) * sizeof(T) + 63) / 64 * 64;
}

#define INSTANTIATE(T)                                                                         \
  template ComputeEntry multi_entry<T>(const Record&, Direction, bool);                        \
  template int32_t run_phase<T>(Record*, Direction, const Arrays&, int32_t, int, Share, char*, \
                                char*);                                                        \
  template uint64_t scratch_bytes<T>(const Record&);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
