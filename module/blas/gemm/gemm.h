// C := alpha op(A) op(B) + beta C: quick returns, three ways by size, and the blocks of the packed
// one.
#pragma once

#include "blas/gemm/block.h"
#include "blas/gemm/scale.h"
#include "blas/gemm/small.h"
#include "blas/level2/gemv.h"
#include "serv/memory.h"

namespace jex::blas {

// Where the parts of the work buffer begin.
template <class R>
struct WorkBuffer {
  R *a, *b, *staged;
  char* raw;

  static char* rounded_down(char* p, uintptr_t unit) { return p - uintptr_t(p) % unit; }
};

// One buffer of the double multiply, for column blocks of nb:
//
//   | to a page | packed A: 256 lanes, 128 steps | to a page | packed B: nb x 128 | staged B, 8 KiB
//   |
//
inline WorkBuffer<double> double_buffer(int nb) {
  using B = WorkBuffer<double>;
  char* const raw = static_cast<char*>(serv::allocate(uint32_t(nb) * 1024 + 551168, 128));
  return {(double*)(B::rounded_down(raw, 4096) + 4096),
          (double*)(B::rounded_down(raw + 532992, 4096) + 4096),
          (double*)(B::rounded_down(raw + 541184 + ptrdiff_t(nb) * 1024, 128) + 384), raw};
}

// The other multiplies stage B from where it is. Bytes for each step: those of the rows of packed A
// and of the staged columns, 2,048 + 256 in single precision; and what the page and the spare
// registers need.
template <class R>
inline WorkBuffer<R> staging_buffer(int steps) {
  using B = WorkBuffer<R>;
  constexpr uint32_t step = 512 * sizeof(R) + staged_columns<R> * 16;
  char* const raw = static_cast<char*>(serv::allocate(uint32_t(steps) * step + 16512, 128));
  R* const a = (R*)(B::rounded_down(raw, 4096) + 4096);
  const ptrdiff_t lanes = rows_in_block<R>(steps) / Lanes<R>::count;
  return {a, nullptr, a + lanes * lane_stride<R>(steps), raw};
}

// Adds alpha op(A) op(B) to m x n elements of C, or what `first` says.
//
// The blocks of k come in a fixed order: first the remainder at the end, or the last whole block if
// there is none, with beta; then the whole blocks from the beginning. Every element of C adds the
// sums of its blocks in this order, whatever the split of rows and columns.
template <First first, class Scheme>
[[gnu::noinline]] void multiply_packed(const Scheme& scheme, int m, int n, int k,
                                       Operand<typename Scheme::A> a, Operand<typename Scheme::C> b,
                                       typename Scheme::C* c, int ldc, Wanted wanted) {
  using R = typename Scheme::R;
  constexpr bool packs_b = std::is_same_v<typename Scheme::C, double>;
  const int kb = steps_in_block<R>();
  const int mb = rows_in_block<R>(kb) / Lanes<R>::count * Scheme::lane_rows;
  const int nb = packs_b ? std::min(n, packed_columns) : n;
  // Fewer columns together follow the edge of a triangle closer.
  const int group =
      (wanted == Wanted::all ? staged_columns<R> : std::min(8, staged_columns<R>)) / Scheme::parts;
  WorkBuffer<R> buffer;
  if constexpr (packs_b)
    buffer = double_buffer(nb);
  else
    buffer = staging_buffer<R>(kb);

  const auto block = [&](auto plane, auto now, int i, int rows, int j, int columns, int p,
                         int steps) {
    pack_a<plane>(scheme, a.from(i, p), rows, steps, buffer.a);
    for (int g = 0; g < columns; g += group) {
      const int width = std::min(group, columns - g);
      auto source = b.from(p, j + g);
      if constexpr (packs_b)
        if (m > mb) source = packed_group(buffer.b, steps, g);
      const WantedLanes own(WantedRows(wanted, m, j + g, width), i, rows, Scheme::lane_rows);
      if (own.rows <= 0) continue;
      stage_b<plane>(scheme, source, steps, width, buffer.staged);
      add_block<plane, plane == 0 ? now() : First::accumulate, Source::staged>(
          scheme, buffer.a + own.skipped / Scheme::lane_rows * lane_stride<R>(steps), own.rows,
          staged_block<Scheme>(buffer.staged, steps), width, steps,
          c + i + own.skipped + ptrdiff_t(j + g) * ldc, ldc);
    }
  };
  const auto steps_block = [&](auto now, int j, int columns, int p, int steps) {
    if constexpr (packs_b)
      if (m > mb) pack_b(b.from(p, j), steps, columns, buffer.b);
    for (int i = 0; i < m; i += mb)
      unrolled<Scheme::planes>(
          [&](auto plane) { block(plane, now, i, std::min(mb, m - i), j, columns, p, steps); });
  };
  const int whole = (k - 1) / kb * kb;
  for (int j = 0; j < n; j += nb) {
    const int columns = std::min(nb, n - j);
    steps_block(std::integral_constant<First, first>(), j, columns, whole, k - whole);
    for (int p = 0; p < whole; p += kb)
      steps_block(std::integral_constant<First, First::accumulate>(), j, columns, p, kb);
  }
  serv::deallocate(buffer.raw);
}

// The same, in a single block of steps, without a buffer: a panel of A is packed on the stack, and
// B is read where it is stored.
template <First first, class Scheme>
[[gnu::noinline]] void multiply_light(const Scheme& scheme, int m, int n, int k,
                                      Operand<typename Scheme::A> a, Operand<typename Scheme::C> b,
                                      typename Scheme::C* c, int ldc, Wanted wanted) {
  using R = typename Scheme::R;
  constexpr int height = Scheme::lane_rows;
  alignas(16) R panel[tile_lanes * (light_steps + 1) * Lanes<R>::count];
  // Fewer columns together follow the edge of a triangle closer.
  const int group = wanted == Wanted::all ? n : 4;
  for (int i = 0; i < m; i += tile_lanes * height) {
    const int rows = std::min(tile_lanes * height, m - i);
    pack_a<0>(scheme, a.from(i, 0), rows, k, panel);
    for (int j = 0, width; j < n; j += width) {
      width = std::min(group, n - j);
      const WantedLanes own(WantedRows(wanted, m, j, width), i, rows, height);
      if (own.rows <= 0) continue;
      const auto add = [&](auto source) __attribute__((always_inline)) {
        add_block<0, first, source>(scheme, panel + own.skipped / height * lane_stride<R>(k),
                                    own.rows, stored_columns<Scheme>(b.from(0, j)), width, k,
                                    c + i + own.skipped + ptrdiff_t(j) * ldc, ldc);
      };
      if (b.by_columns())
        add(std::integral_constant<Source, Source::by_columns>());
      else
        add(std::integral_constant<Source, Source::by_rows>());
    }
  }
}

// run(first), what becomes of C as a constant.
template <class T, class Run>
[[gnu::always_inline]] inline void with_first(const T& beta, Run run) {
  if (is_one(beta))
    run(std::integral_constant<First, First::accumulate>());
  else if (is_zero(beta))
    run(std::integral_constant<First, First::overwrite>());
  else
    run(std::integral_constant<First, First::general>());
}

// By which of the three ways. A B that is read across its columns is better staged if its rows meet
// in the cache; an A that would be read across its rows again and again is better packed if its
// columns meet there, or if it and B are in many pages.
enum class Way { tiny, light, packed };
template <class T>
inline Way way_of(int m, int n, int k, const Operand<T>& a, const Operand<T>& b, Wanted wanted) {
  const bool by_rows = !b.by_columns(), across = a.by_columns();
  if (by_rows && would_meet<T>(b.ld, k)) return Way::packed;
  if (is_tiny<T>(m, n, k, wanted != Wanted::all, by_rows) && !(across && would_meet<T>(a.ld, k)) &&
      (across ? pages_of<T>(a.ld, k) : 0) + (by_rows ? pages_of<T>(b.ld, k) : 0) <= many_pages)
    return Way::tiny;
  return is_light<T>(m, n, k) ? Way::light : Way::packed;
}

template <class Scheme, class T>
inline void multiply(Way way, const Scheme& scheme, const Small<T>& q, int columns) {
  if (way == Way::tiny) return multiply_small(q, columns);
  with_first(q.beta, [&](auto first) {
    if (way == Way::light)
      multiply_light<first>(scheme, q.rows, columns, q.steps, q.a, q.b, q.c, q.ldc, q.wanted);
    else
      multiply_packed<first>(scheme, q.rows, columns, q.steps, q.a, q.b, q.c, q.ldc, q.wanted);
  });
}

// True if nothing is left to do but what it did: m or n without elements, or alpha 0.
template <class T>
inline bool is_done_without_product(int m, int n, const T& alpha, const T& beta, T* c, int ldc) {
  if (m <= 0 || n <= 0) return true;
  if (!is_zero(alpha)) return false;
  scale_matrix(m, n, beta, c, ldc);
  return true;
}

// Real matrices. The last n mod 4 columns are matrix-vector products.
template <class T>
[[gnu::noinline]] void gemm(Op transa, Op transb, int m, int n, int k, const T& alpha, const T* a,
                            int lda, const T* b, int ldb, const T& beta, T* c, int ldc,
                            Wanted wanted = Wanted::all) {
  if (is_done_without_product(m, n, alpha, beta, c, ldc)) return;
  const Operand<T> op_a{a, lda, transa}, op_b{b, ldb, transb};
  const Small<T> q{m, k, alpha, beta, op_a, op_b, c, ldc, wanted};
  if (is_small(m, n, k)) return multiply_small(q, n);
  const int grouped = n / 4 * 4;
  multiply(way_of(m, n, k, op_a, op_b, wanted), RealScheme<T>{alpha, beta}, q, grouped);
  const bool plain = op_a.by_columns();
  for (int j = grouped; j < n; ++j) {
    const WantedRows own(wanted, m, j, 1);
    const int rows = own.to - own.from;
    gemv(transa, plain ? rows : k, plain ? k : rows, alpha, op_a.from(own.from, 0).x, lda,
         op_b.from(0, j).x, int(op_b.row_distance()), beta, c + own.from + ptrdiff_t(j) * ldc, 1);
  }
}

// Complex matrices, by four real products for each complex one.
template <class T>
[[gnu::noinline]] void gemm4(Op transa, Op transb, int m, int n, int k, const T& alpha, const T* a,
                             int lda, const T* b, int ldb, const T& beta, T* c, int ldc,
                             Wanted wanted = Wanted::all) {
  if (is_done_without_product(m, n, alpha, beta, c, ldc)) return;
  const Operand<T> op_a{a, lda, transa}, op_b{b, ldb, transb};
  multiply(is_small(m, n, k) ? Way::tiny : way_of(m, n, k, op_a, op_b, wanted),
           ComplexScheme<T>(alpha, beta, op_b.conjugates()),
           Small<T>{m, k, alpha, beta, op_a, op_b, c, ldc, wanted}, n);
}

// Complex matrices by another scheme: fewer products, or a real A.
template <template <class> class Scheme, class T>
[[gnu::noinline]] void complex_gemm(Op transa, Op transb, int m, int n, int k, const T& alpha,
                                    const typename Scheme<T>::A* a, int lda, const T* b, int ldb,
                                    const T& beta, T* c, int ldc) {
  if constexpr (std::is_same_v<typename Scheme<T>::A, T>)
    if (is_small(m, n, k) || is_light_for_three(m, n, k))
      return gemm4(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
  if (is_done_without_product(m, n, alpha, beta, c, ldc)) return;
  if (k <= 0) return scale_matrix(m, n, beta, c, ldc);
  with_first(beta, [&](auto first) {
    multiply_packed<first>(Scheme<T>(alpha, beta), m, n, k, {a, lda, transa}, {b, ldb, transb}, c,
                           ldc, Wanted::all);
  });
}

}  // namespace jex::blas
