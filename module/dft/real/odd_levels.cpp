#include "dft/real/odd_levels.h"

#include "dft/engine/roots.h"
#include "dft/real/odd_direct.h"
#include "dft/real/plan.h"
#include "simd/shuffle.h"

namespace jex::dft {
namespace {

bool is_direct(int32_t n) {
  return n <= longest_real_kernel || (n <= longest_odd_direct && is_prime(n));
}
// The radix of the next level; small ones have the cheapest columns. 0 for none.
int next_radix(int32_t n) {
  for (const int r : {5, 3, 7, 11, 13})
    if (n % r == 0) return r;
  return 0;
}

// Both neighbours of a row begin on a boundary.
template <class T>
constexpr uint32_t row_elements(uint32_t columns) {
  return (columns * sizeof(T) + 63) / 64 * 64 / sizeof(T);
}

// Columns: h pairs of rows, one or all lanes of a register.
template <int r, class T, bool whole>
struct Column {
  using R = Real<T>;
  using P = Lanes<R>;
  using V = Lanes<T>;
  static constexpr int h = r / 2;

  JEX_INLINE static P load(const R* p) { return whole ? P::load(p) : P::load_first(p); }
  JEX_INLINE static void store(P a, R* p) { whole ? a.store(p) : a.store_first(p); }
  JEX_INLINE static void store_pairs(P re, P im, T* p) {
    const V low{simd::low_in_turn(re, im)};
    if constexpr (!whole) return low.store_first(p);
    low.store(p);
    V{simd::high_in_turn(re, im)}.store(p + V::count);
  }
  JEX_INLINE static void load_pairs(const T* p, P& re, P& im) {
    const V low = whole ? V::load(p) : V::load_first(p);
    const V high = whole ? V::load(p + V::count) : low;
    re = simd::parts_of<0>(low.parts, high.parts);
    im = simd::parts_of<1>(low.parts, high.parts);
  }

  // twist, from lane 0 on: cosines, then sines P::count further.
  JEX_INLINE static void forward(const R* in, int m, R* real_row, T* rows, ptrdiff_t row_step,
                                 const R* twist) {
    P a[h + 1], b[h + 1];
    const P first = load(in);
    P sum = first;
    unrolled<h>([&](auto i) JEX_INLINE {
      constexpr int j = i + 1;
      const P x = load(in + j * m), y = load(in + (r - j) * m);
      a[j] = x + y;
      b[j] = x - y;
      sum = sum + a[j];
    });
    store(sum, real_row);
    unrolled<h>([&](auto i) JEX_INLINE {
      constexpr int k = i + 1;
      P re = first, im = P::zero();
      unrolled<h>([&](auto l) JEX_INLINE {
        constexpr int j = l + 1;
        constexpr Root w = constant_root(j * k, r);
        re = re + a[j] * P::all(R(w.c));
        im = im - b[j] * P::all(R(w.s));
      });
      const P c = load(twist + i * 2 * P::count), s = load(twist + (2 * i + 1) * P::count);
      store_pairs(re * c + im * s, im * c - re * s, rows + i * row_step);
    });
  }

  JEX_INLINE static void backward(const R* real_row, const T* rows, ptrdiff_t row_step,
                                  const R* twist, R* out, int m) {
    P re[h + 1], im[h + 1];
    const P first = load(real_row);
    P sum = first;
    unrolled<h>([&](auto i) JEX_INLINE {
      constexpr int k = i + 1;
      P x, y;
      load_pairs(rows + i * row_step, x, y);
      const P c = load(twist + i * 2 * P::count), s = load(twist + (2 * i + 1) * P::count);
      const P u = x * c - y * s, v = x * s + y * c;
      re[k] = u + u;
      im[k] = v + v;
      sum = sum + re[k];
    });
    store(sum, out);
    unrolled<h>([&](auto i) JEX_INLINE {
      constexpr int j = i + 1;
      P even = first, odd = P::zero();
      unrolled<h>([&](auto l) JEX_INLINE {
        constexpr int k = l + 1;
        constexpr Root w = constant_root(j * k, r);
        even = even + re[k] * P::all(R(w.c));
        odd = odd + im[k] * P::all(R(w.s));
      });
      store(even - odd, out + j * m);
      store(even + odd, out + (r - j) * m);
    });
  }
};

template <int r, class T, Direction d>
[[gnu::noinline]] void run_columns(const OddLevel<T>& level, Real<T>* x, Real<T>* real_row, T* rows,
                                   ptrdiff_t row_step) {
  constexpr int width = Lanes<Real<T>>::count, h = r / 2;
  const int m = level.columns;
  const Real<T>* twist = level.twist;
  const auto step = [&](int j, const Real<T>* roots, auto whole) JEX_INLINE {
    using C = Column<r, T, whole>;
    if constexpr (d == Direction::forward)
      C::forward(x + j, m, real_row + j, rows + j, row_step, roots);
    else
      C::backward(real_row + j, rows + j, row_step, roots, x + j, m);
  };
  int j = 0;
  for (; j + width <= m; j += width, twist += 2 * width * h) step(j, twist, std::true_type());
  for (int lane = 0; j < m; ++j, ++lane) step(j, twist + lane, std::false_type());
}

template <class T, Direction d>
void run_columns(const OddLevel<T>& level, Real<T>* x, Real<T>* real_row, T* rows,
                 ptrdiff_t row_step) {
  switch (level.radix) {
    case 3:
      return run_columns<3, T, d>(level, x, real_row, rows, row_step);
    case 5:
      return run_columns<5, T, d>(level, x, real_row, rows, row_step);
    case 7:
      return run_columns<7, T, d>(level, x, real_row, rows, row_step);
    case 11:
      return run_columns<11, T, d>(level, x, real_row, rows, row_step);
    default:
      return run_columns<13, T, d>(level, x, real_row, rows, row_step);
  }
}

// Row k of a level and the spectrum: element k2 is result before (k + r k2), or the conjugate of
// what stands at its mirror image. spectrum[i] is result i.
template <class T, Direction d>
void move_row(T* row, T* spectrum, int k, const OddLevel<T>& level, int before) {
  const int m = level.columns, r = level.radix, n = r * m;
  int k2 = 0, index = k;
  for (; index <= n / 2; ++k2, index += r)
    if constexpr (d == Direction::forward)
      spectrum[index * before] = row[k2];
    else
      row[k2] = spectrum[index * before];
  for (; k2 < m; ++k2, index += r)
    if constexpr (d == Direction::forward)
      spectrum[(n - index) * before] = {row[k2].re, -row[k2].im};
    else
      row[k2] = {spectrum[(n - index) * before].re, -spectrum[(n - index) * before].im};
}

template <class T>
struct Buffers {
  T *rows, *scratch;
  Real<T>* real_rows[2];
};

template <class T>
Buffers<T> buffers_of(const OddLevels<T>& levels, T* scratch) {
  const OddLevel<T>& first = levels.level[0];
  const uint32_t real_row = row_elements<T>(first.columns);
  Buffers<T> b;
  b.real_rows[0] = reinterpret_cast<Real<T>*>(scratch);
  b.real_rows[1] = reinterpret_cast<Real<T>*>(scratch + real_row);
  b.rows = scratch + 2 * real_row;
  b.scratch = b.rows + row_elements<T>(first.columns) * (first.radix / 2);
  return b;
}

template <class T, Direction d>
void run_last(const OddLevels<T>& levels, const Real<T>* in, Real<T>* out, Real<T> scale) {
  if (levels.last > longest_real_kernel)
    run_odd_direct(levels.last, levels.last_roots, d, in, out, scale);
  else if (scale == 1)
    real_kernels<Real<T>, d>().plain[levels.last](in, out);
  else
    real_kernels<Real<T>, d>().scaled[levels.last](in, out, scale);
}

template <class T>
void run_forward(const OddLevels<T>& levels, const Real<T>* in, Real<T>* out, T* scratch,
                 Real<T> scale) {
  const Buffers<T> b = buffers_of(levels, scratch);
  T* const spectrum = reinterpret_cast<T*>(out - 1);
  int before = 1;
  for (int i = 0; i < levels.count; ++i) {
    const OddLevel<T>& level = levels.level[i];
    const ptrdiff_t step = row_elements<T>(level.columns);
    Real<T>* const real_row = b.real_rows[i % 2];
    run_columns<T, Direction::forward>(level, const_cast<Real<T>*>(in), real_row, b.rows, step);
    for (int k = 1; k <= level.radix / 2; ++k) {
      T* const row = b.rows + (k - 1) * step;
      run_transform(level.row, Direction::forward, row, row, b.scratch, scale);
      move_row<T, Direction::forward>(row, spectrum, k, level, before);
    }
    before *= level.radix;
    in = real_row;
  }
  alignas(16) Real<T> small[longest_odd_direct];
  run_last<T, Direction::forward>(levels, in, small, scale);
  out[0] = small[0];
  for (int k = 1; k <= levels.last / 2; ++k)
    spectrum[k * before] = {small[2 * k - 1], small[2 * k]};
}

template <class T>
void run_backward(const OddLevels<T>& levels, const Real<T>* in, Real<T>* out, T* scratch,
                  Real<T> scale) {
  const Buffers<T> b = buffers_of(levels, scratch);
  T* const spectrum = reinterpret_cast<T*>(const_cast<Real<T>*>(in - 1));
  int before = levels.length / levels.last;
  alignas(16) Real<T> small[longest_odd_direct];
  small[0] = in[0];
  for (int k = 1; k <= levels.last / 2; ++k) {
    small[2 * k - 1] = spectrum[k * before].re;
    small[2 * k] = spectrum[k * before].im;
  }
  run_last<T, Direction::backward>(levels, small, b.real_rows[(levels.count - 1) % 2], scale);
  for (int i = levels.count - 1; i >= 0; --i) {
    const OddLevel<T>& level = levels.level[i];
    const ptrdiff_t step = row_elements<T>(level.columns);
    before /= level.radix;
    for (int k = 1; k <= level.radix / 2; ++k) {
      T* const row = b.rows + (k - 1) * step;
      move_row<T, Direction::backward>(row, spectrum, k, level, before);
      run_transform(level.row, Direction::backward, row, row, b.scratch, scale);
    }
    Real<T>* const to = i == 0 ? out : b.real_rows[(i - 1) % 2];
    run_columns<T, Direction::backward>(level, to, b.real_rows[i % 2], b.rows, step);
  }
}

template <class T>
bool make_level(OddLevel<T>& level, int32_t n, int radix) {
  using R = Real<T>;
  constexpr int width = Lanes<R>::count;
  level.radix = radix;
  level.columns = n / radix;
  const int groups = (level.columns + width - 1) / width, h = radix / 2;
  auto* table = level.blocks.template take<R>(uint32_t(groups) * h * 2 * width);
  Roots roots;
  if (!table || !roots.make(uint32_t(n))) return false;
  level.twist = table;
  for (int group = 0; group < groups; ++group)
    for (int k = 1; k <= h; ++k, table += 2 * width)
      for (int e = 0; e < width; ++e) {
        const int j = group * width + e;
        const Root w = roots(j < level.columns ? uint32_t(j) * k : 0);
        table[e] = R(w.c);
        table[width + e] = R(w.s);
      }
  return make_transform(level.row, level.columns, level.blocks);
}

}  // namespace

bool has_odd_levels(int32_t n) {
  if (n % 2 == 0 || is_direct(n)) return false;
  while (!is_direct(n)) {
    const int r = next_radix(n);
    if (r == 0) return false;
    n /= r;
  }
  return true;
}

template <class T>
OddLevels<T>* make_odd_levels(int32_t n, Blocks& blocks) {
  auto* levels = blocks.take<OddLevels<T>>(1);
  if (!levels) return nullptr;
  memset(static_cast<void*>(levels), 0, sizeof *levels);
  levels->length = n;
  bool is_made = true;
  while (is_made && !is_direct(n)) {
    const int radix = next_radix(n);
    is_made = make_level(levels->level[levels->count++], n, radix);
    n /= radix;
  }
  levels->last = n;
  if (is_made && n > longest_real_kernel) is_made = make_odd_roots(n, levels->last_roots, blocks);
  if (!is_made) release_odd_levels(*levels);
  return is_made ? levels : nullptr;
}

template <class T>
void release_odd_levels(OddLevels<T>& levels) {
  for (int i = 0; i < levels.count; ++i) levels.level[i].blocks.release();
}

template <class T>
uint64_t odd_levels_elements(const OddLevels<T>& levels) {
  uint64_t scratch = 0;
  for (int i = 0; i < levels.count; ++i)
    if (const uint64_t own = scratch_elements(levels.level[i].row); own > scratch) scratch = own;
  const OddLevel<T>& first = levels.level[0];
  return uint64_t(row_elements<T>(first.columns)) * (2 + first.radix / 2) + scratch;
}

template <class T>
void run_odd_levels(const OddLevels<T>& levels, Direction d, const Real<T>* in, Real<T>* out,
                    T* scratch, Real<T> scale) {
  if (d == Direction::forward)
    run_forward(levels, in, out, scratch, scale);
  else
    run_backward(levels, in, out, scratch, scale);
}

#define INSTANTIATE(T)                                                               \
  template OddLevels<T>* make_odd_levels(int32_t, Blocks&);                          \
  template void release_odd_levels(OddLevels<T>&);                                   \
  template uint64_t odd_levels_elements(const OddLevels<T>&);                        \
  template void run_odd_levels(const OddLevels<T>&, Direction, const simd::Real<T>*, \
                               simd::Real<T>*, T*, simd::Real<T>);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
