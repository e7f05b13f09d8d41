#include "dft/real/odd_direct.h"

#include "dft/engine/fixed.h"
#include "dft/engine/roots.h"
#include "dft/real/plan.h"
#include "dft/real/whole.h"

namespace jex::dft {
namespace {

constexpr int most_pairs = longest_odd_direct / 2;

// Whether the complex transform takes less time than half of the sums.
constexpr bool is_whole(int n) { return n > 23 && is_convolved(n); }

// The sum over j of pair(j) times root(jk), part by part, for count neighbours k at once.
template <int count, class T>
void sums(int n, const T* roots, const T* pairs, int k, T (&y)[count]) {
  using V = Lanes<T>;
  using P = Lanes<Real<T>>;
  P sum[count];
  int index[count], step[count];
  unrolled<count>([&](auto i) JEX_INLINE {
    sum[i] = P::zero();
    index[i] = step[i] = k + i;
  });
  for (int j = 1; j <= n / 2; ++j) {
    const P pair = V::load_first(pairs + j).parts;
    unrolled<count>([&](auto i) JEX_INLINE {
      sum[i] = simd::accumulated(sum[i], pair * V::load_first(roots + index[i]).parts);
      index[i] += step[i] - n;
      index[i] += n & (index[i] >> 31);
    });
  }
  unrolled<count>([&](auto i) JEX_INLINE { V{sum[i]}.store_first(&y[i]); });
}

template <class T, class Put>
void for_results(int n, const T* roots, const T* pairs, Put put) {
  int k = 1;
  for (; k + 1 <= n / 2; k += 2) {
    T y[2];
    sums(n, roots, pairs, k, y);
    put(k, y[0]);
    put(k + 1, y[1]);
  }
  if (k == n / 2) {
    T y[1];
    sums(n, roots, pairs, k, y);
    put(k, y[0]);
  }
}

template <class T>
[[gnu::noinline]] void run_whole(int32_t n, Direction d, const Real<T>* in, Real<T>* out,
                                 Real<T> scale) {
  alignas(64) T x[longest_convolved];
  widen(d, in, x, n);
  fixed_function<T>(n, d)(x, x, scale);
  narrow(d, x, out, n);
}

}  // namespace

template <class T>
bool make_odd_roots(int32_t n, const T*& table, Blocks& blocks) {
  using R = Real<T>;
  table = nullptr;
  if (is_whole(n)) return true;
  Roots roots;
  T* const w = blocks.take<T>(uint32_t(n));
  if (!w || !roots.make(uint32_t(n))) return false;
  for (int32_t k = 0; k < n; ++k) {
    const Root root = roots(uint32_t(k));
    w[k] = {R(root.c), R(-root.s)};
  }
  table = w;
  return true;
}

template <class T>
void run_odd_direct(int32_t n, const T* roots, Direction d, const Real<T>* in, Real<T>* out,
                    Real<T> scale) {
  using R = Real<T>;
  if (!roots) return run_whole<T>(n, d, in, out, scale);
  alignas(16) T pairs[most_pairs + 1];
  const R first = in[0];
  R sum = 0;
  if (d == Direction::forward) {
    for (int j = 1; j <= n / 2; ++j) {
      pairs[j] = {in[j] + in[n - j], in[j] - in[n - j]};
      sum += pairs[j].re;
    }
    out[0] = (first + sum) * scale;
    for_results(n, roots, pairs, [&](int k, T y) JEX_INLINE {
      out[2 * k - 1] = (first + y.re) * scale;
      out[2 * k] = y.im * scale;
    });
    return;
  }
  for (int j = 1; j <= n / 2; ++j) {
    pairs[j] = {2 * in[2 * j - 1], 2 * in[2 * j]};
    sum += pairs[j].re;
  }
  out[0] = (first + sum) * scale;
  for_results(n, roots, pairs, [&](int k, T y) JEX_INLINE {
    out[k] = (first + y.re + y.im) * scale;
    out[n - k] = (first + y.re - y.im) * scale;
  });
}

#define INSTANTIATE(T)                                                                             \
  template bool make_odd_roots(int32_t, const T*&, Blocks&);                                       \
  template void run_odd_direct(int32_t, const T*, Direction, const simd::Real<T>*, simd::Real<T>*, \
                               simd::Real<T>);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
