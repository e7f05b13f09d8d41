#include "pdett/compute.h"

#include "dft/engine/roots.h"
#include "dft/engine/work_area.h"
#include "pdett/steps.h"
#include "serv/memory.h"

namespace jex::pdett {

template <class R>
bool make_tables(jex_int kind, jex_int n, R* par) {
  const bool rotates = kind >= dct_iv && n % 2 == 0;
  // Angles are multiples of pi / 8n, or of pi / 4n.
  dft::Roots roots;
  if (!roots.make((rotates ? 16 : 8) * uint32_t(n))) return false;
  const Tables<R> tables(par, n);
  R* const first = const_cast<R*>(tables.first);
  R* const second = const_cast<R*>(tables.second);
  R* const weights = const_cast<R*>(tables.weights);
  if (rotates) {
    for (jex_int j = 0; j < n / 2; ++j) {
      const dft::Root w = roots(8 * uint32_t(j) + 1);
      weights[j] = R(w.c);
      weights[n / 2 + j] = R(w.s);
    }
    return true;
  }
  const bool is_staggered = kind >= dct_iii_ii;
  for (jex_int j = 1; j <= (n - 1) / 2; ++j) {
    const dft::Root w = roots(uint32_t(j) * (is_staggered ? 2 : 4));
    first[j - 1] = R(is_staggered ? w.c : w.s);
    second[j - 1] = R(is_staggered ? w.s : w.c);
  }
  if (kind < dct_iv) return true;
  for (jex_int j = 0; j < n; ++j) weights[j] = R(2 * roots(2 * uint32_t(j) + 1).c);
  return true;
}

template <class R>
dft::Record* descriptor_of(jex_dft_dfti_handle handle, jex_int n) {
  if (!handle) return nullptr;
  dft::Record* record;
  memcpy(&record, static_cast<const void*>(handle), sizeof record);
  if (!record) return nullptr;
  const auto holds = [&](int word, jex_int value) { return record->word[word] == value; };
  const bool fits = holds(JEX_DFT_TAG, JEX_DFT_RECORD_TAG) &&
                    holds(JEX_DFT_COMMIT_STATE, JEX_DFT_COMMITTED) && holds(JEX_DFT_LENGTH, n) &&
                    holds(JEX_DFT_RANK, 1) && holds(JEX_DFT_FORWARD_DOMAIN, JEX_DFT_REAL) &&
                    holds(JEX_DFT_PRECISION, is_double<R> ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE) &&
                    holds(JEX_DFT_PACKED_FORMAT, JEX_DFT_PERM) && holds(JEX_DFT_NIO_ARGS, 1);
  return fits ? record : nullptr;
}

namespace {

jex_int run_fourier(dft::Record* record, int entry_word, void* y) {
  jex_dft_compute_1 entry;
  memcpy(&entry, &record->word[entry_word], sizeof entry);
  return entry ? entry(record, y) : jex_int(JEX_DFT_FAILURE);
}

template <class R>
struct Line {
  R* f;
  jex_int n;
  R scale;
  Tables<R> tables;
  dft::Record* record;
  R* y;  // n elements on a 16-byte boundary, apart from f or where the line is

  jex_int fourier(Side side) const {
    return run_fourier(record,
                       side == Side::forward ? JEX_DFT_FORWARD_ENTRY : JEX_DFT_BACKWARD_ENTRY, y);
  }

  // First kind, its own inverse but for the scale.
  template <Wave wave>
  jex_int on_grid() const {
    const R first = fold<wave>(f, n, tables.first, tables.second, y);
    const jex_int status = fourier(Side::forward);
    if (!status) unfold<wave>(y, n, first, scale, f);
    return status;
  }

  // Second kind, the way from frequencies to points: sines have neither frequency 0 nor point 0.
  template <Wave wave>
  jex_int to_points() const {
    part<wave, false, R>(f + (wave == Wave::sine), n, nullptr, y);
    const jex_int status = fourier(Side::forward);
    if (status) return status;
    turn<wave>(y, n, tables.first, tables.second, scale, f);
    f[place<wave>(n, n)] = 0;
    return status;
  }

  // Third kind, the way from points to frequencies.
  template <Wave wave>
  jex_int to_frequencies() const {
    turn_back<wave>(f, n, tables.first, tables.second, y);
    const jex_int status = fourier(Side::backward);
    if (status) return status;
    join<wave>(y, n, R(0.5) * scale, f + (wave == Wave::sine));
    f[place<wave>(n, n)] = 0;
    return status;
  }

  // Fourth kind of an even n: the complex transform that the real one runs on, between rotations.
  template <Wave wave>
  jex_int by_rotations() const {
    using T = std::conditional_t<is_double<R>, jex_dcomplex, jex_scomplex>;
    const dft::Kernel kernel = dft::get(*record, dft::Words<T>::forward_kernel);
    const dft::WorkArea work(*record);
    if (!kernel) return JEX_DFT_FAILURE;
    if (work.is_missing(*record)) return JEX_DFT_NO_SLOT;
    R* const x = f + (wave == Wave::sine);
    const R *const cosines = tables.weights, *const sines = cosines + n / 2;
    rotate_points<wave>(x, n, cosines, sines, y);
    const jex_int status = kernel(y, y, record, work.address());
    if (!status) rotate_frequencies<wave>(y, n, cosines, sines, scale, x);
    f[wave == Wave::sine ? 0 : n] = 0;
    return status;
  }

  // Fourth kind of an odd n: a transform of the second kind of weighted points, and a chain. The
  // points of a sine transform come in reverse, so its weights do.
  template <Wave wave>
  jex_int between_points() const {
    R* const x = f + (wave == Wave::sine);
    if constexpr (wave == Wave::sine) reverse(x);
    part<Wave::cosine, true>(x, n, tables.weights, y);
    const jex_int status = fourier(Side::forward);
    if (status) {
      if constexpr (wave == Wave::sine) reverse(x);
      return status;
    }
    // Frequencies 0 .. n-1 side by side: the place of frequency n is free.
    turn<Wave::cosine>(y, n, tables.first, tables.second, scale, x);
    chain<wave>(x, n);
    f[wave == Wave::sine ? 0 : n] = 0;
    return status;
  }

  void reverse(R* x) const {
    in_lanes<R>(n / 2, [&](auto v, int i) JEX_INLINE {
      using V = decltype(v);
      const V a = V::load(x + i), b = V::load(x + n - i - V::count);
      reversed(b).store(x + i);
      reversed(a).store(x + n - i - V::count);
    });
  }

  jex_int run(jex_int kind, Side side) const {
    const bool is_forward = side == Side::forward;
    switch (kind) {
      case dst_i:
        return on_grid<Wave::sine>();
      case dct_i:
        return on_grid<Wave::cosine>();
      case dct_iii_ii:
        return is_forward ? to_frequencies<Wave::cosine>() : to_points<Wave::cosine>();
      case dst_iii_ii:
        return is_forward ? to_frequencies<Wave::sine>() : to_points<Wave::sine>();
      case dct_iv:
        return n % 2 ? between_points<Wave::cosine>() : by_rotations<Wave::cosine>();
      default:
        return n % 2 ? between_points<Wave::sine>() : by_rotations<Wave::sine>();
    }
  }
};

}  // namespace

template <class R>
jex_int transform(jex_int kind, Side side, R* f, jex_int n, R scale, const R* par,
                  dft::Record* record) {
  // The first kind can work where the line is, and so can rotations; others reorder it. Off a
  // 16-byte boundary the Fourier transform would make a copy of its own.
  const bool reorders = kind > dct_i && (kind < dct_iv || n % 2 != 0);
  R* const line = f + (kind == dst_iv);
  const bool in_place = !reorders && reinterpret_cast<uintptr_t>(line) % 16 == 0;
  R* const y = in_place ? line : static_cast<R*>(serv::allocate(uint32_t(n) * sizeof(R), 64));
  if (!y) return JEX_DFT_NO_MEMORY;
  const jex_int status = Line<R>{f, n, scale, {par, n}, record, y}.run(kind, side);
  if (!in_place) serv::deallocate(y);
  return status;
}

#define JEX_PRECISION(R)                                                \
  template bool make_tables(jex_int, jex_int, R*);                      \
  template dft::Record* descriptor_of<R>(jex_dft_dfti_handle, jex_int); \
  template jex_int transform(jex_int, Side, R*, jex_int, R, const R*, dft::Record*);
JEX_PRECISION(float)
JEX_PRECISION(double)

}  // namespace jex::pdett
