// Passes in turn.
#include "dft/engine/ahead.h"
#include "dft/engine/transform.h"

namespace jex::dft {
namespace {

// Rows of the work matrix begin two cache lines further apart than they are long: powers of two
// would bring the elements of a column to the same place of the caches.
template <class T>
constexpr int row_step(int n) {
  return n + 128 / int(sizeof(T));
}

// The second of two buffers begins half a page off, so that a pass which reads one and writes the
// other finds its streams in different places of the first cache.
template <class T>
constexpr int stagger = 2048 / int(sizeof(T));

// Column by column, the rows of the next one asked for.
template <class T>
void run_far_stage(const Stage<T>& stage, Direction d, Kind kind, Pass<T> pass, int width) {
  pass.p_count = 1;
  for (int p = 0; p < stage.rest; ++p) {
    const T* const next = pass.in + pass.in_p;
    ask_for_rows(next, stage.radix, pass.in_k, width);
    run_stage(stage, d, kind, pass);
    pass.in = next;
    pass.out += pass.out_p;
    pass.roots += root_numbers<T>(stage);
  }
}

template <class T>
void run_stage(const Stage<T>& stage, Direction d, Kind kind, Real<T> scale, const Twist<T>* twist,
               View<const T> in, View<T> out, int width) {
  Pass<T> pass;
  pass.in = in.base;
  pass.out = out.base;
  pass.roots = stage.roots;
  pass.twist = twist ? twist->factors : nullptr;
  pass.out_c = twist ? twist->turned : 1;
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
  if (!twist && in.step == width && out.step == width) {
    pass.c_count *= pass.q_count;
    pass.q_count = 1;
  }
  const bool is_far = pass.in_k * int64_t(stage.radix * sizeof(T)) >= far_bytes;
  if (in.step > width && stage.before == 1 && stage.rest > 1 && is_far)
    run_far_stage(stage, d, kind, pass, width);
  else
    run_stage(stage, d, kind, pass);
}

}  // namespace

template <class T>
void run_passes(const Passes<T>& passes, Direction d, Real<T> scale, View<const T> in, View<T> out,
                int width, T* const (&buffers)[2], const Twist<T>* twist) {
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

template <class T>
int bundles(const Transform<T>& transform, int lines) {
  return (lines + transform.bundle - 1) / transform.bundle;
}

template <class T>
void run_columns(const Transform<T>& transform, Direction d, const T* in, T* work,
                 T* const (&buffers)[2], int first, int end) {
  const int n1 = transform.columns.length, n2 = transform.rows.length;
  const int step = row_step<T>(n1), bundle = transform.bundle;
  Twist<T> twist{transform.twist + first * twist_elements<T>(n1, bundle), step};
  for (int b = first; b < end; ++b) {
    const int j = b * bundle, width = n2 - j < bundle ? n2 - j : bundle;
    const View<T> turned{work + ptrdiff_t(j) * step, 1};
    run_passes<T>(transform.columns, d, 1, {in + j, n2}, turned, width, buffers, &twist);
    twist.factors += twist_elements<T>(n1, width);
  }
}

template <class T>
void run_rows(const Transform<T>& transform, Direction d, const T* work, T* out,
              T* const (&buffers)[2], int first, int end, Real<T> scale) {
  const int n1 = transform.columns.length;
  const int step = row_step<T>(n1), bundle = transform.bundle;
  for (int b = first; b < end; ++b) {
    const int k = b * bundle, width = n1 - k < bundle ? n1 - k : bundle;
    run_passes<T>(transform.rows, d, scale, {work + k, step}, {out + k, n1}, width, buffers);
  }
}

template <class T>
uint32_t matrix_elements(const Transform<T>& transform) {
  return uint32_t(transform.rows.length) * row_step<T>(transform.columns.length);
}

}  // namespace

template <class T>
void run_level(const Transform<T>& transform, Direction d, int level, Share share, const T* in,
               T* out, T* matrix, T* scratch, Real<T> scale) {
  const int n1 = transform.columns.length, n2 = transform.rows.length;
  T* const first = scratch + matrix_elements(transform);
  T* const buffers[2] = {first, first + (n1 > n2 ? n1 : n2) * transform.bundle + stagger<T>};
  const int count = bundles(transform, level == 0 ? n2 : n1);
  const int begin = int(share.begin(count)), end = int(share.end(count));
  if (level == 0)
    run_columns(transform, d, in, matrix, buffers, begin, end);
  else
    run_rows(transform, d, matrix, out, buffers, begin, end, scale);
}

namespace {

template <class T>
void run_levels(const Transform<T>& transform, Direction d, const T* in, T* out, T* scratch,
                Real<T> scale) {
  for (const int level : {0, 1})
    run_level(transform, d, level, {}, in, out, scratch, scratch, scale);
}

}  // namespace

template <class T>
uint32_t scratch_elements(const Transform<T>& transform) {
  const uint32_t n1 = transform.columns.length, n2 = transform.rows.length;
  if (!transform.has_rows) return transform.columns.count > 1 ? transform.length : 0;
  return matrix_elements(transform) + 2 * transform.bundle * (n1 > n2 ? n1 : n2) + stagger<T>;
}

template <class T>
void run_transform(const Transform<T>& transform, Direction d, const T* in, T* out, T* scratch,
                   Real<T> scale) {
  if (transform.has_rows) return run_levels(transform, d, in, out, scratch, scale);
  T* const buffers[2] = {scratch, out};
  run_passes<T>(transform.columns, d, scale, {in, 1}, {out, 1}, 1, buffers);
}

template void run_passes(const Passes<jex_dcomplex>&, Direction, double, View<const jex_dcomplex>,
                         View<jex_dcomplex>, int, jex_dcomplex* const (&)[2],
                         const Twist<jex_dcomplex>*);
template void run_passes(const Passes<jex_scomplex>&, Direction, float, View<const jex_scomplex>,
                         View<jex_scomplex>, int, jex_scomplex* const (&)[2],
                         const Twist<jex_scomplex>*);
template void run_level(const Transform<jex_dcomplex>&, Direction, int, Share, const jex_dcomplex*,
                        jex_dcomplex*, jex_dcomplex*, jex_dcomplex*, double);
template void run_level(const Transform<jex_scomplex>&, Direction, int, Share, const jex_scomplex*,
                        jex_scomplex*, jex_scomplex*, jex_scomplex*, float);
template uint32_t scratch_elements(const Transform<jex_dcomplex>&);
template uint32_t scratch_elements(const Transform<jex_scomplex>&);
template void run_transform(const Transform<jex_dcomplex>&, Direction, const jex_dcomplex*,
                            jex_dcomplex*, jex_dcomplex*, double);
template void run_transform(const Transform<jex_scomplex>&, Direction, const jex_scomplex*,
                            jex_scomplex*, jex_scomplex*, float);

}  // namespace jex::dft
