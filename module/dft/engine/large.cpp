#include "dft/engine/large.h"

#include "dft/engine/bitrev.h"
#include "dft/engine/roots.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

// What stands behind the cosines.
template <class T>
struct Parts {
  uint32_t* reversal;
  Transform<T>* transform;
  char* pieces;
  uint32_t left;

  Parts(void* block, uint32_t n) {
    char* const begin = static_cast<char*>(block);
    reversal = reinterpret_cast<uint32_t*>(begin + n / 4 * sizeof(T));
    transform = reinterpret_cast<Transform<T>*>(
        begin + (n / 4 * (sizeof(T) + sizeof(uint32_t)) + 63) / 64 * 64);
    pieces = reinterpret_cast<char*>(transform) + (sizeof(Transform<T>) + 63) / 64 * 64;
    left = uint32_t(begin + table_bytes(n) - pieces);
  }
  static uint32_t table_bytes(uint32_t n) { return (3 * n + 64) * uint32_t(sizeof(Real<T>)); }
};

template <class T>
bool fill_table(void* block, uint32_t n, int order) {
  auto* values = static_cast<Real<T>*>(block);
  values[0] = Real<T>(n);
  values[1] = 0;
  if (order < 3) return true;
  Roots roots;
  if (!roots.make(n)) return false;
  for (uint32_t i = 1; i < n / 4; ++i) {
    const Root w = roots(reversed(i, order - 2));
    values[2 * i] = Real<T>(w.c);
    values[2 * i + 1] = Real<T>(w.s);
  }
  if (order < smallest_blocked_order) return true;
  const Parts<T> parts(block, n);
  for (uint32_t i = 0; i < n / 4; ++i) parts.reversal[i] = reversed(i, order - 2);
  *parts.transform = {};
  Blocks pieces;
  pieces.use_region(parts.pieces, parts.left);
  return make_levels(*parts.transform, int32_t(1) << (order / 2), int32_t(1) << (order - order / 2),
                     TwistOrder::rows, pieces);
}

template <class T, Direction d>
struct Large {
  using V = Lanes<T>;
  const Transform<T>& transform;
  const uint32_t* reversal;
  int order;
  T* buffers[2];
  const int n1, n2;

  Large(const Record& record, void* work)
      : Large(get(record, aux_buffer_b), uint32_t(get(record, length)), get(record, length_order),
              static_cast<T*>(work)) {}

  // The user's arrays are touched by copies alone, so they may have any alignment.
  void run(const T* in, T* out, Real<T> scale) const {
    if (d == Direction::forward) {
      run_columns(in, out, 1);
      for (int k = 0; k < n1; ++k) {
        T* const row = out + ptrdiff_t(k) * n2;
        twist(row, row_index(k), buffers[1]);
        run_row(buffers[1], buffers[0], scale);
        reverse_copy(buffers[0], row, order - order / 2);
      }
    } else {
      for (int k = 0; k < n1; ++k) {
        const ptrdiff_t place = ptrdiff_t(k) * n2;
        reverse_copy(in + place, buffers[1], order - order / 2);
        run_row(buffers[1], buffers[0], 1);
        twist(buffers[0], row_index(k), out + place);
      }
      run_columns(out, out, scale);
    }
  }

 private:
  Large(void* block, uint32_t n, int order, T* work)
      : transform(*Parts<T>(block, n).transform),
        reversal(Parts<T>(block, n).reversal),
        order(order),
        buffers{work, work + longer(order) * bundle_for<T>(1 << order, longer(order))},
        n1(transform.columns.length),
        n2(transform.rows.length) {}
  static int longer(int order) { return 1 << (order - order / 2); }

  int row_index(int k) const { return int(reversal[k] >> (order - 2 - order / 2)); }

  // Columns of natural order on the one side; on the other the rows change places.
  void run_columns(const T* in, T* out, Real<T> scale) const {
    const int width = transform.bundle;
    constexpr bool forward = d == Direction::forward;
    for (int j = 0; j < n2; j += width) {
      copy_rows<!forward, false>(in + j, n2, buffers[0], width);
      run_passes<T>(transform.columns, d, scale, {buffers[0], width}, {buffers[0], width}, width,
                    {buffers[1], buffers[0]});
      copy_rows<false, forward>(buffers[0], width, out + j, n2);
    }
  }

  // Row k, or the row that has this place in the other order, on either side.
  template <bool reversed_in, bool reversed_out>
  void copy_rows(const T* in, int in_step, T* out, int out_step) const {
    for (int k = 0; k < n1; ++k) {
      const ptrdiff_t r = row_index(k);
      const T* from = in + (reversed_in ? r : k) * in_step;
      T* to = out + (reversed_out ? r : k) * out_step;
      for (int c = 0; c < transform.bundle; c += V::count) V::load(from + c).store(to + c);
    }
  }

  void twist(const T* row, int index, T* to) const {
    const T* roots = transform.twist + ptrdiff_t(index) * n2;
    for (int j = 0; j < n2; j += V::count)
      simd::times_elements<-sign(d)>(V::load(row + j), V::load(roots + j)).store(to + j);
  }

  void run_row(const T* in, T* out, Real<T> scale) const {
    run_passes<T>(transform.rows, d, scale, {in, 1}, {out, 1}, 1, {buffers[0], buffers[1]});
  }
};

template <class T, Direction d>
int32_t run_large(const void* in, void* out, Record* record, void* work) {
  Large<T, d>(*record, work)
      .run(static_cast<const T*>(in), static_cast<T*>(out), scale_of<T>(*record, d));
  return JEX_DFT_SUCCESS;
}

}  // namespace

template <class T>
int32_t make_large_table(Record& record) {
  const int order = get(record, length_order);
  const uint32_t n = 1u << order;
  if (is_too_long(int32_t(n))) return JEX_DFT_TOO_LONG;
  serv::aligned_free(get(record, aux_buffer_b));
  void* block = serv::aligned_malloc(Parts<T>::table_bytes(n), 64);
  set(record, aux_buffer_b, block);
  if (!block || !fill_table<T>(block, n, order)) return JEX_DFT_NO_MEMORY;
  const bool is_spaced =
      get(record, input_stride) != 1 ||
      (get(record, placement) == JEX_DFT_NOT_IN_PLACE && get(record, output_stride) != 1);
  const int longer = 1 << (order - order / 2);
  const uint32_t elements =
      2 * uint32_t(bundle_for<T>(int32_t(n), longer) * longer) + (is_spaced ? n : 0);
  set(record, work_size, int32_t(elements * sizeof(T)));
  return JEX_DFT_SUCCESS;
}

template <class T>
Kernel large_kernel(Direction d) {
  return d == Direction::forward ? run_large<T, Direction::forward>
                                 : run_large<T, Direction::backward>;
}

template int32_t make_large_table<jex_dcomplex>(Record&);
template int32_t make_large_table<jex_scomplex>(Record&);
template Kernel large_kernel<jex_dcomplex>(Direction);
template Kernel large_kernel<jex_scomplex>(Direction);

}  // namespace jex::dft
