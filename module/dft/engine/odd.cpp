#include "dft/engine/odd.h"

namespace jex::dft {
namespace {

constexpr int most_pairs = largest_odd_radix / 2;

// A column in the form in which the sums take it: a[0] = x(0), then x(j) + x(r-j) and
// x(j) - x(r-j) in turn.
template <class T>
struct Column {
  Lanes<T> first;
  Lanes<T> pairs[2 * most_pairs];
};

template <class T>
struct Butterfly {
  using V = Lanes<T>;
  using P = Lanes<Real<T>>;
  const Pass<T>& pass;
  Direction d;
  Kind kind;
  bool whole;

  V load(const T* p) const { return whole ? simd::load_elements(p) : simd::load_element(p); }
  void store(V y, int k, T* out, const Real<T>* roots, const T* twist) const {
    if (kind == Kind::inner && k > 0) {
      const Real<T>* w = roots + (k - 1) * 2 * P::count;
      y = d == Direction::forward ? simd::times_root<-1>(y, w) : simd::times_root<1>(y, w);
    }
    if (kind == Kind::scaled) y = simd::scaled(y, pass.scale);
    if (kind == Kind::twisted) {
      const V w = simd::load_elements(twist + k * V::count);
      y = d == Direction::forward ? simd::times_elements<1>(y, w) : simd::times_elements<-1>(y, w);
    }
    T* p = out + k * pass.out_k;
    if (!whole)
      simd::store_element(y, p);
    else if (kind == Kind::twisted)
      simd::scatter_elements(y, p, pass.out_c);
    else
      simd::store_elements(y, p);
  }

  V gather(Column<T>& column, const T* in) const {
    const int r = pass.radix;
    V sum = column.first = load(in);
    for (int j = 1; j <= r / 2; ++j) {
      const V x = load(in + j * pass.in_k), y = load(in + (r - j) * pass.in_k);
      column.pairs[2 * j - 2] = x + y;
      column.pairs[2 * j - 1] = x - y;
      sum = sum + (x + y);
    }
    return sum;
  }

  // Results k .. k + count - 1 and their mirror images; count sums of cosines and of sines at once.
  template <int count>
  void results(const Column<T>& column, int k, T* out, const Real<T>* roots, const T* twist) const {
    const int r = pass.radix, h = r / 2;
    const uint16_t* offset = pass.odd->offsets + (k - 1) * h;
    const char* table = static_cast<const char*>(pass.odd->roots);
    P c[count], s[count];
    unrolled<count>([&](auto i) JEX_INLINE { c[i] = column.first.parts, s[i] = P::zero(); });
    const V* pairs = column.pairs;
    for (int j = 0; j < h; ++j, pairs += 2)
      unrolled<count>([&](auto i) JEX_INLINE {
        const auto* root = reinterpret_cast<const Real<T>*>(table + offset[j + i * h]);
        c[i] = simd::accumulated(c[i], P::load_aligned(root) * pairs[0].parts);
        s[i] = simd::accumulated(s[i], P::load_aligned(root + P::count) * pairs[1].parts);
      });
    unrolled<count>([&](auto i) JEX_INLINE {
      const V sine = simd::turned<-1>(V{s[i]}), cosine{c[i]};
      const int plus = d == Direction::forward ? k + i : r - k - i;
      store(cosine + sine, plus, out, roots, twist);
      store(cosine - sine, r - plus, out, roots, twist);
    });
  }

  void run(const T* in, T* out, const Real<T>* roots, const T* twist) const {
    Column<T> column;
    const V sum = gather(column, in);
    store(sum, 0, out, roots, twist);
    const int h = pass.radix / 2;
    int k = 1;
    for (; k + 2 <= h; k += 3) results<3>(column, k, out, roots, twist);
    if (k + 1 == h) results<2>(column, k, out, roots, twist);
    if (k == h) results<1>(column, k, out, roots, twist);
  }
};

}  // namespace

template <class T>
void run_odd_pass(const Pass<T>& pass, Direction d, Kind kind) {
  constexpr int width = Lanes<T>::count;
  const Butterfly<T> whole{pass, d, kind, true}, rest{pass, d, kind, false};
  const Real<T>* roots = pass.roots;
  const T* twist = pass.twist;
  const bool twisted = kind == Kind::twisted;
  const ptrdiff_t twist_step = twisted ? pass.radix * width : 0;
  const ptrdiff_t out_next = twisted ? pass.out_c * width : width;
  for (int p = 0; p < pass.p_count; ++p) {
    for (int q = 0; q < pass.q_count; ++q) {
      const T* in = pass.in + p * pass.in_p + q * pass.in_q;
      T* out = pass.out + p * pass.out_p + q * pass.out_q;
      int c = pass.c_count;
      for (; c >= width; c -= width, in += width, out += out_next, twist += twist_step)
        whole.run(in, out, roots, twist);
      if (width > 1 && c) {
        rest.run(in, out, roots, twist);
        twist += twist_step;
      }
    }
    roots += (pass.radix - 1) * 2 * Lanes<Real<T>>::count;
  }
}

template void run_odd_pass(const Pass<jex_dcomplex>&, Direction, Kind);
template void run_odd_pass(const Pass<jex_scomplex>&, Direction, Kind);

}  // namespace jex::dft
