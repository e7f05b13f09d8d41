// Passes in turn.
#include "dft/engine/transform.h"

namespace jex::dft {
namespace {

// Rows of the work matrix begin two cache lines further apart than they are long: powers of two
// would bring the elements of a column to the same place of the caches.
template <class T>
constexpr int row_step(int n) {
  return n + 128 / int(sizeof(T));
}

template <class T>
void run_stage(const Stage<T>& stage, Direction d, Kind kind, Real<T> scale, const T* twist,
               View<const T> in, View<T> out, int width) {
  Pass<T> pass;
  pass.in = in.base;
  pass.out = out.base;
  pass.roots = stage.roots;
  pass.twist = twist;
  pass.odd = &stage.odd;
  pass.scale = scale;
  pass.radix = stage.radix;
  pass.p_count = stage.rest;
  pass.q_count = stage.before;
  pass.c_count = width;
  pass.in_q = in.step;
  pass.in_p = stage.before * in.step;
  pass.in_k = stage.rest * pass.in_p;
  pass.out_q = out.step;
  pass.out_k = stage.before * out.step;
  pass.out_p = stage.radix * pass.out_k;
  if (in.step == width && out.step == width) {
    pass.c_count *= pass.q_count;
    pass.q_count = 1;
  }
  if (stage.radix <= largest_kernel_radix)
    pass_function<T>(stage.radix, d, kind)(pass);
  else
    run_odd_pass(pass, d, kind);
}

}  // namespace

template <class T>
void run_passes(const Passes<T>& passes, Direction d, Real<T> scale, View<const T> in, View<T> out,
                int width, T* const (&buffers)[2], const T* twist) {
  const Kind last_kind = twist ? Kind::twisted : scale == 1 ? Kind::last : Kind::scaled;
  for (int i = 0; i < passes.count; ++i) {
    const bool is_last = i == passes.count - 1;
    const Kind kind = is_last ? last_kind : i == 0 && passes.has_first ? Kind::first : Kind::inner;
    const View<T> to = is_last ? out : View<T>{buffers[i % 2], width};
    run_stage(passes.stages[i], d, kind, scale, twist, in, to, width);
    in = {to.base, to.step};
  }
}

namespace {

// Rows become a bundle: element j of each row side by side. A cache line of each row is taken at a
// time.
inline void turn_lines(const jex_dcomplex* rows, ptrdiff_t step, int j, int end, int width,
                       jex_dcomplex* to) {
  for (int c = 0; c < width; ++c)
    for (int i = j; i < end; ++i)
      simd::store_elements(simd::load_elements(rows + c * step + i), to + i * width + c);
}

inline void turn_lines(const jex_scomplex* rows, ptrdiff_t step, int j, int end, int width,
                       jex_scomplex* to) {
  using V = Lanes<jex_scomplex>;
  int c = 0;
  for (; c + 2 <= width; c += 2) {
    const jex_scomplex *a = rows + c * step, *b = a + step;
    int i = j;
    for (; i + 2 <= end; i += 2) {
      const V x = V::load(a + i), y = V::load(b + i);
      simd::first_column(x, y).store(to + i * width + c);
      simd::second_column(x, y).store(to + (i + 1) * width + c);
    }
    if (i < end) to[i * width + c] = a[i], to[i * width + c + 1] = b[i];
  }
  if (c < width)
    for (int i = j; i < end; ++i) to[i * width + c] = rows[c * step + i];
}

template <class T>
void turn_rows(const T* rows, ptrdiff_t step, int n, int width, T* to) {
  constexpr int line = 64 / sizeof(T);
  for (int j = 0; j < n; j += line)
    turn_lines(rows, step, j, j + line < n ? j + line : n, width, to);
}

template <class T>
void run_levels(const Transform<T>& transform, Direction d, const T* in, T* out, T* scratch,
                Real<T> scale) {
  const int n1 = transform.columns.length, n2 = transform.rows.length;
  const int step = row_step<T>(n2);
  T* const work = scratch;
  T* const first = work + ptrdiff_t(n1) * step;
  const int longer = n1 > n2 ? n1 : n2;
  const int bundle = transform.bundle;
  T* const buffers[2] = {first, first + longer * bundle};
  T* const reversed[2] = {buffers[1], buffers[0]};
  const T* twist = transform.twist;
  for (int j = 0; j < n2; j += bundle) {
    const int width = n2 - j < bundle ? n2 - j : bundle;
    run_passes<T>(transform.columns, d, 1, {in + j, n2}, {work + j, step}, width, buffers, twist);
    twist += twist_elements<T>(n1, width);
  }
  for (int k = 0; k < n1; k += bundle) {
    const int width = n1 - k < bundle ? n1 - k : bundle;
    turn_rows<T>(work + ptrdiff_t(k) * step, step, n2, width, buffers[0]);
    run_passes<T>(transform.rows, d, scale, {buffers[0], width}, {out + k, n1}, width, reversed);
  }
}

}  // namespace

template <class T>
uint32_t scratch_elements(const Transform<T>& transform) {
  const uint32_t n1 = transform.columns.length, n2 = transform.rows.length;
  if (!transform.has_rows) return transform.columns.count > 1 ? transform.length : 0;
  return n1 * row_step<T>(n2) + 2 * transform.bundle * (n1 > n2 ? n1 : n2);
}

template <class T>
void run_transform(const Transform<T>& transform, Direction d, const T* in, T* out, T* scratch,
                   Real<T> scale) {
  if (transform.has_rows) return run_levels(transform, d, in, out, scratch, scale);
  T* const buffers[2] = {scratch, out};
  run_passes<T>(transform.columns, d, scale, {in, 1}, {out, 1}, 1, buffers);
}

template void run_passes(const Passes<jex_dcomplex>&, Direction, double, View<const jex_dcomplex>,
                         View<jex_dcomplex>, int, jex_dcomplex* const (&)[2], const jex_dcomplex*);
template void run_passes(const Passes<jex_scomplex>&, Direction, float, View<const jex_scomplex>,
                         View<jex_scomplex>, int, jex_scomplex* const (&)[2], const jex_scomplex*);
template uint32_t scratch_elements(const Transform<jex_dcomplex>&);
template uint32_t scratch_elements(const Transform<jex_scomplex>&);
template void run_transform(const Transform<jex_dcomplex>&, Direction, const jex_dcomplex*,
                            jex_dcomplex*, jex_dcomplex*, double);
template void run_transform(const Transform<jex_scomplex>&, Direction, const jex_scomplex*,
                            jex_scomplex*, jex_scomplex*, float);

}  // namespace jex::dft
