#include "dft/engine/chirp.h"

#include "dft/engine/roots.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

// to(j) := (a(j) * factor) b(j), or times the conjugate of b.
template <int sign, class T>
void multiply(const T* a, const T* b, T* to, int n, Real<T> factor) {
  using V = Lanes<T>;
  int j = 0;
  for (; j + V::count <= n; j += V::count)
    simd::times_elements<sign>(simd::scaled(V::load(a + j), factor), V::load(b + j)).store(to + j);
  if (j < n)
    simd::times_elements<sign>(simd::scaled(V::load_first(a + j), factor), V::load_first(b + j))
        .store_first(to + j);
}

// The backward transform conjugates the chirp and the filter; the convolution is the same.
template <int sign, class T>
void convolve(const Plan<T>& plan, const T* in, T* out, T* scratch, Real<T> scale) {
  const int n = plan.plan_length, m = plan.chirp_len;
  T* const data = scratch;
  T* const rest = scratch + m;
  multiply<sign>(in, plan.chirp_seq, data, n, Real<T>(1));
  for (int j = n; j < m; ++j) data[j] = {};
  run_transform(plan.transform, Direction::forward, data, data, rest, Real<T>(1));
  multiply<sign>(data, plan.chirp_filter, data, m, Real<T>(1) / m);
  run_transform(plan.transform, Direction::backward, data, data, rest, Real<T>(1));
  multiply<sign>(data, plan.chirp_seq, out, n, scale);
}

}  // namespace

template <class T>
bool make_chirp(Plan<T>& plan) {
  const uint32_t n = plan.plan_length;
  uint32_t m = 1;
  while (m < 2 * n - 1) m *= 2;
  plan.chirp_len = int32_t(m);
  plan.chirp_seq = plan.blocks.template take<T>(n);
  plan.chirp_filter = plan.blocks.template take<T>(m);
  if (!plan.chirp_seq || !plan.chirp_filter) return false;
  Roots roots;
  if (!roots.make(2 * n) || !make_transform(plan.transform, int32_t(m), plan.blocks)) return false;
  for (uint32_t k = 0, index = 0; k < n; ++k) {
    const Root w = roots(index);
    plan.chirp_seq[k] = {Real<T>(w.c), Real<T>(-w.s)};
    index += 2 * k + 1;
    if (index >= 2 * n) index -= 2 * n;
  }
  T* const filter = plan.chirp_filter;
  for (uint32_t k = 0; k < m; ++k) filter[k] = {};
  for (uint32_t k = 0; k < n; ++k) filter[k] = {plan.chirp_seq[k].re, -plan.chirp_seq[k].im};
  for (uint32_t k = 1; k < n; ++k) filter[m - k] = filter[k];
  auto* scratch =
      static_cast<T*>(serv::aligned_malloc((scratch_elements(plan.transform) + 1) * sizeof(T), 64));
  if (!scratch) return false;
  run_transform(plan.transform, Direction::forward, filter, filter, scratch, Real<T>(1));
  serv::aligned_free(scratch);
  return true;
}

template <class T>
void run_chirp(const Plan<T>& plan, Direction d, const T* in, T* out, T* scratch, Real<T> scale) {
  if (d == Direction::forward)
    convolve<1>(plan, in, out, scratch, scale);
  else
    convolve<-1>(plan, in, out, scratch, scale);
}

#define INSTANTIATE(T)                \
  template bool make_chirp(Plan<T>&); \
  template void run_chirp(const Plan<T>&, Direction, const T*, T*, T*, Real<T>);
INSTANTIATE(jex_dcomplex)
INSTANTIATE(jex_scomplex)

}  // namespace jex::dft
